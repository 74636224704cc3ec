#pragma once

#include <cstdint>

#include "board/position.h"

// Who attacks what. Attack sets are made from the lines of a square by subtraction; yes-or-no questions
// build no set but walk the few sliders on the lines of a square.
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
inline uint64_t GenAttacksB(int sq, uint64_t occ) {
    const SquareLines& lines = square_lines[sq];
    return LineAttacks(lines, lines.diagonal, occ) | LineAttacks(lines, lines.antidiagonal, occ);
}
inline uint64_t GenAttacksR(int sq, uint64_t occ) {
    const SquareLines& lines = square_lines[sq];
    return LineAttacks(lines, lines.file, occ) | RankAttacks(lines, occ);
}

// True if a slider of `set`, which lies on lines of `sq`, sees it over `occ`.
inline bool AnySees(uint64_t set, int sq, uint64_t occ) {
    while (set)
        if ((BB_Between(PopLSB(&set), sq) & occ) == 0)
            return true;
    return false;
}

// True if a piece of `side` attacks `sq`.
inline bool SqAtakd(const Position& pos, int sq, int side) {
    const auto& bb = pos.bb[side];
    if ((BB_PawnRays[side ^ 1][sq] & bb[PAWN]) | (BB_KnightRays[sq] & bb[KNIGHT]) | (BB_KingRays[sq] & bb[KING]))
        return true;
    const uint64_t occ = Occupied(pos);
    return AnySees(BB_BishopRays[sq] & (bb[BISHOP] | bb[QUEEN]), sq, occ) ||
           AnySees(BB_RookRays[sq] & (bb[ROOK] | bb[QUEEN]), sq, occ);
}

// Members of `set` that a piece of `type` (knight to queen) on `sq` attacks.
uint64_t GetAtakr(int sq, int type, uint64_t set, uint64_t occ);

// What stands alone between `sq` and each of the sliders, all of which lie on its lines.
inline uint64_t LoneBlockers(int sq, uint64_t sliders, uint64_t occ) {
    uint64_t result = 0;
    while (sliders) {
        const uint64_t between = BB_Between(PopLSB(&sliders), sq) & occ;
        if ((between & (between - 1)) == 0)
            result |= between;
    }
    return result;
}

// Pieces of any colour that stand alone between the king (or the only queen) of `side` and an enemy slider.
uint64_t PinnedToKing(const Position& pos, int side);
uint64_t PinnedToQueen(const Position& pos, int side);

}  // namespace vrel
