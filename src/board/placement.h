#pragma once

#include <array>
#include <cassert>
#include <cstdint>

#include "board/position.h"
#include "platform/narrow.h"
#include "platform/vector.h"

// Single pieces put on the board, taken away and moved, in all its forms at once; none of it touches the keys. Making
// and taking back a move are these steps, so they are inlined there.
namespace vrel {

using Row = std::array<uint8_t, MAX_ROW + 1>;

// The rows are searched as a whole: where a piece stands in its row can't be predicted, and a loop would pay for that.
static_assert(sizeof(Row) == sizeof(Vector));

// Place of a square that is in the row; NO_SQUARE gives its length. The king's isn't part of the material signature, so
// the terminator tells.
inline int PlaceOf(Vector row, Square sq) { return FirstPlace(EqualBytes(row, FillVector(sq))); }

// Puts a piece, a type or a code, on an empty square, unless its row is full: then it does nothing. A row is closed
// anew behind each piece that it takes in; the sums follow.
inline void AddPiece(Position* pos, Side side, int piece, Square sq) {
    const int type = TypeOf(piece);
    assert(pos->board[sq] == 0 && type >= PAWN && type <= KING);
    Row& row = pos->plist[side][type];
    const int n = PlaceOf(LoadVector(row.data()), NO_SQUARE);
    if (n == MAX_ROW) [[unlikely]]
        return;
    row[n] = Narrow(sq);
    row[n + 1] = NO_SQUARE;
    pos->board[sq] = Narrow(PieceCode(side, type));
    pos->npv[side] = Narrow(pos->npv[side] + npv_unit[type]);
    pos->msig[side] += msig_unit[type];
    pos->bb[side][0] |= Bit(sq);
    pos->bb[side][type] |= Bit(sq);
}

// Takes away the piece that is there.
inline void RemovePiece(Position* pos, Square sq) {
    const int code = pos->board[sq];
    assert(code != 0);
    const int type = TypeOf(code);
    const Side side = SideOf(code);
    pos->board[sq] = 0;
    Row& row = pos->plist[side][type];
    const Vector squares = LoadVector(row.data());
    // Later squares move up one place, so that the order of the row stays.
    const Vector earlier = FirstPlaces(PlaceOf(squares, sq));
    StoreVector(row.data(), Select(earlier, squares, DropFirst(squares)));
    pos->npv[side] = Narrow(pos->npv[side] - npv_unit[type]);
    pos->msig[side] -= msig_unit[type];
    pos->bb[side][0] ^= Bit(sq);
    pos->bb[side][type] ^= Bit(sq);
}

// Carries a piece of `side` to an empty square.
inline void MovePiece(Position* pos, Side side, Square from, Square to) {
    const uint8_t code = pos->board[from];
    assert(code != 0 && SideOf(code) == side && pos->board[to] == 0);
    const int type = TypeOf(code);
    pos->board[to] = code;
    pos->board[from] = 0;
    Row& row = pos->plist[side][type];
    const Vector squares = LoadVector(row.data());
    // The place that holds the old square is changed into the new one.
    const Vector place = EqualBytes(squares, FillVector(from));
    StoreVector(row.data(), DifferingBits(squares, CommonBits(place, FillVector(from ^ to))));
    const uint64_t both = Bit(from) | Bit(to);
    pos->bb[side][0] ^= both;
    pos->bb[side][type] ^= both;
}

}  // namespace vrel
