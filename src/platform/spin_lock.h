#pragma once

#include <pthread.h>

namespace vrel {

// A lock for stretches of a few instructions or one line of output: a waiter spins.
class SpinLock {
public:
    // 0, or an error code. The other functions need a lock that has been initialised.
    int Init() { return pthread_spin_init(&lock_, PTHREAD_PROCESS_PRIVATE); }
    void Lock() { pthread_spin_lock(&lock_); }
    void Unlock() { pthread_spin_unlock(&lock_); }
    void Destroy() { pthread_spin_destroy(&lock_); }

private:
    pthread_spinlock_t lock_{};
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
