#pragma once

#include <array>
#include <string>

#include "board/search_thread.h"

// Moves as PGN has them, for programs that show games: unlike the texts that the engine reads moves by, no other legal
// move has the same.
namespace vrel {

// The legal moves of a position in which both sides have their king. `end` is behind the last.
struct LegalMoves {
    std::array<MoveEntry, MOVE_STACK_RESERVE> list;
    const MoveEntry* end = nullptr;

    explicit LegalMoves(const Position& pos);
    bool Empty() const { return end == list.data(); }
};

// A legal move in coordinates as UCI has them, in standard notation with its sign of check or mate, and the position
// behind it, such as "e7e8q e8=Q+ 4Q2k/8/8/8/8/8/8/4K3 b - -". The move is made and taken back.
std::string MoveRecord(Position* pos, const LegalMoves& moves, Move move);

}  // namespace vrel
