#include "board/exchange.h"

#include <algorithm>

#include "board/attacks.h"

namespace vrel {

namespace {

constexpr int FORCED_FLOOR = -9999;
constexpr int KING_TAKEN = 9999;

// Every capture takes an attacker off the board, so no sequence is longer than the board.
constexpr int MAX_CAPTURES = 66;

// All pieces of both sides that attack `sq` over `occ`.
uint64_t AttackersOf(const Position& pos, int sq, uint64_t occ) {
    const auto& w = pos.bb[WHITE];
    const auto& b = pos.bb[BLACK];
    return (BB_PawnRays[BLACK][sq] & w[PAWN]) | (BB_PawnRays[WHITE][sq] & b[PAWN]) |
           (BB_KnightRays[sq] & (w[KNIGHT] | b[KNIGHT])) | (BB_KingRays[sq] & (w[KING] | b[KING])) |
           (GenAttacksB(sq, occ) & (w[BISHOP] | w[QUEEN] | b[BISHOP] | b[QUEEN])) |
           (GenAttacksR(sq, occ) & (w[ROOK] | w[QUEEN] | b[ROOK] | b[QUEEN]));
}

// Type of the least valuable piece among the side's attackers, which aren't empty.
int LowestAttackerType(const Position& pos, int side, uint64_t attackers) {
    int type = PAWN;
    while ((pos.bb[side][type] & attackers) == 0)
        ++type;
    return type;
}

// The sets of both sides that capture along a kind of line.
struct Sliders {
    uint64_t diagonal, straight;
};

Sliders SlidersOf(const Position& pos) {
    const auto& w = pos.bb[WHITE];
    const auto& b = pos.bb[BLACK];
    return {w[BISHOP] | w[QUEEN] | b[BISHOP] | b[QUEEN], w[ROOK] | w[QUEEN] | b[ROOK] | b[QUEEN]};
}

// What comes into play on `sq` once a piece of the given type has left for it.
uint64_t SlidersBehind(int type, int sq, uint64_t occ, const Sliders& sliders) {
    uint64_t found = 0;
    if (type != KNIGHT && type != ROOK)
        found |= GenAttacksB(sq, occ) & sliders.diagonal;
    if (type >= ROOK)
        found |= GenAttacksR(sq, occ) & sliders.straight;
    return found;
}

}  // namespace

int swapoff1(const Position& pos, int side, int from, int sq, uint64_t occ) {
    const Sliders sliders = SlidersOf(pos);
    // A forced first capture may come from anywhere (it may be a quiet move): lines open behind any mover.
    if (from != NO_SQUARE)
        occ &= ~Bit(from);
    uint64_t attackers = AttackersOf(pos, sq, occ) & occ;

    // What each capture of the sequence takes, in turn; a capture of a king ends it.
    std::array<int, MAX_CAPTURES> taken;
    int n = 0;
    int target = TypeOf(pos.board[sq]);
    int mover = side;
    int attacker = from;
    bool king_taken = false;
    while (true) {
        if (attacker == NO_SQUARE) {
            const uint64_t own = attackers & pos.bb[mover][0];
            if (own == 0)
                break;
            const int type = LowestAttackerType(pos, mover, own);
            attacker = GetLSB(pos.bb[mover][type] & own);
        }
        if (target == KING) {
            king_taken = true;
            break;
        }
        taken[n++] = piece_value[target];
        target = TypeOf(pos.board[attacker]);
        occ &= ~Bit(attacker);
        attackers |= SlidersBehind(target, sq, occ, sliders);
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

bool ExchangeReaches(const Position& pos, int side, int from, int sq, int threshold) {
    const int victim = TypeOf(pos.board[sq]);
    if (victim == KING)
        return true;
    int target = TypeOf(pos.board[from]);
    int mover = side ^ 1;
    // The exchange fails the threshold if the side to capture, taking `target`, gets at least `wanted` out of it. That
    // is asked for each side in turn: it can't get more than the target's value, and it gets that much if the other
    // side in its turn doesn't get what is left.
    int wanted = piece_value[victim] - threshold + 1;
    if (piece_value[target] < wanted)
        return true;
    const uint64_t pawns = BB_PawnRays[side][sq] & pos.bb[mover][PAWN];
    if (pawns && piece_value[PAWN] <= piece_value[target] - wanted)
        return false;

    uint64_t occ = Occupied(pos) & ~Bit(from);
    uint64_t attackers = AttackersOf(pos, sq, occ) & occ;
    const Sliders sliders = SlidersOf(pos);
    for (bool reached = true;; reached = !reached) {
        const uint64_t own = attackers & pos.bb[mover][0];
        if (own == 0)
            return reached;
        if (target == KING)
            return !reached;
        const int type = LowestAttackerType(pos, mover, own);
        wanted = piece_value[target] - wanted + 1;
        if (piece_value[type] < wanted)
            return !reached;
        const uint64_t set = pos.bb[mover][type] & own;
        occ ^= set & (0 - set);
        attackers = (attackers | SlidersBehind(type, sq, occ, sliders)) & occ;
        target = type;
        mover ^= 1;
    }
}

}  // namespace vrel
