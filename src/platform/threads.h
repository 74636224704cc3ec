#pragma once

#include <atomic>
#include <cstdint>

namespace vrel {

using ThreadBody = void* (*)(void*);

// Starts a detached thread that runs body(argument); what it returns is dropped. 0, or the error code of the start.
int StartThread(ThreadBody body, void* argument);

// Who works while a flag of his isn't 0: what he does at first, which gives that flag, and what he does then, which is
// false for the last time.
struct Worker {
    const std::atomic<int>* (*begin)(int id);
    bool (*work)(int id);
    int id;
};

// Starts a worker, whose record has to last as long as he does: 0, or the error code of the start.
int StartWorker(const Worker* worker);

// Runs the main thread: calls turn() until that is false, then end(), whose result is returned. What is left to do
// comes as a function of its own, since not on every system does the caller's frame last through a sleep.
int RunTurns(bool (*turn)(), int (*end)());

// Where there are no threads, workers work while the main thread sleeps, and call this so that it has turns meanwhile.
#ifdef VREL_ONE_THREAD
void LetMainThreadRun();
#else
inline void LetMainThreadRun() {}
#endif

// Lets another thread have the processor, if one wants it.
void LetOthersRun();

// Sleeps while the flag has this value, and sees what was written before the change. Systems put threads to sleep on an
// int: one that waits on a smaller value is woken by changes of others as well.
void WaitForChange(const std::atomic<int>& flag, int value);

// Wakes a thread that waits for the change of the flag that has just been made.
void WakeWaiter(std::atomic<int>* flag);

// A lock for stretches of a few instructions or one line of output: a waiter spins.
class SpinLock {
public:
    // 0, or an error code. The other functions need a lock that has been initialised.
    int Init() {
        Unlock();
        return 0;
    }
    // The flag is only looked at while another thread has it, so that the waiters don't take its cache line away.
    void Lock() {
        while (taken_.exchange(true, std::memory_order_acquire))
            while (taken_.load(std::memory_order_relaxed))
                LetOthersRun();
    }
    void Unlock() { taken_.store(false, std::memory_order_release); }
    void Destroy() {}

private:
    std::atomic<bool> taken_{false};
};

// Holds a lock until the end of its block.
class SpinGuard {
public:
    explicit SpinGuard(SpinLock* lock) : lock_(lock) { lock_->Lock(); }
    ~SpinGuard() { lock_->Unlock(); }

    SpinGuard(const SpinGuard&) = delete;
    SpinGuard& operator=(const SpinGuard&) = delete;

private:
    SpinLock* lock_;
};

}  // namespace vrel
