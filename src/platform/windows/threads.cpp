#include "platform/threads.h"

#include <windows.h>

#include <process.h>

#include <cerrno>
#include <memory>

namespace vrel {

namespace {

constexpr unsigned int STACK_BYTES = 8U << 20;  // reserved; memory is taken as it is touched

struct Start {
    ThreadBody body;
    void* argument;
};

unsigned int __stdcall Run(void* memory) {
    const std::unique_ptr<Start> start(static_cast<Start*>(memory));
    start->body(start->argument);
    return 0;
}

}  // namespace

int StartThread(ThreadBody body, void* argument) {
    auto start = std::make_unique<Start>(Start{body, argument});
    const uintptr_t handle =
        _beginthreadex(nullptr, STACK_BYTES, Run, start.get(), STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (handle == 0)
        return errno;
    start.release();  // the thread has it now
    CloseHandle(reinterpret_cast<HANDLE>(handle));
    return 0;
}

void LetOthersRun() { SwitchToThread(); }

// The C++ library's own waiting loses a wake-up here that comes while the waiter goes to sleep.
void WaitForChange(const std::atomic<int>& flag, int value) {
    static_assert(sizeof flag == sizeof value);
    while (flag.load(std::memory_order_acquire) == value)
        WaitOnAddress(const_cast<std::atomic<int>*>(&flag), &value, sizeof value, INFINITE);
}

void WakeWaiter(std::atomic<int>* flag) {
    // The change has to be out before the system looks for waiters.
    std::atomic_thread_fence(std::memory_order_seq_cst);
    WakeByAddressSingle(flag);
}

}  // namespace vrel
