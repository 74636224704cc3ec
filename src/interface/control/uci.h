#pragma once

#include "interface/control/input.h"

// The Universal Chess Interface, line by line. No line starts a search itself: the game loop does, when it has been
// asked.
namespace vrel {

// What a line needs of a search or a tool that is at work: that of its command, and of `setoption` that of the option.
Need UciNeed(const char* line);

// Shows a line that has come in, while the log is on.
void EchoUciLine(const char* line);

// Carries out a line whose need is met. What is no command is dropped without a word.
void UciCommand(const char* line);

}  // namespace vrel
