#include "platform/standard_output.h"

#include <string>

#include "platform/web/host.h"

namespace vrel {

bool WriteOutput(const char* text, size_t size, const char* end, size_t end_size) {
    if (end_size == 0)
        return HostWrite(text, static_cast<int>(size));
    const std::string whole = std::string(text, size).append(end, end_size);
    return HostWrite(whole.data(), static_cast<int>(whole.size()));
}

bool ErrorOutputIsTerminal() { return HostIsTerminal(2); }

// No file of the engine's gets the place of a standard stream, and a write without a reader simply fails.
void OccupyStandardStreams() {}

void IgnoreBrokenPipe() {}

}  // namespace vrel
