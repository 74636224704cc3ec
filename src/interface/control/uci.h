#pragma once

namespace vrel {

// Handles one line of the Universal Chess Interface. It starts no search itself but sets PBlock.request. `echo` shows
// the line first while the log is on; a line that was held back has been shown already.
void UciCommand(const char* line, bool echo);

}  // namespace vrel
