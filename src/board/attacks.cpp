#include "board/attacks.h"

namespace vrel {

uint64_t GetAtakr(int sq, int type, uint64_t set, uint64_t occ) {
    switch (type) {
        case KNIGHT:
            return set & BB_KnightRays[static_cast<size_t>(sq)];
        case BISHOP:
            return set & GenAttacksB(sq, occ);
        case ROOK:
            return set & GenAttacksR(sq, occ);
        case QUEEN:
            return set & (GenAttacksB(sq, occ) | GenAttacksR(sq, occ));
        default:
            return 0;
    }
}

uint64_t PinnedToKing(const Position& pos, int side) {
    const int king = KingSquare(pos, side);
    const auto n = static_cast<size_t>(king);
    const auto& enemy = pos.bb[static_cast<size_t>(side ^ 1)];
    return LoneBlockers(
        king, (BB_BishopRays[n] & (enemy[BISHOP] | enemy[QUEEN])) | (BB_RookRays[n] & (enemy[ROOK] | enemy[QUEEN])),
        Occupied(pos));
}

uint64_t PinnedToQueen(const Position& pos, int side) {
    const int queen = pos.plist[static_cast<size_t>(side)][QUEEN][0];
    const auto n = static_cast<size_t>(queen);
    const auto& enemy = pos.bb[static_cast<size_t>(side ^ 1)];
    return LoneBlockers(queen, (BB_BishopRays[n] & enemy[BISHOP]) | (BB_RookRays[n] & enemy[ROOK]), Occupied(pos));
}

}  // namespace vrel
