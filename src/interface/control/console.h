#pragma once

#include "interface/control/input.h"

// The console language, line by line.
namespace vrel {

Need ConsoleNeed(const char* line);

void ConsoleCommand(const char* line);

}  // namespace vrel
