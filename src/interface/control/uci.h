#pragma once

#include <string>

#include "board/position.h"
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

// Sets up the game that the words behind `position` tell: "startpos" or "fen" and a text, then "moves". Moves are
// played by `play` up to the first that it doesn't take.
void SetGame(const char* rest, bool (*play)(Position* game, const std::string& move));

}  // namespace vrel
