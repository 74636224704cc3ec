#pragma once

#include <cstdint>

#include "board/position.h"

// Who attacks what. Attack sets are made from pairs of opposite rays by obstruction difference; yes-or-no questions
// build no set but walk the few sliders on the lines of a square.
namespace vrel {

// The squares that a slider reaches along one line, first blockers included. `lower` and `upper` are the two rays of
// the line, towards the lower and the higher squares. The difference of the nearest blockers covers just the squares
// from one to the other (obstruction difference).
inline uint64_t LineAttacks(uint64_t lower, uint64_t upper, uint64_t occ) {
    const uint64_t above = upper & occ;
    const uint64_t from_below = ~0ULL << GetMSB((lower & occ) | 1);
    return (lower | upper) & (2 * (above & (0 - above)) + from_below);
}

// Attack sets of a slider on `sq` over the occupied set `occ`, the first blocker of each direction included.
inline uint64_t GenAttacksB(int sq, uint64_t occ) {
    const auto n = static_cast<size_t>(sq);
    return LineAttacks(BB_RaySW[n], BB_RayNE[n], occ) | LineAttacks(BB_RaySE[n], BB_RayNW[n], occ);
}
inline uint64_t GenAttacksR(int sq, uint64_t occ) {
    const auto n = static_cast<size_t>(sq);
    return LineAttacks(BB_RayS[n], BB_RayN[n], occ) | LineAttacks(BB_RayW[n], BB_RayE[n], occ);
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
    const auto n = static_cast<size_t>(sq);
    const auto& bb = pos.bb[static_cast<size_t>(side)];
    if ((BB_PawnRays[static_cast<size_t>(side ^ 1)][n] & bb[PAWN]) | (BB_KnightRays[n] & bb[KNIGHT]) |
        (BB_KingRays[n] & bb[KING]))
        return true;
    const uint64_t occ = Occupied(pos);
    return AnySees(BB_BishopRays[n] & (bb[BISHOP] | bb[QUEEN]), sq, occ) ||
           AnySees(BB_RookRays[n] & (bb[ROOK] | bb[QUEEN]), sq, occ);
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
