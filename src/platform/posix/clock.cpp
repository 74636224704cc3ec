#include "platform/clock.h"

#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace vrel {
namespace {

// A signal ends a sleep early; the rest is slept then.
void Sleep(timespec rest) {
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

}  // namespace

double MonotonicSeconds() { return SecondsSince(0.0); }

// The start is taken off the whole seconds first, so that no digit of the fraction is lost to a large clock.
double SecondsSince(double start) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (static_cast<double>(now.tv_sec) - start) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The process is mixed in, since several may start within a millisecond.
unsigned int TimeOfDaySeed() {
    timeval now{};
    gettimeofday(&now, nullptr);
    const auto time = static_cast<unsigned int>(static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_usec / 1000);
    return time ^ static_cast<unsigned int>(getpid()) * 2654435761U;
}

void SleepMilliseconds(int milliseconds) {
    if (milliseconds >= 1)
        Sleep({milliseconds / 1000, milliseconds % 1000 * 1000000L});
}

void SleepMicroseconds(int microseconds) {
    if (microseconds >= 1)
        Sleep({microseconds / 1000000, microseconds % 1000000 * 1000L});
}

}  // namespace vrel
