#include "interface/control/options.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <span>

#include "board/search_thread.h"
#include "interface/control/tuning_options.h"
#include "interface/messages.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "search/thread_pool.h"
#include "search/transposition.h"

namespace vrel {

namespace {

// An engine without a table, or without workers, has nothing to go on with: the old ones have been given back already.
void SetHashSize(int megabytes) {
    PBlock.hash_mb = static_cast<int16_t>(megabytes);
    if (InitTTable() != 0)
        std::_Exit(-1);
}

// New workers start with nothing learnt, so the same number leaves the old ones at work.
void SetThreads(int number) {
    if (number == PBlock.nthreads)
        return;
    KillThreadPool(PBlock.nthreads);
    PBlock.nthreads = static_cast<int8_t>(number);
    if (CreateThreadPool(number) != 0)
        std::_Exit(-1);
}

// What isn't used isn't cleared, and nothing is said.
void ClearHash(int) {
    if (!PBlock.use_hash)
        return;
    ClearTTable();
    ShowMessage("Hash table cleared");
}

// A pondering search keeps what it has found for its report.
Need NeedOfClearHash() {
    if (!PBlock.use_hash)
        return BESIDE;
    return PBlock.state == STATE_PONDERING ? IDLE_WORKERS : FREE_ENGINE;
}

// Table and workers are in use while a search runs. Limits and the book are looked at when the next one starts.
Need NeedsFreeEngine() { return FREE_ENGINE; }
Need NeedsNoTool() { return NO_TOOL; }
Need NeedsNothing() { return BESIDE; }

// In the order in which they are declared.
constexpr auto uci_options = std::to_array<UciOption>({
    {"Hash", SPIN, 64, 0, 8192, "info string Hash size set to %dM bytes", NeedsFreeEngine, SetHashSize},
    {"Threads", SPIN, 1, 1, MAX_THREADS, "info string Threads set to %d", NeedsFreeEngine, SetThreads},
    {"Ponder", CHECK, 1, 0, 1, nullptr, NeedsNoTool, [](int on) { PBlock.ponder = static_cast<int16_t>(on); }},
    {"MultiPV", SPIN, 1, 1, 20, "info string MultiPV set to %d", NeedsNoTool,
     [](int lines) { PBlock.multipv = static_cast<int16_t>(lines); }},
    {"Clear Hash", BUTTON, 0, 0, 0, nullptr, NeedOfClearHash, ClearHash},
    {"Communication Overhead", SPIN, 25, 0, 5000, "info string Communication Overhead set to %d", NeedsNoTool,
     [](int milliseconds) { PBlock.overhead = milliseconds / 1000.0; }},
    {"OwnBook", CHECK, 0, 0, 1, "info string OwnBook set to %d", NeedsNothing,
     [](int on) { PBlock.use_book = static_cast<uint8_t>(on); }},
    {"Log", CHECK, 0, 0, 1, "info string Log set to %d", NeedsNothing,
     [](int on) { PBlock.log = static_cast<int16_t>(on); }},
});

// In the words of the protocol, for which a switch is a "check" and a number a "spin".
void DeclareOption(const UciOption& option) {
    if (option.type == SPIN)
        ShowFormatted("option name %s type spin default %d min %d max %d", option.name, option.preset, option.lowest,
                      option.highest);
    else if (option.type == CHECK)
        ShowFormatted("option name %s type check default %s", option.name, option.preset ? "true" : "false");
    else
        ShowFormatted("option name %s type button", option.name);
}

}  // namespace

const UciOption* FindOption(std::string_view name) {
    for (const std::span<const UciOption> options : {std::span<const UciOption>(uci_options), TuningOptions()})
        for (const UciOption& option : options)
            if (name == option.name)
                return &option;
    return nullptr;
}

void DeclareOptions() {
    std::for_each(uci_options.begin(), uci_options.end(), DeclareOption);
    std::for_each(TuningOptions().begin(), TuningOptions().end(), DeclareOption);
}

int ReadOption(const UciOption& option, const char* text) {
    if (option.type != CHECK)
        return ReadInteger(text, option.lowest, option.highest);
    // The log goes on with whatever holds the word.
    return std::strcmp(option.name, "Log") == 0 ? std::strstr(text, "true") != nullptr : std::strcmp(text, "true") == 0;
}

// The reply tells the value that is in force, which may not be the one that was asked for.
void SetOption(const UciOption& option, int value) {
    assert(value >= option.lowest && value <= option.highest);
    option.apply(value);
    if (option.reply != nullptr)
        ShowFormatted(option.reply, value);
}

}  // namespace vrel
