#pragma once

namespace vrel {

// Seconds of the monotonic clock, from an unknown start.
double MonotonicSeconds();

// Seconds that have passed since `start`, an earlier value of MonotonicSeconds.
double SecondsSince(double start);

// A number that differs from start to start: milliseconds of the time of day, cut to what fits, mixed with the number
// of the process, since several may start at once.
unsigned int TimeOfDaySeed();

// Sleeps for so long; nothing for a number below 1.
void SleepMilliseconds(int milliseconds);
void SleepMicroseconds(int microseconds);

}  // namespace vrel
