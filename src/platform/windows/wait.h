#pragma once

namespace vrel {

// Waits for so many microseconds but, if `event` isn't null, not longer than until the event is signalled.
void WaitFor(void* event, int microseconds);

}  // namespace vrel
