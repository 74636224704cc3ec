#pragma once

#include <atomic>

#include "board/position.h"

namespace vrel {

// Called with every move before it is made, 0 for a passed turn; null while nobody traces. The main thread sets it,
// every thread looks at it.
using MoveHook = void (*)(const Position& pos, Move move);
extern std::atomic<MoveHook> trace_hook;

// True if `move` takes a piece of the side to move to a square that none of its own pieces holds, and promotes no other
// piece than a pawn: the least that MakeMove needs to keep the board in order.
inline bool MoveCanBeMade(const Position& pos, Move move) {
    const uint64_t own = pos.bb[pos.stm][0];
    const Square from = FromSquare(move);
    return (own & Bit(from)) && !(own & Bit(ToSquare(move))) &&
           (!(move & PROMOTION_BITS) || TypeOf(pos.board[from]) == PAWN);
}

// Makes a move of the side to move, or takes back the last one. Strictly nested. That the move is pseudo-legal is
// trusted; one that merely can be made leaves the board in order.
void MakeMove(Position* pos, Move move);
void UnmakeMove(Position* pos);

// The same for a passed turn.
void MakeNullMove(Position* pos);
void UnmakeNullMove(Position* pos);

// Moves of the game itself, on the game record: the list start stays at ply 1, and in a game longer than the undo
// stack can hold beside a search the oldest records give way. undo[game_ply].move is the move ahead, if moves have been
// taken back, else 0.
void PlayGameMove(Position* pos, Move move);
void TakeBackGameMove(Position* pos);

// Earlier occurrences of the placement since the last irreversible move. The keys leave out side to move, rights and
// en passant square; only even distances are compared.
int CountRepetitions(const Position& pos);

}  // namespace vrel
