#include "platform/standard_input.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "platform/web/host.h"
#include "platform/web/wait.h"

namespace vrel {
namespace {

constexpr unsigned QUEUE = 65536;  // bytes

// What the host writes and the main thread takes, a ring. The numbers of bytes run on over the end of their range. The
// host has its own sight of it: the order of the fields is known there.
struct Input {
    std::atomic<unsigned> written;  // by the host
    std::atomic<unsigned> taken;    // by the main thread
    std::atomic<int> ended;         // by the host: what is written is all there is
    std::atomic<int> wakes;         // by everybody: changed by whoever wants the main thread to wake
    std::atomic<int> holding_back;  // by the host: there was no room for all bytes
    std::atomic<int> pieces;        // by the host: of output so far, from all threads
    std::array<char, QUEUE> bytes;
};
Input input;

int wakes_seen = 0;  // by the main thread

unsigned Waiting() {
    return input.written.load(std::memory_order_acquire) - input.taken.load(std::memory_order_relaxed);
}

// The end is written behind the last byte.
bool IsOver() { return input.ended.load(std::memory_order_acquire) != 0 && Waiting() == 0; }

void Rest(int microseconds) {
    RestMainThread(input.wakes, wakes_seen, microseconds);
    wakes_seen = input.wakes.load(std::memory_order_acquire);
}

}  // namespace

extern "C" VREL_FOR_HOST(input) Input* TellInput() { return &input; }

int ReadInput(char* buffer, int size) {
    if (IsOver())
        return INPUT_ENDED;
    const unsigned taken = input.taken.load(std::memory_order_relaxed);
    const unsigned count = std::min(Waiting(), static_cast<unsigned>(std::max(size, 0)));
    for (unsigned i = 0; i < count; ++i)
        buffer[i] = input.bytes[(taken + i) % QUEUE];
    input.taken.store(taken + count, std::memory_order_release);
    if (input.holding_back.exchange(0, std::memory_order_acq_rel) != 0)
        HostTakeMore();
    return static_cast<int>(count);
}

int WaitForInput(char* buffer, int size) {
    int count = ReadInput(buffer, size);
    while (count == INPUT_NOTHING && size > 0) {
        Rest(UNTIL_WOKEN);
        count = ReadInput(buffer, size);
    }
    return count;
}

void SleepUntilWoken(int microseconds, bool by_input) {
    if (!by_input || (Waiting() == 0 && !IsOver()))
        Rest(microseconds);
}

void WakeMainThread() {
    input.wakes.fetch_add(1, std::memory_order_acq_rel);
    RouseMainThread(&input.wakes);
}

bool InputIsTerminal() { return HostIsTerminal(0); }

}  // namespace vrel
