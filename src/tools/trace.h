#pragma once

#include "board/position.h"

namespace vrel {

// Writes a move about to be made to "trace.txt" if its ply is within PBlock.trace; 0 is a null move.
void TraceMove(const Position& pos, Move move);

}  // namespace vrel
