#include "platform/threads.h"

#include <pthread.h>
#include <sched.h>

namespace vrel {

// Nobody waits for the end of a worker: its flag tells it, and its record stays.
int StartThread(ThreadBody body, void* argument) {
    pthread_attr_t attributes;
    int error = pthread_attr_init(&attributes);
    if (error != 0)
        return error;
    error = pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t handle{};
    if (error == 0)
        error = pthread_create(&handle, &attributes, body, argument);
    pthread_attr_destroy(&attributes);
    return error;
}

void LetOthersRun() { sched_yield(); }

void WaitForChange(const std::atomic<int>& flag, int value) { flag.wait(value, std::memory_order_acquire); }

void WakeWaiter(std::atomic<int>* flag) { flag->notify_one(); }

}  // namespace vrel
