#pragma once

#include "board/position.h"

namespace vrel {

// What stands on a square, as a person sees it: the letter of the piece, or the colour of an empty square, "+" for a
// dark and "-" for a light one.
char SquareLetter(const Position& pos, Square sq);

// Prints the position for a person.
void ShowBoard(const Position& pos);

}  // namespace vrel
