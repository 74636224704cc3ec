#pragma once

namespace vrel {

using ThreadBody = void* (*)(void*);

// Starts a detached thread that runs body(argument); what it returns is dropped. 0, or the error code of the start.
int StartThread(ThreadBody body, void* argument);

}  // namespace vrel
