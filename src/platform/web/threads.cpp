#include "platform/threads.h"

#include <pthread.h>

#include "platform/web/host.h"
#include "platform/web/wait.h"

namespace vrel {

namespace {

constexpr size_t STACK_BYTES = size_t{1} << 20;
constexpr int64_t WITHOUT_END = -1;
constexpr int EVERYBODY = -1;

// The waiting of the memory itself, in nanoseconds.
void WaitOn(const std::atomic<int>& flag, int value, int64_t nanoseconds) {
    static_assert(sizeof flag == sizeof value);
    __builtin_wasm_memory_atomic_wait32(reinterpret_cast<int*>(const_cast<std::atomic<int>*>(&flag)), value,
                                        nanoseconds);
}

void Wake(std::atomic<int>* flag, int waiters) {
    __builtin_wasm_memory_atomic_notify(reinterpret_cast<int*>(flag), static_cast<unsigned>(waiters));
}

}  // namespace

int StartThread(ThreadBody body, void* argument) {
    pthread_attr_t attributes;
    int error = pthread_attr_init(&attributes);
    if (error != 0)
        return error;
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_attr_setstacksize(&attributes, STACK_BYTES);
    pthread_t handle{};
    error = pthread_create(&handle, &attributes, body, argument);
    pthread_attr_destroy(&attributes);
    return error;
}

// The high end of the stack of a thread that has been made, for the host, which starts it.
extern "C" VREL_FOR_HOST(stackTop) void* TellStackTop(pthread_t thread) {
    pthread_attr_t attributes;
    void* end = nullptr;
    size_t size = 0;
    pthread_getattr_np(thread, &attributes);
    pthread_attr_getstack(&attributes, &end, &size);
    pthread_attr_destroy(&attributes);
    return static_cast<char*>(end) + size;
}

// Makes a thread that does nothing by itself, on which the host may call what is exported here.
extern "C" VREL_FOR_HOST(prepareThread) void PrepareThread() {
    StartThread([](void*) -> void* { return nullptr; }, nullptr);
}

// Nobody can be told to run before others; a lock is held so shortly that it is soon free.
void LetOthersRun() {}

void WaitForChange(const std::atomic<int>& flag, int value) {
    while (flag.load(std::memory_order_acquire) == value)
        WaitOn(flag, value, WITHOUT_END);
}

void WakeWaiter(std::atomic<int>* flag) { Wake(flag, 1); }

void Sleep(double seconds) {
    static const std::atomic<int> nothing{0};
    WaitOn(nothing, 0, static_cast<int64_t>(seconds * 1e9));
}

void RestMainThread(const std::atomic<int>& flag, int value, int microseconds) {
    WaitOn(flag, value, microseconds < 0 ? WITHOUT_END : microseconds * int64_t{1000});
}

void RouseMainThread(std::atomic<int>* flag) { Wake(flag, EVERYBODY); }

}  // namespace vrel
