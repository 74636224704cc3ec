#pragma once

#include "board/position.h"

namespace vrel {

// True if a pseudo-legal move leaves the own king unattacked; no move is not legal. Castling also asks that the king
// doesn't leave or cross an attacked square.
bool MoveIsLegal(const Position& pos, int side, Move move);

// Asked before the move is made: 0 no check, 1 direct, 2 discovered. A rook's check after castling and a discovery
// through an en passant victim aren't seen.
int MoveGivesCheck(const Position& pos, int side, const MoveEntry& entry);

}  // namespace vrel
