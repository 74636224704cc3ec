#include "interface/control/tuning_options.h"

#include <algorithm>
#include <cassert>

#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "search/search_control.h"
#include "search/transposition.h"

namespace vrel {

namespace {

// A step sees a difference that games can show; in the end a tuner moves by a small part of it.
constexpr double STEPS = 20.0;
constexpr double LEAST_STEP = 0.5;
constexpr double RATE = 0.002;

}  // namespace

#ifdef VREL_TUNE

namespace {

// A weight may double or vanish, and keeps its sign, which says what it is about; a small one has room to find out how
// large it should be. Fifteen of the heaviest pieces still fit into a table entry.
constexpr int LEAST_REACH = 20;
constexpr int Reach(int preset) { return std::max(2 * preset < 0 ? -2 * preset : 2 * preset, LEAST_REACH); }
constexpr int LowestWeight(int preset) { return preset > 0 ? 0 : -Reach(preset); }
constexpr int HighestWeight(int preset) { return preset < 0 ? 0 : Reach(preset); }

// Plies. At 0 a pruning up to a depth is off; beyond the margins' eight nothing new comes.
constexpr int DEEPEST_SETTING = 8;

// Between searches. Tables are built anew, and what the table holds was found with other values.
template <typename Field>
void ChangeField(Field PersonalityRecord::*field, int value) {
    assert(EngineIsFree());
    if (Personality.*field == value)
        return;
    Personality.*field = static_cast<Field>(value);
    InitEval();
    CheckTTable();
    if (PBlock.hash_fill > 0)
        ClearTTable();
}

Need NeedsFreeEngine() { return FREE_ENGINE; }

#define VREL_OPTION(name, value, lowest, highest)        \
    {#name,           SPIN,                              \
     value,           lowest,                            \
     highest,         "info string " #name " set to %d", \
     NeedsFreeEngine, [](int number) { ChangeField(&PersonalityRecord::name, number); }},
#define VREL_WEIGHT(name, value, use) VREL_OPTION(name, value, LowestWeight(value), HighestWeight(value))
#define VREL_SETTING(name, value) VREL_OPTION(name, value, 0, DEEPEST_SETTING)
constexpr UciOption fields[] = {VREL_WEIGHTS(VREL_WEIGHT) VREL_SELECTIVITY(VREL_SETTING)};
#undef VREL_SETTING
#undef VREL_WEIGHT
#undef VREL_OPTION

}  // namespace

std::span<const UciOption> TuningOptions() { return fields; }

#else

std::span<const UciOption> TuningOptions() { return {}; }

#endif

bool ShowTuneSpec() {
    for (const UciOption& option : TuningOptions()) {
        const double step = std::max((option.highest - option.lowest) / STEPS, LEAST_STEP);
        Print("%s, int, %d, %d, %d, %g, %g\n", option.name, option.preset, option.lowest, option.highest, step, RATE);
    }
    return !TuningOptions().empty();
}

}  // namespace vrel
