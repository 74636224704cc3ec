#pragma once

#include "interface/control/input.h"

// The console language, line by line.
namespace vrel {

// What a line needs of a search or a tool that is at work. It depends on the position of the game, where the line is a
// move, and on `debug`.
Need ConsoleNeed(const char* line);

// Carries out a line whose need is met. What is neither a command nor a move is dropped without a word.
void ConsoleCommand(const char* line);

}  // namespace vrel
