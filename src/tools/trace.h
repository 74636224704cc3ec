#pragma once

#include "board/position.h"

namespace vrel {

// Traces the first `plies` plies of every search from here on; 0 ends it.
void SetTrace(int plies);

// Writes a move about to be made to "trace.txt" if its ply is within PBlock.trace; 0 is a null move.
void TraceMove(const Position& pos, Move move);

}  // namespace vrel
