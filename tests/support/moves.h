#pragma once

#include "board/position.h"

// Squares and moves as tests write them.
namespace vrel {

// The square of a name such as "e4".
constexpr Square SquareNamed(const char* name) { return name[0] - 'a' + (name[1] - '1') * 8; }

// The move of a text such as "e2e4", with promotion bits.
constexpr Move Coord(const char* text, Move promotion = NO_MOVE) {
    return static_cast<Move>(MakeMoveValue(SquareNamed(text), SquareNamed(text + 2)) | promotion);
}

// The list entry of a move, as a generator writes it.
constexpr MoveEntry EntryOf(const Position& pos, Move move) {
    return {move, pos.board[static_cast<size_t>(FromSquare(move))], pos.board[static_cast<size_t>(ToSquare(move))], 0,
            0};
}

constexpr bool IsCastling(const MoveEntry& entry) {
    const int files = FileOf(FromSquare(entry.move)) - FileOf(ToSquare(entry.move));
    return TypeOf(entry.piece) == KING && (files == 2 || files == -2);
}

constexpr bool IsEnPassant(const Position& pos, const MoveEntry& entry) {
    return TypeOf(entry.piece) == PAWN && entry.captured == 0 &&
           FileOf(FromSquare(entry.move)) != FileOf(ToSquare(entry.move)) && ToSquare(entry.move) == pos.ep_square;
}

}  // namespace vrel
