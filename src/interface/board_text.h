#pragma once

#include "board/position.h"

namespace vrel {

// Prints the position for a person.
void ShowBoard(const Position& pos);

}  // namespace vrel
