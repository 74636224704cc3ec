#pragma once

#include <cstdint>

#include "board/position.h"

// Predicates on a move that pruning and ordering rely on. All are asked before the move is made.
namespace vrel {

// En passant doesn't count.
inline bool MoveIsCapture(const MoveEntry& entry) { return entry.captured != 0; }

inline bool MoveIsCastle(const MoveEntry& entry) {
    const int step = ToSquare(entry.move) - FromSquare(entry.move);
    return TypeOf(entry.piece) == KING && (step == 2 || step == -2);
}

// A passed pawn past the middle, or any pawn that reaches the seventh rank or beyond.
bool MoveIsPawnPush(const Position& pos, Side side, const MoveEntry& entry);

// Attacks a more valuable piece or the enemy king's neighbourhood from the new square.
bool MoveIsThreat(const Position& pos, const MoveEntry& entry);

// Loses less than a pawn by exchange on the to-square.
bool MoveIsSafe(const Position& pos, const MoveEntry& entry);

// True if a slider of `type` (3 to 5), moved from `from` to `to`, would newly attack a square of `area` that its
// side attacks otherwise as well.
bool MoveAttacksKingArea(const Position& pos, int type, Square from, Square to, uint64_t area);

}  // namespace vrel
