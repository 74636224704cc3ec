#include <algorithm>
#include <vector>

#include "platform/clock.h"
#include "platform/threads.h"
#include "platform/web/host.h"
#include "platform/web/wait.h"

// Everything on one thread: a worker works on the stack of the main thread while that sleeps, and the main thread has
// its turns on the worker's. When there is nothing to do, the stack is left for the host's.
namespace vrel {

namespace {

constexpr int TURN = 256;  // calls of a worker between two turns of the main thread

struct Hand {
    const Worker* worker;
    const std::atomic<int>* flag;
};
std::vector<Hand> hands;

struct Turns {
    bool (*turn)();
    int (*end)();
};
Turns turns;           // that are being run now
bool at_work = false;  // a worker is
bool in_turn = false;  // the main thread is, in between

// Lets the first worker that has something to do do it. False if none has.
bool Work() {
    const auto hand = std::find_if(hands.begin(), hands.end(), [](const Hand& candidate) {
        return candidate.flag->load(std::memory_order_relaxed) != 0;
    });
    if (hand == hands.end())
        return false;
    at_work = true;
    const bool stays = hand->worker->work(hand->worker->id);
    at_work = false;
    if (!stays)
        hands.erase(hand);
    return true;
}

int RunOn() {
    while (turns.turn()) {
    }
    return turns.end();
}

}  // namespace

int StartWorker(const Worker* worker) {
    hands.push_back({worker, worker->begin(worker->id)});
    return 0;
}

int RunTurns(bool (*turn)(), int (*end)()) {
    const Turns outer = turns;
    turns = {turn, end};
    const int status = RunOn();
    turns = outer;
    return status;
}

// The host has something to tell.
extern "C" VREL_FOR_HOST(resume) int Resume() { return RunOn(); }

void LetMainThreadRun() {
    static int calls = 0;
    if (++calls % TURN != 0 || !at_work || in_turn)
        return;
    in_turn = true;
    turns.turn();
    in_turn = false;
}

void LetOthersRun() {}

// Nothing is changed by others while somebody waits for it.
void WakeWaiter(std::atomic<int>* /*flag*/) {}

void Sleep(double seconds) {
    const double start = MonotonicSeconds();
    while (SecondsSince(start) < seconds) {
    }
}

// In a turn in between the rest is the worker's work, which goes on behind it.
void RestMainThread(const std::atomic<int>& flag, int value, int microseconds) {
    if (at_work || Work() || flag.load(std::memory_order_relaxed) != value)
        return;
    if (microseconds < 0)
        HostLeave();
    Sleep(microseconds * 1e-6);
}

void RouseMainThread(std::atomic<int>* /*flag*/) {}

}  // namespace vrel
