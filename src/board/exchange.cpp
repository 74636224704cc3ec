#include "board/exchange.h"

#include <algorithm>
#include <cstddef>

#include "board/attacks.h"

namespace vrel {

namespace {

constexpr int FORCED_FLOOR = -9999;
constexpr int KING_TAKEN = 9999;

// Every capture takes an attacker off the board, so no sequence is longer than the board.
constexpr size_t MAX_CAPTURES = 66;

// All pieces of both sides that attack `sq` over `occ`.
uint64_t AttackersOf(const Position& pos, int sq, uint64_t occ) {
    const auto n = static_cast<size_t>(sq);
    const auto& w = pos.bb[WHITE];
    const auto& b = pos.bb[BLACK];
    return (BB_PawnRays[BLACK][n] & w[PAWN]) | (BB_PawnRays[WHITE][n] & b[PAWN]) |
           (BB_KnightRays[n] & (w[KNIGHT] | b[KNIGHT])) | (BB_KingRays[n] & (w[KING] | b[KING])) |
           (GenAttacksB(sq, occ) & (w[BISHOP] | w[QUEEN] | b[BISHOP] | b[QUEEN])) |
           (GenAttacksR(sq, occ) & (w[ROOK] | w[QUEEN] | b[ROOK] | b[QUEEN]));
}

// Type of the least valuable piece among the side's attackers, which aren't empty.
int LowestAttackerType(const Position& pos, int side, uint64_t attackers) {
    int type = PAWN;
    while ((pos.bb[static_cast<size_t>(side)][static_cast<size_t>(type)] & attackers) == 0)
        ++type;
    return type;
}

}  // namespace

int swapoff1(const Position& pos, int side, int from, int sq, uint64_t occ) {
    const auto& w = pos.bb[WHITE];
    const auto& b = pos.bb[BLACK];
    const uint64_t diagonal = w[BISHOP] | w[QUEEN] | b[BISHOP] | b[QUEEN];
    const uint64_t straight = w[ROOK] | w[QUEEN] | b[ROOK] | b[QUEEN];
    // A forced first capture may come from anywhere (it may be a quiet move): lines open behind any mover.
    if (from != NO_SQUARE)
        occ &= ~Bit(from);
    uint64_t attackers = AttackersOf(pos, sq, occ) & occ;

    // What each capture of the sequence takes, in turn; a capture of a king ends it.
    std::array<int, MAX_CAPTURES> taken;
    size_t n = 0;
    int target = TypeOf(pos.board[static_cast<size_t>(sq)]);
    int mover = side;
    int attacker = from;
    bool king_taken = false;
    while (true) {
        if (attacker == NO_SQUARE) {
            const uint64_t own = attackers & pos.bb[static_cast<size_t>(mover)][0];
            if (own == 0)
                break;
            const int type = LowestAttackerType(pos, mover, own);
            attacker = GetLSB(pos.bb[static_cast<size_t>(mover)][static_cast<size_t>(type)] & own);
        }
        if (target == KING) {
            king_taken = true;
            break;
        }
        taken[n++] = piece_value[static_cast<size_t>(target)];
        target = TypeOf(pos.board[static_cast<size_t>(attacker)]);
        occ &= ~Bit(attacker);
        // Whatever stands behind the capturing piece comes into play.
        if (target != KNIGHT && target != ROOK)
            attackers |= GenAttacksB(sq, occ) & diagonal;
        if (target >= ROOK)
            attackers |= GenAttacksR(sq, occ) & straight;
        attackers &= occ;
        mover ^= 1;
        attacker = NO_SQUARE;
    }

    // Folded back: each side but the one with a forced capture may stand pat.
    int result = king_taken ? KING_TAKEN : 0;
    while (n > 0) {
        --n;
        const int floor = n == 0 && from != NO_SQUARE ? FORCED_FLOOR : 0;
        result = std::max(floor, taken[n] - result);
    }
    return result;
}

}  // namespace vrel
