#include "eval/kpk.h"

#include <gtest/gtest.h>

#include <vector>

#include "board/placement.h"
#include "support/engine.h"

namespace vrel {
namespace {

// King and pawn against king, solved a second time from single positions. The pawn is white's and goes up the board;
// to move is 0 for its side, 1 for the lone king.
class SlowSolver {
public:
    SlowSolver() {
        for (const bool first : {true, false})
            while (Pass(first)) {
            }
    }

    bool Legal(int stm, int pawn, int wk, int bk) const { return At(stm, pawn, wk, bk) != ILLEGAL; }
    bool Win(int stm, int pawn, int wk, int bk) const { return At(stm, pawn, wk, bk) == WIN; }

private:
    enum State : uint8_t { UNKNOWN, ILLEGAL, DRAW, WIN };

    static size_t Index(int stm, int pawn, int wk, int bk) {
        return static_cast<size_t>(((stm * 64 + pawn) * 64 + wk) * 64 + bk);
    }
    State At(int stm, int pawn, int wk, int bk) const { return state_[Index(stm, pawn, wk, bk)]; }

    // Fills in what is known at first, or what follows from it. True if anything was.
    bool Pass(bool first) {
        bool changed = false;
        for (int pawn = 8; pawn < 64; ++pawn)
            for (int wk = 0; wk < 64; ++wk)
                for (int bk = 0; bk < 64; ++bk)
                    for (int stm = 0; stm < 2; ++stm) {
                        State& state = state_[Index(stm, pawn, wk, bk)];
                        if (state != UNKNOWN)
                            continue;
                        state = first      ? First(stm, pawn, wk, bk)
                                : stm == 0 ? BestForPawn(pawn, wk, bk)
                                           : BestForKing(pawn, wk, bk);
                        changed |= state != UNKNOWN;
                    }
        return changed;
    }

    static State First(int stm, int pawn, int wk, int bk) {
        if (pawn == wk || pawn == bk || wk == bk || distance(wk, bk) == 1 ||
            (stm == 0 && (BB_PawnRays[WHITE][static_cast<size_t>(pawn)] & Bit(bk))))
            return ILLEGAL;
        if (pawn < 56)
            return UNKNOWN;
        // A queen: lost only if the lone king takes it at once.
        return stm == 0 || distance(bk, pawn) > 1 || distance(wk, pawn) == 1 ? WIN : DRAW;
    }

    State BestForPawn(int pawn, int wk, int bk) const {
        std::vector<State> next = {At(1, pawn + 8, wk, bk)};
        if (pawn < 16 && next[0] != ILLEGAL)
            next.push_back(At(1, pawn + 16, wk, bk));
        for (uint64_t steps = BB_KingRays[static_cast<size_t>(wk)]; steps;)
            next.push_back(At(1, pawn, PopLSB(&steps), bk));
        bool open = false;
        for (const State state : next) {
            if (state == WIN)
                return WIN;
            open |= state == UNKNOWN;
        }
        return open ? UNKNOWN : DRAW;
    }

    State BestForKing(int pawn, int wk, int bk) const {
        bool open = false;
        bool lost = false;
        for (uint64_t steps = BB_KingRays[static_cast<size_t>(bk)]; steps;) {
            const int to = PopLSB(&steps);
            const State state = At(0, pawn, wk, to);
            if (state == DRAW || (to == pawn && distance(wk, pawn) >= 2))
                return DRAW;
            open |= state == UNKNOWN;
            lost |= state == WIN;
        }
        return open ? UNKNOWN : lost ? WIN : DRAW;
    }

    std::vector<State> state_ = std::vector<State>(2 * 64 * 64 * 64);
};

int Answer(Position* pos, int owner, int pawn, int own_king, int other_king, int side) {
    ClearBoard(pos);
    AddPiece(pos, owner, PAWN, pawn);
    AddPiece(pos, owner, KING, own_king);
    AddPiece(pos, owner ^ 1, KING, other_king);
    return EvalKPK(*pos, side);
}

TEST(Kpk, IsSolvedAsASlowSolverSolvesIt) {
    const SlowSolver solver;
    const TestPosition board("8/8/8/8/8/8/8/8 w - -");
    int wins = 0;
    for (int pawn = 8; pawn < 56; ++pawn)
        for (int wk = 0; wk < 64; ++wk)
            for (int bk = 0; bk < 64; ++bk)
                for (int stm = 0; stm < 2; ++stm) {
                    if (!solver.Legal(stm, pawn, wk, bk))
                        continue;
                    const int win = solver.Win(stm, pawn, wk, bk) ? (stm == 0 ? 800 : -800) : 0;
                    wins += win != 0 && FileOf(pawn) < 4 ? 1 : 0;
                    ASSERT_EQ(Answer(board.get(), WHITE, pawn, wk, bk, stm), win) << pawn << ' ' << wk << ' ' << bk;
                    ASSERT_EQ(Answer(board.get(), BLACK, pawn ^ 56, wk ^ 56, bk ^ 56, stm ^ 1), win)
                        << pawn << ' ' << wk << ' ' << bk;
                }
    EXPECT_EQ(wins, 111282);  // with the pawn on the left half, either side to move
    ClearBoard(board.get());
    AddPiece(board.get(), WHITE, PAWN, 27);
    EXPECT_EQ(EvalKPK(*board, WHITE), 0);
    AddPiece(board.get(), WHITE, KING, 4);
    EXPECT_EQ(EvalKPK(*board, WHITE), 0) << "without a king nothing is won";
}

}  // namespace
}  // namespace vrel
