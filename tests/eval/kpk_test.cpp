#include "eval/kpk.h"

#include <vector>

#include "board/bitboards.h"
#include "board/fen.h"
#include "eval_support.h"
#include "support/engine.h"

namespace vrel {
namespace {

class Kpk : public EngineTest {};

int Answer(const std::string& fen) {
    const TestPosition pos(fen);
    return EvalKPK(*pos, pos->stm);
}

TEST_F(Kpk, KnownPositions) {
    struct Row {
        const char* fen;
        int answer;
    };
    const Row rows[] = {
        {"8/3k4/8/3K4/3P4/8/8/8 w - -", 0},    {"8/3k4/8/3K4/3P4/8/8/8 b - -", -800},
        {"1k6/8/1K6/1P6/8/8/8/8 w - -", 800},  {"1k6/8/1K6/1P6/8/8/8/8 b - -", -800},
        {"k7/8/K7/P7/8/8/8/8 w - -", 0},       {"k7/8/K7/P7/8/8/8/8 b - -", 0},
        {"8/8/8/8/7p/7k/8/7K w - -", 0},       {"8/8/8/8/1p6/1k6/8/1K6 b - -", 800},
        {"8/8/8/8/6p1/6k1/8/6K1 w - -", -800}, {"8/8/8/8/p7/k7/8/K7 b - -", 0},
        {"8/8/8/3p4/3k4/8/3K4/8 w - -", -800}, {"8/8/8/3p4/3k4/8/3K4/8 b - -", 0},
        {"8/6P1/8/5K2/8/8/8/k7 b - -", -800},  {"6k1/6P1/6K1/8/8/8/8/8 b - -", 0},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Answer(row.fen), row.answer) << row.fen;
}

// A slow solver that works from single positions: what the table must say.
class SlowSolver {
public:
    SlowSolver() {
        for (int pawn = 8; pawn < 64; ++pawn)
            for (int wk = 0; wk < 64; ++wk)
                for (int bk = 0; bk < 64; ++bk)
                    for (int stm = 0; stm < 2; ++stm)
                        state_[Index(stm, pawn, wk, bk)] = First(stm, pawn, wk, bk);
        for (bool changed = true; changed;) {
            changed = false;
            for (int pawn = 8; pawn < 56; ++pawn)
                for (int wk = 0; wk < 64; ++wk)
                    for (int bk = 0; bk < 64; ++bk)
                        changed |= Update(0, pawn, wk, bk) | Update(1, pawn, wk, bk);
        }
    }

    bool Legal(int stm, int pawn, int wk, int bk) const { return state_[Index(stm, pawn, wk, bk)] != ILLEGAL; }
    bool Win(int stm, int pawn, int wk, int bk) const { return state_[Index(stm, pawn, wk, bk)] == WIN; }

private:
    enum State : uint8_t { ILLEGAL, DRAW, WIN, UNKNOWN };

    static size_t Index(int stm, int pawn, int wk, int bk) {
        return static_cast<size_t>(((stm * 64 + pawn) * 64 + wk) * 64 + bk);
    }

    static State First(int stm, int pawn, int wk, int bk) {
        if (pawn == wk || pawn == bk || wk == bk || distance(wk, bk) == 1)
            return ILLEGAL;
        if (stm == 0 && (BB_PawnRays[WHITE][static_cast<size_t>(pawn)] & Bit(bk)))
            return ILLEGAL;
        if (pawn >= 56)  // a queen: lost only if the lone king takes it at once
            return stm == 0 || distance(bk, pawn) > 1 || distance(wk, pawn) == 1 ? WIN : DRAW;
        return UNKNOWN;
    }

    bool Update(int stm, int pawn, int wk, int bk) {
        State& state = state_[Index(stm, pawn, wk, bk)];
        if (state != UNKNOWN)
            return false;
        state = stm == 0 ? BestForPawn(pawn, wk, bk) : BestForKing(pawn, wk, bk);
        return state != UNKNOWN;
    }

    State BestForPawn(int pawn, int wk, int bk) const {
        bool open = false;
        std::vector<State> next = {state_[Index(1, pawn + 8, wk, bk)]};
        if (pawn < 16 && next[0] != ILLEGAL)
            next.push_back(state_[Index(1, pawn + 16, wk, bk)]);
        for (uint64_t steps = BB_KingRays[static_cast<size_t>(wk)]; steps;)
            next.push_back(state_[Index(1, pawn, PopLSB(&steps), bk)]);
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
            const State state = state_[Index(0, pawn, wk, to)];
            if (state == DRAW || (to == pawn && distance(wk, pawn) >= 2))
                return DRAW;
            open |= state == UNKNOWN;
            lost |= state == WIN;
        }
        return open ? UNKNOWN : lost ? WIN : DRAW;
    }

    std::vector<State> state_ = std::vector<State>(2 * 64 * 64 * 64);
};

// Sets the three pieces up without a detour over text.
int AnswerFor(Position* pos, int owner, int pawn, int own_king, int other_king, int side) {
    ClearBoard(pos);
    AddPiece(pos, owner, PAWN, pawn);
    AddPiece(pos, owner, KING, own_king);
    AddPiece(pos, owner ^ 1, KING, other_king);
    return EvalKPK(*pos, side);
}

TEST_F(Kpk, AgreesWithASlowSolverOnEveryPositionOfBothColours) {
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
                    ASSERT_EQ(AnswerFor(board.get(), WHITE, pawn, wk, bk, stm), win)
                        << "pawn " << pawn << " kings " << wk << ' ' << bk << " to move " << stm;
                    ASSERT_EQ(AnswerFor(board.get(), BLACK, pawn ^ 56, wk ^ 56, bk ^ 56, stm ^ 1), win)
                        << "pawn " << pawn << " kings " << wk << ' ' << bk << " to move " << stm;
                }
    EXPECT_EQ(wins, 111282);  // with the pawn on the left half, either side to move
}

TEST_F(Kpk, ABoardWithoutKingsIsADraw) {
    EXPECT_EQ(Answer("8/8/8/8/3P4/8/8/8 w - -"), 0);
    EXPECT_EQ(Answer("8/8/8/8/3P4/8/8/4K3 w - -"), 0);
}

}  // namespace
}  // namespace vrel
