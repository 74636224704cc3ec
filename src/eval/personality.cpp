#include "eval/personality.h"

#include <algorithm>
#include <cmath>

#include "board/position.h"
#include "interface/words.h"
#include "platform/narrow.h"

namespace vrel {

PersonalityRecord Personality;
PersonalityRecord DefaultPersonality;

namespace {

// A row of the list with the field that it stands for.
struct Weight {
    const char* name;
    int16_t PersonalityRecord::*field;
    int use;
};

constexpr Weight kWeights[] = {
#define VREL_ROW(name, value, use) {#name, &PersonalityRecord::name, use},
    VREL_WEIGHTS(VREL_ROW)
#undef VREL_ROW
};

struct Setting {
    const char* name;
    int8_t PersonalityRecord::*field;
};

constexpr Setting kSelectivity[] = {
#define VREL_ROW(name, value) {#name, &PersonalityRecord::name},
    VREL_SELECTIVITY(VREL_ROW)
#undef VREL_ROW
};

// So that a row's place is the tuner's index.
constexpr bool TunedWeightsComeFirst() {
    for (int i = 0; i < TUNED_WEIGHTS; ++i)
        if ((kWeights[i].use & DESCENT) == 0)
            return false;
    return true;
}
static_assert(TunedWeightsComeFirst());

// Reduction in PV nodes: late and small, and never down to the last three plies.
int ReductionPV(Depth depth, int number) {
    int plies = static_cast<int>(std::round(0.5 * std::sqrt(depth + number) - 1.25));
    if (plies >= depth - 2)
        plies = depth - 3;
    return std::clamp(std::min(plies, number / 2), 0, 2);
}

// In all other nodes earlier and larger, but never down to the last two plies.
int ReductionOther(Depth depth, int number) {
    int plies = static_cast<int>(std::round(0.55 * std::sqrt(depth + number) - 0.25));
    if (plies >= depth - 1)
        plies = depth - 2;
    return std::clamp(std::min(plies, number), 0, 3);
}

}  // namespace

void InitPersonality() {
    // The plain fields carry their defaults; margins and tables follow formulas.
    PersonalityRecord p;
    for (Depth d = 0; d < 8; ++d) {
        p.RP_margin[d] = Narrow(100 + 75 * d);
        p.CNP_margin[d] = Narrow(75 * d);
        p.FP_margin[d] = Narrow(2 + 128 * d);
        p.LMP_count[d] = Narrow(3 * d);
    }
    for (Depth d = 0; d < 70; ++d)
        for (int m = 0; m < 32; ++m) {
            p.LMR_table1[d][m] = Narrow(ReductionPV(d, m));
            p.LMR_table2[d][m] = Narrow(ReductionOther(d, m));
        }
    Personality = p;
    DefaultPersonality = p;
}

int16_t* TunedWeight(PersonalityRecord* record, int index) {
    if (index < 0 || index >= TUNED_WEIGHTS)
        return nullptr;
    return &(record->*kWeights[index].field);
}

int16_t* FindWeight(PersonalityRecord* record, const char* name) {
    const Weight* weight = FindRow(kWeights, name);
    return weight != nullptr ? &(record->*weight->field) : nullptr;
}

int16_t* FindKeyword(PersonalityRecord* record, const char* name) {
    const Weight* weight = FindRow(kWeights, name);
    return weight != nullptr && (weight->use & KEYWORD) ? &(record->*weight->field) : nullptr;
}

int8_t* FindSelectivity(PersonalityRecord* record, const char* name) {
    const Setting* setting = FindRow(kSelectivity, name);
    return setting != nullptr ? &(record->*setting->field) : nullptr;
}

}  // namespace vrel
