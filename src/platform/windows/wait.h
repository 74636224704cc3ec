#pragma once

namespace vrel {

// Waits for so many microseconds, for ever if negative, but not longer than until one of the two events is signalled.
// Null stands for no event.
void WaitFor(int microseconds, void* event1 = nullptr, void* event2 = nullptr);

}  // namespace vrel
