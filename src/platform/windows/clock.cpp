#include "platform/clock.h"

#include <windows.h>

#include <mmsystem.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "platform/windows/wait.h"

namespace vrel {
namespace {

constexpr DWORD HIGH_RESOLUTION = 0x2;  // a kind of timer that older headers don't know

int64_t TicksASecond() {
    LARGE_INTEGER ticks;
    QueryPerformanceFrequency(&ticks);
    return ticks.QuadPart;
}

// Sleeps end with a tick of the system's clock. While this lives it ticks each millisecond or, if it can't, as often as
// it can.
class FineTicks {
public:
    FineTicks() {
        TIMECAPS range{};
        if (timeGetDevCaps(&range, sizeof range) == TIMERR_NOERROR)
            period_ = std::max(1U, range.wPeriodMin);
        timeBeginPeriod(period_);
    }
    ~FineTicks() { timeEndPeriod(period_); }
    FineTicks(const FineTicks&) = delete;
    FineTicks& operator=(const FineTicks&) = delete;

private:
    unsigned int period_ = 1;
};

// Handles to wait for, any of which ends the wait.
struct WaitList {
    HANDLE handles[3];
    DWORD count = 0;

    void Add(HANDLE handle) {
        if (handle != nullptr)
            handles[count++] = handle;
    }
    void Wait(DWORD milliseconds) const {
        if (count == 0)
            Sleep(milliseconds);
        else
            WaitForMultipleObjects(count, handles, FALSE, milliseconds);
    }
};

// For systems that have no timers of higher resolution.
void WaitForTick(const WaitList& list, int microseconds) {
    static const FineTicks fine_ticks;
    list.Wait(static_cast<DWORD>((microseconds + 999LL) / 1000));
}

}  // namespace

double MonotonicSeconds() { return SecondsSince(0.0); }

// The start is taken off the whole seconds first, so that no digit of the fraction is lost to a large clock.
double SecondsSince(double start) {
    static const int64_t ticks_a_second = TicksASecond();
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    const auto seconds = static_cast<double>(now.QuadPart / ticks_a_second);
    const auto fraction = static_cast<double>(now.QuadPart % ticks_a_second);
    return (seconds - start) + fraction / static_cast<double>(ticks_a_second);
}

// The process is mixed in, since several may start within a millisecond.
unsigned int TimeOfDaySeed() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const uint64_t tenths_of_microseconds = uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    return static_cast<unsigned int>(tenths_of_microseconds / 10000) ^ GetCurrentProcessId() * 2654435761U;
}

// A timer can be waited for together with an event, which a sleep can't.
void WaitFor(int microseconds, void* event1, void* event2) {
    WaitList list;
    list.Add(event1);
    list.Add(event2);
    if (microseconds < 0) {
        list.Wait(INFINITE);
        return;
    }
    const HANDLE timer = CreateWaitableTimerExW(nullptr, nullptr, HIGH_RESOLUTION, TIMER_MODIFY_STATE | SYNCHRONIZE);
    if (timer == nullptr) {
        WaitForTick(list, microseconds);
        return;
    }
    // A negative time counts from now on.
    LARGE_INTEGER due;
    due.QuadPart = -10LL * microseconds;
    SetWaitableTimer(timer, &due, 0, nullptr, nullptr, FALSE);
    list.Add(timer);
    list.Wait(INFINITE);
    CloseHandle(timer);
}

// In parts that can be told in microseconds.
void SleepMilliseconds(int milliseconds) {
    constexpr int longest = std::numeric_limits<int>::max() / 1000;
    for (; milliseconds > longest; milliseconds -= longest)
        WaitFor(longest * 1000);
    if (milliseconds >= 1)
        WaitFor(milliseconds * 1000);
}

void SleepMicroseconds(int microseconds) {
    if (microseconds >= 1)
        WaitFor(microseconds);
}

}  // namespace vrel
