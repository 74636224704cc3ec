#pragma once

namespace vrel {

// Handles one line of the console language. A line that needs a free engine while a search runs ends that search and
// is held back.
void ConsoleCommand(const char* line);

}  // namespace vrel
