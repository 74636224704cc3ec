#include "board/exchange.h"

#include <algorithm>
#include <cassert>

#include "board/attacks.h"

namespace vrel {

namespace {

constexpr int FORCED_FLOOR = -9999;
constexpr int KING_TAKEN = 9999;

// Every capture takes an attacker off the board, so no sequence is longer than the board.
constexpr int MAX_CAPTURES = 66;

// The pieces of both sides that move along a kind of line.
struct Sliders {
    uint64_t diagonal, straight;
};

Sliders SlidersOf(const Position& pos) {
    return {BishopsAndQueens(pos, WHITE) | BishopsAndQueens(pos, BLACK),
            RooksAndQueens(pos, WHITE) | RooksAndQueens(pos, BLACK)};
}

// All pieces of both sides that attack `sq` over `occ` and stand on a square of it.
uint64_t AttackersOf(const Position& pos, Square sq, uint64_t occ, Sliders sliders) {
    return (SteppersAt(pos, WHITE, sq) | SteppersAt(pos, BLACK, sq) | (GenAttacksB(sq, occ) & sliders.diagonal) |
            (GenAttacksR(sq, occ) & sliders.straight)) &
           occ;
}

// Square of the least valuable of the side's attackers, of equals the lowest. There is one at least.
Square LowestAttacker(const Position& pos, Side side, uint64_t attackers) {
    assert(attackers & pos.bb[side][0]);
    int type = PAWN;
    while ((pos.bb[side][type] & attackers) == 0)
        ++type;
    return GetLSB(pos.bb[side][type] & attackers);
}

// What comes into play on `sq` once a piece of the given type has left for it. Nothing stands behind a knight, and a
// rook opens no diagonal.
uint64_t SlidersBehind(int type, Square sq, uint64_t occ, Sliders sliders) {
    uint64_t found = 0;
    if (type != KNIGHT && type != ROOK)
        found |= GenAttacksB(sq, occ) & sliders.diagonal;
    if (type >= ROOK)
        found |= GenAttacksR(sq, occ) & sliders.straight;
    return found;
}

}  // namespace

int swapoff1(const Position& pos, Side side, Square from, Square sq, uint64_t occ) {
    assert(from == NO_SQUARE || (pos.bb[side][0] & Bit(from)));
    const Sliders sliders = SlidersOf(pos);
    // A forced first capture may come from anywhere (it may be a quiet move): lines open behind any mover.
    if (from != NO_SQUARE)
        occ &= ~Bit(from);
    uint64_t attackers = AttackersOf(pos, sq, occ, sliders);

    // What each capture of the sequence takes, in turn; a capture of a king ends it.
    std::array<int, MAX_CAPTURES> taken;
    int n = 0;
    int target = TypeOf(pos.board[sq]);
    Side mover = side;
    Square attacker = from;
    bool king_taken = false;
    while (true) {
        if (attacker == NO_SQUARE) {
            if ((attackers & pos.bb[mover][0]) == 0)
                break;
            attacker = LowestAttacker(pos, mover, attackers);
        }
        // Whoever let the king be taken made an illegal capture: it gets a loss that no gain makes up for.
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

bool ExchangeReaches(const Position& pos, Side side, Square from, Square sq, int threshold) {
    assert(TypeOf(pos.board[from]) != KING);
    const int victim = TypeOf(pos.board[sq]);
    assert(threshold <= piece_value[victim]);
    if (victim == KING)
        return true;
    int target = TypeOf(pos.board[from]);
    Side mover = side ^ 1;
    // The exchange fails the threshold if the side to capture, taking `target`, gets at least `wanted` out of it. That
    // is asked for each side in turn: it can't get more than the target's value, and it gets that much if the other
    // side in its turn doesn't get what is left.
    int wanted = piece_value[victim] - threshold + 1;
    if (piece_value[target] < wanted)
        return true;
    // A pawn can't lose more than itself by the capture: if that leaves enough, nothing behind it matters.
    const uint64_t pawns = BB_PawnRays[side][sq] & pos.bb[mover][PAWN];
    if (pawns && piece_value[PAWN] <= piece_value[target] - wanted)
        return false;

    const Sliders sliders = SlidersOf(pos);
    uint64_t occ = Occupied(pos) & ~Bit(from);
    uint64_t attackers = AttackersOf(pos, sq, occ, sliders);
    for (bool reached = true;; reached = !reached) {
        if ((attackers & pos.bb[mover][0]) == 0)
            return reached;
        if (target == KING)
            return !reached;
        const Square attacker = LowestAttacker(pos, mover, attackers);
        wanted = piece_value[target] - wanted + 1;
        target = TypeOf(pos.board[attacker]);
        // The capturing piece is worth less than the other side would have to win.
        if (piece_value[target] < wanted)
            return !reached;
        occ &= ~Bit(attacker);
        attackers = (attackers | SlidersBehind(target, sq, occ, sliders)) & occ;
        mover ^= 1;
    }
}

}  // namespace vrel
