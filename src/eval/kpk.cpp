#include "eval/kpk.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>

namespace vrel {

namespace {

using KingSets = std::array<uint64_t, 64>;

// The wins of the pawn's side: a set of squares of the lone king by side to move (0 the pawn's side), pawn slot and
// square of the pawn's king. The pawn is white and on files a to d; its slot is file + 4 * rank. What isn't a win is
// a draw or can't occur.
std::array<std::array<KingSets, 32>, 2> kpk_db;

constexpr int PawnSlot(Square pawn) {
    assert(FileOf(pawn) < 4);
    return FileOf(pawn) + 4 * RankOf(pawn);
}

// Squares one king step away from a member of the set.
constexpr uint64_t KingSteps(uint64_t set) {
    const uint64_t row = ((set & ~FILE_A) >> 1) | ((set & ~FILE_H) << 1);
    const uint64_t rows = set | row;
    return row | rows << 8 | rows >> 8;
}

// Everything that is known about one pawn square; the sets are of squares of the lone king, by square of the other.
struct PawnCase {
    Square pawn;
    KingSets legal0, legal1;  // with the pawn's side and with the lone king to move
    uint64_t capture;         // squares from which the lone king takes the pawn, if it is loose
};

// With the pawn's side to move the lone king may not stand where the pawn attacks.
void SetLegality(PawnCase* c) {
    for (Square wk = 0; wk < 64; ++wk) {
        const uint64_t room = wk == c->pawn ? 0 : ~(Bit(wk) | BB_KingRays[wk] | Bit(c->pawn));
        c->legal1[wk] = room;
        c->legal0[wk] = room & ~BB_PawnRays[WHITE][c->pawn];
    }
    c->capture = BB_KingRays[c->pawn];
}

// A pawn on the last rank is a queen in effect: won, unless the lone king takes it at once.
void SolveLastRank(const PawnCase& c) {
    const int slot = PawnSlot(c.pawn);
    for (Square wk = 0; wk < 64; ++wk) {
        const uint64_t safe = distance(wk, c.pawn) == 1 ? ~0ULL : ~c.capture;
        kpk_db[0][slot][wk] = c.legal0[wk];
        kpk_db[1][slot][wk] = c.legal1[wk] & safe;
    }
}

// Lone king squares from which the pawn's advance wins, its own king standing on `wk`.
uint64_t AdvanceWins(const PawnCase& c, const PawnCase& ahead, Square wk) {
    uint64_t wins = kpk_db[1][PawnSlot(ahead.pawn)][wk];
    // The double step needs a single step that could be made.
    if (RankOf(c.pawn) == 1)
        wins |= kpk_db[1][PawnSlot(ahead.pawn + 8)][wk] & ahead.legal1[wk];
    return wins & c.legal0[wk];
}

// One pass over the squares of the pawn's king; true if it found a new win.
bool Sweep(const PawnCase& c, KingSets* win0, KingSets* win1) {
    bool changed = false;
    for (Square wk = 0; wk < 64; ++wk) {
        uint64_t wins = 0;
        for (uint64_t steps = BB_KingRays[wk]; steps;)
            wins |= (*win1)[PopLSB(&steps)];
        wins = (*win0)[wk] | (wins & c.legal0[wk]);
        changed |= wins != (*win0)[wk];
        (*win0)[wk] = wins;
    }
    for (Square wk = 0; wk < 64; ++wk) {
        // The lone king holds if it has a step that isn't lost, or can take the pawn. Without any step it is
        // stalemated.
        uint64_t holds = KingSteps(c.legal0[wk] & ~(*win0)[wk]);
        if (distance(wk, c.pawn) >= 2)
            holds |= c.capture;
        const uint64_t wins = c.legal1[wk] & KingSteps((*win0)[wk]) & ~holds;
        changed |= wins != (*win1)[wk];
        (*win1)[wk] = wins;
    }
    return changed;
}

// Takes the wins by the pawn's advance as given and adds those by king moves until nothing changes any more.
void Solve(const PawnCase& c, const PawnCase& ahead) {
    const int slot = PawnSlot(c.pawn);
    KingSets& win0 = kpk_db[0][slot];
    KingSets& win1 = kpk_db[1][slot];
    win1.fill(0);
    for (Square wk = 0; wk < 64; ++wk)
        win0[wk] = AdvanceWins(c, ahead, wk);
    while (Sweep(c, &win0, &win1)) {
    }
}

// `stm` is 0 with the pawn's side to move.
bool IsWin(Side stm, Square pawn, Square wk, Square bk) {
    const uint64_t wins = kpk_db[stm][PawnSlot(pawn)][wk];
    return wins >> bk & 1;
}

}  // namespace

// A pawn only moves forward, so the ranks are solved from the last one down. Slots of the first rank stay empty.
void KPKgen() {
    for (int file = 0; file < 4; ++file) {
        PawnCase ahead;
        ahead.pawn = 56 + file;
        SetLegality(&ahead);
        SolveLastRank(ahead);
        for (Square pawn = 48 + file; pawn >= 8; pawn -= 8) {
            PawnCase c;
            c.pawn = pawn;
            SetLegality(&c);
            Solve(c, ahead);
            ahead = c;
        }
    }
}

int EvalKPKFor(const Position& pos, Side owner, Side side) {
    assert(CountOf(pos, owner, PAWN) > 0);
    Square pawn = pos.plist[owner][PAWN][0];
    Square wk = KingSquare(pos, owner);
    Square bk = KingSquare(pos, owner ^ 1);
    // Without both kings nothing is won.
    if (std::max({pawn, wk, bk}) >= NO_SQUARE)
        return 0;
    // The table's pawn is white and on the left half of the board.
    if (owner == BLACK) {
        pawn = 63 - pawn;
        wk = 63 - wk;
        bk = 63 - bk;
    }
    if (FileOf(pawn) > 3) {
        pawn ^= 7;
        wk ^= 7;
        bk ^= 7;
    }
    if (!IsWin(side ^ owner, pawn, wk, bk))
        return 0;
    return side == owner ? 800 : -800;
}

int EvalKPK(const Position& pos, Side side) { return EvalKPKFor(pos, pos.msig[WHITE] ? WHITE : BLACK, side); }

}  // namespace vrel
