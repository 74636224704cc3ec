#pragma once

#include "interface/control/input.h"

// The Universal Chess Interface, line by line. No line starts a search itself: the game loop does, when it has been
// asked.
namespace vrel {

Need UciNeed(const char* line);

// Shows a line that has come in, while the log is on.
void EchoUciLine(const char* line);

void UciCommand(const char* line);

}  // namespace vrel
