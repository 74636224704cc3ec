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

}  // namespace vrel
