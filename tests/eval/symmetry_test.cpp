#include <algorithm>

#include "eval_support.h"
#include "support/oracle.h"
#include "support/playout.h"

namespace vrel {
namespace {

class Symmetry : public EngineTest {};

// Where a figure of one side differs from that of the other side in the mirrored position; empty if nowhere.
std::string Difference(const RootEval& a, const RootEval& b) {
    const EvalReport& x = a.report;
    const EvalReport& y = b.report;
    std::string text;
    const auto check = [&text](const char* name, auto left, auto right) {
        if (left != right)
            text += std::string(name) + " " + std::to_string(left) + " / " + std::to_string(right) + "; ";
    };
    check("score", a.score, b.score);
    check("stage", x.report_stage, y.report_stage);
    check("draw_adj", x.report_draw_adj, y.report_draw_adj);
    check("hung", x.report_hung, __builtin_bswap64(y.report_hung));
    check("pinned", x.report_pinned, __builtin_bswap64(y.report_pinned));
    check("draw", a.frame.eval_draw, b.frame.eval_draw);
    for (size_t side = 0; side < 2; ++side) {
        const size_t other = side ^ 1;
        check("mtl", x.report_mtl[side], y.report_mtl[other]);
        check("pos", x.report_pos[side], y.report_pos[other]);
        check("pawns", x.report_pawns[side], y.report_pawns[other]);
        check("knights", x.report_knights[side], y.report_knights[other]);
        check("bishops", x.report_bishops[side], y.report_bishops[other]);
        check("rooks", x.report_rooks[side], y.report_rooks[other]);
        check("queens", x.report_queens[side], y.report_queens[other]);
        check("kings", x.report_kings[side], y.report_kings[other]);
        check("passers", x.report_passers[side], y.report_passers[other]);
        check("free rank", x.report_free_rank[side], y.report_free_rank[other]);
        check("hung value", a.frame.hung_value[side], b.frame.hung_value[other]);
        check("free pawn rank", a.frame.free_pawn_rank[side], b.frame.free_pawn_rank[other]);
    }
    for (size_t sq = 0; sq < 64; ++sq)
        check("square", x.eval_by_square[sq], y.eval_by_square[sq ^ 56]);
    return text;
}

// The opposition counts with the white king below alone: such positions aren't their own mirror. Nor are those that
// lack a king, since no square stands for it.
bool IsOwnMirror(const oracle::Board& board, int stage) {
    const auto& squares = board.squares;
    if (std::count(squares.begin(), squares.end(), 'K') != 1 || std::count(squares.begin(), squares.end(), 'k') != 1)
        return false;
    const auto distance =
        std::find(squares.begin(), squares.end(), 'K') - std::find(squares.begin(), squares.end(), 'k');
    return stage < 24 || (distance != 16 && distance != -16);
}

TEST_F(Symmetry, ThePositionWithColoursExchangedHasTheSameFigures) {
    int compared = 0;
    for (const std::string& fen : RandomPositions(22000, 4711)) {
        oracle::Board board;
        ASSERT_TRUE(oracle::ReadFen(fen, &board));
        const RootEval straight = EvaluateRoot(fen);
        if (!IsOwnMirror(board, straight.report.report_stage))
            continue;
        ++compared;
        const RootEval mirrored = EvaluateRoot(oracle::WriteFen(oracle::Mirrored(board)));
        ASSERT_EQ(Difference(straight, mirrored), "") << fen;
    }
    EXPECT_GE(compared, 20000);
}

TEST_F(Symmetry, HoldsOnBoardsThatNoGameLeadsTo) {
    for (uint32_t seed = 1; seed <= 3000; ++seed) {
        const std::string fen = RandomSetup(seed);
        oracle::Board board;
        ASSERT_TRUE(oracle::ReadFen(fen, &board));
        const RootEval straight = EvaluateRoot(fen);
        if (!IsOwnMirror(board, straight.report.report_stage))
            continue;
        ASSERT_EQ(Difference(straight, EvaluateRoot(oracle::WriteFen(oracle::Mirrored(board)))), "") << fen;
    }
}

TEST_F(Symmetry, OnlyTheWhiteKingBelowMakesTheOpposition) {
    // Without the term the scores of both sides add up to twice the bonus of the move, which is 3.
    const auto sum = [](const std::string& pieces) {
        return EvaluateRoot(pieces + " w - -").score + EvaluateRoot(pieces + " b - -").score;
    };
    EXPECT_EQ(sum("8/p6p/4k3/8/4K3/8/P6P/8"), 2 * (3 - 5));
    EXPECT_EQ(sum("8/p6p/8/4k3/8/4K3/P6P/8"), 2 * (3 - 5));
    EXPECT_EQ(sum("8/p6p/8/4K3/8/4k3/P6P/8"), 2 * 3);
    EXPECT_EQ(sum("8/p6p/4k3/8/5K2/8/P6P/8"), 2 * 3);
}

// The same figures below the root: fresh, with the pawns known, and from the cache.
TEST_F(Symmetry, TheCachesChangeNothing) {
    for (const std::string& fen : RandomPositions(5000, 99)) {
        const RootEval root = EvaluateRoot(fen);
        SearchThread* thread = EvalThread(fen);
        const int side = thread->pos.stm;
        const bool in_check = SideInCheck(thread->pos);
        const auto expect_same = [&](const char* how) {
            thread->frames[2].hung_value = {77, 77};
            thread->frames[2].free_pawn_rank = {77, 77};
            ASSERT_EQ(Evaluate(thread, side, 2, in_check), root.score) << how << ' ' << fen;
            ASSERT_EQ(thread->frames[2].eval, root.score) << how << ' ' << fen;
            ASSERT_EQ(thread->frames[2].hung_value, root.frame.hung_value) << how << ' ' << fen;
            ASSERT_EQ(thread->frames[2].free_pawn_rank, root.frame.free_pawn_rank) << how << ' ' << fen;
            ASSERT_EQ(thread->frames[2].eval_draw, root.frame.eval_draw) << how << ' ' << fen;
        };
        expect_same("from the cache");
        for (EvalHashEntry& entry : thread->eval_cache)
            entry.key = 0;
        expect_same("with the pawns known");
        for (EvalHashEntry& entry : thread->eval_cache)
            entry.key = 0;
        thread->pawn_cache.fill(PawnHashEntry{});
        expect_same("fresh");
    }
}

}  // namespace
}  // namespace vrel
