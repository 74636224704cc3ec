#pragma once

#include <array>
#include <cassert>
#include <cstdint>

#include "board/position.h"

// Who attacks what. Attack sets are made from the lines of a square by subtraction; yes-or-no questions build no set
// but walk the few sliders on the lines of a square. All functions take "no square": nothing attacks it.
namespace vrel {

// What the attack sets of a slider need about its square, in one cache line. "No square" has empty lines.
struct alignas(64) SquareLines {
    uint64_t file, diagonal, antidiagonal;  // without the square itself
    uint64_t west, east;
    uint64_t bit;
    uint64_t turned_bit;  // on the board turned upside down
};
extern const std::array<SquareLines, SQUARES> square_lines;

// The squares that a slider reaches along one line that isn't a rank, first blockers included. Taking the slider from
// the occupied squares of its line borrows from the nearest blocker above, and so changes just what lies between; on
// the board turned upside down the same holds for the blocker below.
inline uint64_t LineAttacks(const SquareLines& lines, uint64_t line, uint64_t occ) {
    const uint64_t blockers = line & occ;
    const uint64_t above = blockers - lines.bit;
    const uint64_t below = __builtin_bswap64(__builtin_bswap64(blockers) - lines.turned_bit);
    return (above ^ below) & line;
}

// The same along a rank, which turning the board doesn't reverse. To the right, taking one flips everything up to the
// nearest blocker; to the left, everything from the nearest blocker on counts.
inline uint64_t RankAttacks(const SquareLines& lines, uint64_t occ) {
    const uint64_t right = lines.east & occ;
    const uint64_t from_left = ~0ULL << GetMSB((lines.west & occ) | 1);
    return (lines.east & (right ^ (right - 1))) | (lines.west & from_left);
}

// Attack sets of a slider on `sq` over the occupied set `occ`, the first blocker of each direction included.
inline uint64_t GenAttacksB(Square sq, uint64_t occ) {
    const SquareLines& lines = square_lines[sq];
    return LineAttacks(lines, lines.diagonal, occ) | LineAttacks(lines, lines.antidiagonal, occ);
}
inline uint64_t GenAttacksR(Square sq, uint64_t occ) {
    const SquareLines& lines = square_lines[sq];
    return LineAttacks(lines, lines.file, occ) | RankAttacks(lines, occ);
}

// Pawns, knights and king of a side that attack `sq`.
inline uint64_t SteppersAt(const Position& pos, Side side, Square sq) {
    const auto& bb = pos.bb[side];
    return (BB_PawnRays[side ^ 1][sq] & bb[PAWN]) | (BB_KnightRays[sq] & bb[KNIGHT]) | (BB_KingRays[sq] & bb[KING]);
}

// Bishops, rooks and queens of a side on the lines of `sq` along which they move, whatever stands between.
inline uint64_t SlidersTowards(const Position& pos, Side side, Square sq) {
    return (BB_BishopRays[sq] & BishopsAndQueens(pos, side)) | (BB_RookRays[sq] & RooksAndQueens(pos, side));
}

// True if one of the sliders, all of which lie on lines of `sq`, sees it over `occ`.
inline bool AnySees(uint64_t sliders, Square sq, uint64_t occ) {
    while (sliders)
        if ((BB_Between(PopLSB(&sliders), sq) & occ) == 0)
            return true;
    return false;
}

// What stands alone between `sq` and each of the sliders, all of which lie on lines of `sq`.
inline uint64_t LoneBlockers(uint64_t sliders, Square sq, uint64_t occ) {
    uint64_t result = 0;
    while (sliders) {
        const uint64_t between = BB_Between(PopLSB(&sliders), sq) & occ;
        if (AtMostOne(between))
            result |= between;
    }
    return result;
}

// True if a piece of `side` attacks `sq`, seen over `occ` or over the board as it is. What stands on `sq` itself plays
// no part.
inline bool SqAtakdOver(const Position& pos, Square sq, Side side, uint64_t occ) {
    return SteppersAt(pos, side, sq) || AnySees(SlidersTowards(pos, side, sq), sq, occ);
}
inline bool SqAtakd(const Position& pos, Square sq, Side side) { return SqAtakdOver(pos, sq, side, Occupied(pos)); }

// Members of `set` that a piece of `type` (knight to queen) on `sq` attacks; none for any other type.
uint64_t GetAtakr(Square sq, int type, uint64_t set, uint64_t occ);

// Pieces of any colour that stand alone between the king of `side` and an enemy slider.
inline uint64_t PinnedToKing(const Position& pos, Side side) {
    const Square king = KingSquare(pos, side);
    return LoneBlockers(SlidersTowards(pos, side ^ 1, king), king, Occupied(pos));
}

// The same with the queen of a side that has exactly one. Enemy queens don't count: such a pin ends in an exchange.
inline uint64_t PinnedToQueen(const Position& pos, Side side) {
    assert(CountOf(pos, side, QUEEN) == 1);
    const Square queen = pos.plist[side][QUEEN][0];
    const auto& enemy = pos.bb[side ^ 1];
    const uint64_t pinners = (BB_BishopRays[queen] & enemy[BISHOP]) | (BB_RookRays[queen] & enemy[ROOK]);
    return LoneBlockers(pinners, queen, Occupied(pos));
}

}  // namespace vrel
