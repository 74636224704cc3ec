#pragma once

#include <array>
#include <cassert>
#include <cstdint>

#include "board/position.h"

// Who attacks what. Attack sets come from tables; what asks for a few sliders alone walks along their lines. All
// functions take "no square": nothing attacks it.
namespace vrel {

// What the occupied squares tell of a slider on one square ("magic bitboards"). Those on its lines count, but for the
// rim, where a line ends anyhow. A multiplication brings them together in the highest bits, which number the entries of
// the square; two occupations share an entry only where they give the same attack set.
template <typename Entry>
struct SliderTable {
    uint64_t mask;
    uint64_t multiplier;
    const Entry* entries;
    int shift;

    Entry operator[](uint64_t occ) const { return entries[((occ & mask) * multiplier) >> shift]; }
};
// A bishop's entries are its attack sets. A rook has twenty times as many, most of them alike: its entries are the
// places of the sets, which leaves more of the cache to others. "No square" has one set, which is empty.
extern std::array<SliderTable<uint64_t>, SQUARES> bishop_tables;
extern std::array<SliderTable<uint16_t>, SQUARES> rook_tables;
extern std::array<uint64_t, 1 + 4900> rook_sets;

// Fills these tables. Called once, after InitializeBitboards and before anything else of the engine.
void InitializeAttacks();

// Attack sets of a slider on `sq` over the occupied set `occ`, the first blocker of each direction included.
inline uint64_t GenAttacksB(Square sq, uint64_t occ) { return bishop_tables[sq][occ]; }
inline uint64_t GenAttacksR(Square sq, uint64_t occ) { return rook_sets[rook_tables[sq][occ]]; }

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
    return (SteppersAt(pos, side, sq) | (GenAttacksB(sq, occ) & BishopsAndQueens(pos, side)) |
            (GenAttacksR(sq, occ) & RooksAndQueens(pos, side))) != 0;
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
