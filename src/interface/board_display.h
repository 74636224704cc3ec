#pragma once

#include "board/position.h"

namespace vrel {

// Prints the position for a person.
void ShowBoard(const Position& pos);

// Dialogue that sets up the game record piece by piece; blocks until the edit is over or the input ends.
void EditBoard();

}  // namespace vrel
