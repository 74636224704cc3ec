#pragma once

#include "board/position.h"

namespace vrel {

// Solves king and pawn against king by retrograde iteration, in memory.
void KPKgen();

// 0 for a draw; for a win 800 if `side`, which is to move, owns the pawn, else -800. The first white pawn is looked
// at if white's signature isn't 0, else the first black one.
int EvalKPK(const Position& pos, Side side);

// The same for the first pawn of `owner`, whatever else is on the board.
int EvalKPKFor(const Position& pos, Side owner, Side side);

}  // namespace vrel
