#pragma once

#include <atomic>

// How a thread rests, with threads and without.
namespace vrel {

// Sleeps for so many seconds.
void Sleep(double seconds);

// Sleeps while the flag has this value, but not longer than so many microseconds, if they aren't negative. Without
// threads of their own, workers with something to do do it now.
void RestMainThread(const std::atomic<int>& flag, int value, int microseconds);

// Ends the rest of the main thread, after the flag has been changed.
void RouseMainThread(std::atomic<int>* flag);

}  // namespace vrel
