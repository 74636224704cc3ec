#pragma once

#include "board/position.h"

// Pseudo-legal move generation. Generators write from `list` on, return the end and close nothing. The order of the
// moves is part of the behaviour: equal scores are decided by it.
namespace vrel {

MoveEntry* GeneratePawnCaptures(const Position& pos, Side side, MoveEntry* list);
MoveEntry* GeneratePieceCaptures(const Position& pos, Side side, MoveEntry* list);
// Every move of the pawns on their seventh rank; `all` adds the under-promotions.
MoveEntry* GeneratePromotions(const Position& pos, Side side, bool all, MoveEntry* list);
// Quiet moves, castling included, promotions excluded.
MoveEntry* GenerateNonCaptures(const Position& pos, Side side, MoveEntry* list);
// Of these the first two, all of pawns and king, and the other pieces' to `answers`: in check others aren't legal.
MoveEntry* GenerateEvasions(const Position& pos, Side side, uint64_t answers, MoveEntry* list);
// For a reader of moves: all moves of the pawns; those of the pieces of one type, knight to king, to a set of squares,
// with the castlings whatever the set.
MoveEntry* GeneratePawnMoves(const Position& pos, Side side, MoveEntry* list);
MoveEntry* GeneratePieceMoves(const Position& pos, Side side, int type, uint64_t targets, MoveEntry* list);
// Quiet moves that give direct check.
MoveEntry* GenerateChecks(const Position& pos, Side side, MoveEntry* list);

// Closes a list and sets the list starts of the next two plies behind it.
void CloseList(Position* pos, MoveEntry* end);

// Everything for the side to move, at frames[ply].first, closed.
void GenerateAll(Position* pos);

// Drops the illegal entries of a closed list, keeping the order of the others.
void RemoveIllegalMoves(const Position& pos, MoveEntry* list);

// True if `move` is one of the legal moves of the side to move. Overwrites the list of the ply.
bool MoveIsPossible(Position* pos, Move move);

// Moves the entry with the highest sort_value to the head; the earliest of equals wins.
void PickNextMove(MoveEntry* list);

}  // namespace vrel
