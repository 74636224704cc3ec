// The evaluation favours no colour: a position with the colours exchanged has the same figures. And the caches change
// nothing.
#include <gtest/gtest.h>

#include <cstdlib>

#include "board/attacks.h"
#include "board/fen.h"
#include "eval/evaluate.h"
#include "interface/pblock.h"
#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

bool SideInCheck(const Position& pos) { return SqAtakd(pos, KingSquare(pos, pos.stm), pos.stm ^ 1); }

// The report is worker 1's alone, so its record is the one to evaluate on.
SearchThread* WorkerAt(const std::string& fen) {
    SearchThread* thread = GetThread(1);
    SetPosition(&thread->pos, fen.c_str());
    return thread;
}

// Everything that the evaluation says of a position, the figures of white first, or of black for a mirror image.
std::vector<int64_t> FiguresOf(const std::string& fen, bool mirrored) {
    PBlock.report = EvalReport{};
    SearchThread* thread = WorkerAt(fen);
    const int score = Evaluate(thread, thread->pos.stm, 1, SideInCheck(thread->pos));
    const EvalReport& r = PBlock.report;
    const PlyFrame& frame = thread->frames[1];
    std::vector<int64_t> figures = {score, r.report_stage, static_cast<int64_t>(r.report_draw_adj * 10000),
                                    frame.eval_draw};
    for (size_t i = 0; i < 2; ++i) {
        const size_t side = i ^ static_cast<size_t>(mirrored);
        for (const auto* row :
             {&r.report_mtl, &r.report_pos, &r.report_pawns, &r.report_knights, &r.report_bishops, &r.report_rooks,
              &r.report_queens, &r.report_kings, &r.report_passers, &frame.hung_value})
            figures.push_back((*row)[side]);
        figures.push_back(r.report_free_rank[side]);
        figures.push_back(frame.free_pawn_rank[side]);
    }
    for (const uint64_t set : {r.report_hung, r.report_pinned})
        figures.push_back(static_cast<int64_t>(mirrored ? __builtin_bswap64(set) : set));
    for (size_t sq = 0; sq < 64; ++sq)
        figures.push_back(r.eval_by_square[mirrored ? sq ^ 56 : sq]);
    return figures;
}

// In a pawn ending the opposition counts with the white king below alone: such positions aren't their own mirror.
bool IsOwnMirror(const Position& pos) {
    const bool pieces = pos.npv[WHITE] + pos.npv[BLACK] > 0;
    return pieces || std::abs(KingSquare(pos, WHITE) - KingSquare(pos, BLACK)) != 16;
}

// The same below the root: from the cache, with the pawns known, and fresh.
void ExpectSameBelowTheRoot(const std::string& fen) {
    SearchThread* thread = WorkerAt(fen);
    const int side = thread->pos.stm;
    const bool in_check = SideInCheck(thread->pos);
    const int score = Evaluate(thread, side, 1, in_check);
    const PlyFrame root = thread->frames[1];
    for (const char* how : {"from the cache", "with the pawns known", "fresh"}) {
        PlyFrame& frame = thread->frames[2];
        frame.hung_value = {77, 77};
        frame.free_pawn_rank = {77, 77};
        EXPECT_EQ(Evaluate(thread, side, 2, in_check), score) << how;
        EXPECT_EQ(frame.eval, score) << how;
        EXPECT_EQ(frame.hung_value, root.hung_value) << how;
        EXPECT_EQ(frame.free_pawn_rank, root.free_pawn_rank) << how;
        EXPECT_EQ(frame.eval_draw, root.eval_draw) << how;
        thread->eval_cache.fill(EvalHashEntry{});
        if (how[0] == 'w')
            thread->pawn_cache.fill(PawnHashEntry{});
    }
}

TEST(Mirror, HasTheSameFigures) {
    for (const std::string& fen : ManyPositions(9000, 2000)) {
        SCOPED_TRACE(fen);
        if (!IsOwnMirror(WorkerAt(fen)->pos))
            continue;
        const std::string mirror = oracle::WriteFen(oracle::Mirrored(oracle::ReadFen(fen)));
        ASSERT_EQ(FiguresOf(fen, false), FiguresOf(mirror, true));
    }
}

TEST(Mirror, CachesChangeNothing) {
    for (const std::string& fen : ManyPositions(300, 300)) {
        SCOPED_TRACE(fen);
        ExpectSameBelowTheRoot(fen);
    }
}

TEST(Mirror, BreaksOnNoBoard) {
    for (const std::string& fen : ReadPositions("boards.txt"))
        for (const int ply : {1, 2, 3}) {
            SearchThread* thread = WorkerAt(fen);
            const int score = Evaluate(thread, thread->pos.stm, ply, false);
            EXPECT_EQ(thread->frames[static_cast<size_t>(ply)].eval, static_cast<int16_t>(score)) << fen;
        }
}

}  // namespace
}  // namespace vrel
