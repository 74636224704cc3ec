#include "platform/clock.h"

#include "platform/web/host.h"
#include "platform/web/wait.h"

namespace vrel {

double MonotonicSeconds() { return HostSeconds(); }

double SecondsSince(double start) { return HostSeconds() - start; }

unsigned int TimeOfDaySeed() { return HostSeed(); }

void SleepMilliseconds(int milliseconds) {
    if (milliseconds >= 1)
        Sleep(milliseconds * 1e-3);
}

void SleepMicroseconds(int microseconds) {
    if (microseconds >= 1)
        Sleep(microseconds * 1e-6);
}

}  // namespace vrel
