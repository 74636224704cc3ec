#include "eval/evaluate.h"

#include "board/keys.h"
#include "eval/endings.h"
#include "eval_support.h"
#include "search/search.h"

namespace vrel {
namespace {

class Frame : public EngineTest {};

TEST_F(Frame, NothingIsComputedInCheck) {
    SearchThread* thread = EvalThread("4k3/8/8/8/8/8/4r3/4K3 w - -");
    const uint64_t evals = thread->evals;
    thread->frames[5].hung_value = {1, 1};
    EXPECT_EQ(Evaluate(thread, WHITE, 5, true), NO_SCORE);
    EXPECT_EQ(thread->frames[5].eval, NO_SCORE);
    EXPECT_EQ(thread->frames[5].hung_value, (std::array<int16_t, 2>{0, 0}));
    EXPECT_EQ(thread->evals, evals);
}

TEST_F(Frame, MaterialDrawsScoreAsTheSettingsSay) {
    PBlock.draw_score[WHITE] = -12;
    PBlock.draw_score[BLACK] = 12;
    for (const char* pieces :
         {"8/8/4k3/8/8/8/8/K7", "8/8/4k3/8/8/8/8/KN6", "8/8/4kb2/8/8/8/8/K7", "8/8/4k3/8/8/8/8/KNN5",
          "8/8/4kn2/8/8/8/8/KN6", "8/8/4kb2/8/8/8/8/KB6", "8/8/4kb2/8/8/8/8/K1B5", "8/8/4kn2/8/8/8/8/KB6"})
        for (const char* side : {" w - -", " b - -"}) {
            SearchThread* thread = EvalThread(std::string(pieces) + side);
            const int stm = thread->pos.stm;
            const uint64_t key = GetFullHash(thread->pos);
            EXPECT_EQ(Evaluate(thread, stm, 3, false), stm == WHITE ? -12 : 12) << pieces;
            EXPECT_EQ(thread->frames[3].eval_draw, 1) << pieces;
            EXPECT_NE(thread->eval_cache[key % EVAL_CACHE_SIZE].key, key) << pieces;
        }
    PBlock.draw_score[WHITE] = PBlock.draw_score[BLACK] = 0;
    for (const char* fen : {"8/8/4k3/8/8/8/8/KBN5 w - -", "8/8/4k3/8/8/8/8/KBB5 w - -", "8/8/4k3/8/8/8/8/KNNN4 w - -",
                            "8/8/4k3/8/8/8/P7/KN6 w - -", "8/8/4k3/8/8/8/8/KR6 w - -"}) {
        SearchThread* thread = EvalThread(fen);
        Evaluate(thread, WHITE, 3, false);
        EXPECT_EQ(thread->frames[3].eval_draw, 0) << fen;
    }
}

TEST_F(Frame, BishopAndKnightDriveTheKingIntoTheirCorner) {
    // The kings keep their distance, so that only the corner counts.
    const auto score = [](const char* fen) { return EvaluateRoot(fen).score; };
    EXPECT_EQ(score("k7/8/2K5/8/8/8/4BN2/8 w - -"), 700 + 8 + 120 - 24) << "a8 with a bishop on light squares";
    EXPECT_EQ(score("8/8/8/8/2BN1K2/8/8/7k w - -"), 700 + 8 + 120 - 36) << "h1 as well";
    EXPECT_EQ(score("k7/8/2K5/8/8/8/3B1N2/8 w - -"), 700 + 8 + 10 - 24) << "the wrong one for dark squares";
    EXPECT_EQ(score("k7/8/2K5/8/8/8/4BN2/8 b - -"), -(700 + 8 + 120 - 24));
    const RootEval black = EvaluateRoot("8/8/8/8/4bn2/2k5/8/K7 w - -");
    EXPECT_EQ(black.score, -(700 + 8 + 10 - 24));
    EXPECT_EQ(black.report.report_kings[BLACK], 694);
    EXPECT_EQ(black.report.eval_by_square[18], 694);
}

TEST_F(Frame, MajorPiecesMopUp) {
    EXPECT_EQ(EvaluateRoot("k7/8/2K5/8/8/8/8/7R w - -").score, 500 + 200 + 60 - 20 / 4 - 30);
    EXPECT_EQ(EvaluateRoot("k7/8/2K5/8/8/8/8/7R b - -").score, -(500 + 200 + 60 - 5 - 30));
    EXPECT_EQ(EvaluateRoot("k6r/8/2K5/8/8/8/8/7Q w - -").score, 500 + 200 + 60 - 5 - 30);
    EXPECT_EQ(EvaluateRoot("8/8/8/8/8/2k5/7q/K7 w - -").score, -(1000 + 200 + 60 - 5 - 30));
}

TEST_F(Frame, TheStageFollowsThePieces) {
    EXPECT_EQ(EvaluateRoot("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -").report.report_stage, 0);
    EXPECT_EQ(EvaluateRoot("QQQ1k3/8/8/8/8/8/8/4K2R b - -").report.report_stage, 0);  // in check: nothing computed
    EXPECT_EQ(EvaluateRoot("4k3/pppppppp/8/8/8/8/PPPPPPPP/QQQRKRQQ w - -").report.report_stage, 0);
    EXPECT_EQ(EvaluateRoot("4k3/8/8/8/8/8/P7/4K1NR w - -").report.report_stage, 21);
    EXPECT_EQ(EvaluateRoot("4k3/p7/8/8/8/8/P7/4K3 w - -").report.report_stage, 24);
}

TEST_F(Frame, TheStartPositionIsWorthTheMove) {
    const RootEval start = EvaluateRoot("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    EXPECT_EQ(start.score, 9);
    EXPECT_EQ(start.report.report_mtl, (std::array<int16_t, 2>{3926, 3926}));
}

TEST_F(Frame, TheRootReadsNoCacheAndWritesBoth) {
    SearchThread* thread = EvalThread("4k3/pp6/8/8/8/8/P7/R3K3 w - -");
    const uint64_t key = GetFullHash(thread->pos);
    const int score = Evaluate(thread, WHITE, 1, false);
    EvalHashEntry& entry = thread->eval_cache[key % EVAL_CACHE_SIZE];
    PawnHashEntry& pawns = thread->pawn_cache[thread->pos.pawn_hash % PAWN_CACHE_SIZE];
    EXPECT_EQ(entry.key, key);
    EXPECT_EQ(pawns.key, thread->pos.pawn_hash);
    const PawnHashEntry right = pawns;
    entry.score = 1234;
    pawns.score[WHITE] += BothPair(100);
    const uint64_t hits = thread->eval_hits;
    const uint64_t pawn_probes = thread->pawn_probes;
    const uint64_t pawn_hits = thread->pawn_hits;
    EXPECT_EQ(Evaluate(thread, WHITE, 2, false), 1234);
    EXPECT_EQ(thread->eval_hits, hits + 1);
    EXPECT_EQ(thread->pawn_probes, pawn_probes);
    EXPECT_EQ(Evaluate(thread, WHITE, 1, false), score);
    EXPECT_EQ(entry.score, score);
    EXPECT_EQ(pawns.score, right.score);
    EXPECT_EQ(thread->pawn_probes, pawn_probes + 1);
    EXPECT_EQ(thread->pawn_hits, pawn_hits);
}

TEST_F(Frame, AnEntryHoldsForItsSideToMoveOnly) {
    SearchThread* thread = EvalThread("4k3/pp6/8/8/8/8/P7/R3K3 w - -");
    Evaluate(thread, WHITE, 2, false);
    const uint64_t hits = thread->eval_hits;
    thread->pos.stm = BLACK;
    Evaluate(thread, BLACK, 2, false);
    EXPECT_EQ(thread->eval_hits, hits);
}

TEST_F(Frame, TheCacheIgnoresTheFiftyMoveCounter) {
    SearchThread* thread = EvalThread("4k3/pp6/8/8/8/8/PPP5/R3K3 w - -");
    const int score = Evaluate(thread, WHITE, 1, false);
    thread->pos.fifty = 90;
    EXPECT_EQ(Evaluate(thread, WHITE, 2, false), score);
    EXPECT_EQ(Evaluate(thread, WHITE, 1, false), static_cast<int>(score * (1.0 - 60 * 0.01)));
}

// None of the pawns in these rows is taken for a passed pawn.
double Scale(const std::string& fen, int score, int fifty = 0) {
    const TestPosition pos(fen);
    pos->fifty = static_cast<uint8_t>(fifty);
    return ScaleFactor(*pos, pos->stm, score, 0);
}

TEST_F(Frame, DrawishScoresAreScaledDown) {
    constexpr const char* start = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
    EXPECT_EQ(Scale(start, 14, 90), 1.0);
    EXPECT_EQ(Scale(start, -14, 90), 1.0);
    EXPECT_EQ(static_cast<int>(15 * Scale(start, 15, 25)), 15);
    EXPECT_DOUBLE_EQ(Scale(start, 15, 21), 1.09);
    EXPECT_EQ(Scale(start, 15, 20), 1.0);
    EXPECT_EQ(Scale(start, 15, 30), 1.0);
    EXPECT_DOUBLE_EQ(Scale(start, -15, 100), 0.3);
    struct Row {
        const char* name;
        const char* fen;
        int score;
        double factor;
    };
    const Row rows[] = {
        {"much material, no pawns", "rrb1k3/8/8/8/8/8/8/QR2K3 w - -", 50, 0.9},
        {"two knights, whatever the counter", "4k3/p7/8/8/8/8/8/NN2K3 w - -", 50, 0.05},
        {"rook against pawn", "4k3/p7/8/8/8/8/8/R3K3 w - -", 50, 0.9},
        {"rook ahead against nothing else", "4k3/8/8/8/8/8/P7/R3K3 w - -", 50, 1.0},
        {"bishops against knight", "4k3/n7/8/8/8/8/8/BB2K3 w - -", 50, 0.9},
        {"a minor piece", "4k3/p7/8/8/8/8/8/B3K3 w - -", 50, 0.05},
        {"rook against knight", "4k1n1/p7/8/8/8/8/8/R3K3 w - -", 50, 0.9 * 0.1},
        {"rook and knight against rook", "4k1r1/8/8/8/8/8/8/RN2K3 w - -", 50, 0.2},
        {"a pawn each, won alone", "8/8/8/8/6kp/8/P7/K7 w - -", 50, 1.0},
        {"a pawn each, drawn alone", "8/8/k7/8/7p/8/P7/7K w - -", 50, 0.25},
        {"the wrong corner", "k7/8/8/8/8/P7/P7/1KB5 w - -", 50, 0.06},
        {"the right corner", "k7/8/8/8/8/P7/P7/1K1B4 w - -", 50, 1.0},
        {"the wrong corner, black", "1kb5/p7/8/8/8/8/8/K7 b - -", 50, 0.06},
        {"the right corner, black", "2b5/1k5p/8/8/8/7p/8/6K1 b - -", 50, 1.0},
        {"opposite bishops", "4kb2/pp6/8/8/8/8/PPP5/4KB2 w - -", 50, 0.4},
        {"opposite bishops, two up", "4kb2/p7/8/8/8/8/PPP5/4KB2 w - -", 50, 0.6},
        {"opposite bishops with rooks", "r3kb2/pp6/8/8/8/8/PPP5/R3KB2 w - -", 50, 0.75},
        {"opposite bishops with rooks, two up", "r3kb2/p7/8/8/8/8/PPP5/R3KB2 w - -", 50, 0.9},
        {"the last pawn, king there first", "4k1r1/1K6/8/8/8/8/P7/R7 w - -", 50, 0.6},
        {"the last pawn, king late", "4k1r1/8/8/8/8/8/P7/R1K5 w - -", 50, 0.6 * 0.75},
        {"the last pawn, watched", "1k4r1/8/8/8/8/8/P7/R5K1 w - -", 50, 0.6 * 0.75 * 0.75},
        {"the last pawns", "7k/p6r/8/8/8/8/PP6/R6K w - -", 50, 0.85 * 0.9},
        {"the last pawns, king before them", "8/pk5r/8/8/8/8/PP6/R6K w - -", 50, 0.85 * 0.9 * 0.9 * 0.8},
    };
    for (const Row& row : rows)
        EXPECT_DOUBLE_EQ(Scale(row.fen, row.score), row.factor) << row.name;
}

TEST_F(Frame, OddBoardsAreEvaluatedWithoutHarm) {
    const char* boards[] = {
        "8/8/8/8/8/8/8/8",
        "QQQQQQQQ/QQQQQQQ1/8/8/8/8/8/8",
        "QQQQQQQQ/QQQQQQQ1/8/8/K6k/8/8/rrrrrrrr",
        "NNNNNNNN/NN6/8/3Kk3/8/8/nnnnnnnn/nnnnnnn1",
        "KKKKKKKK/8/8/8/8/8/8/kkkkkkkk",
        "PPPPPPPP/PPPPPPPP/8/8/8/8/pppppppp/pppppppp",
        "pppppppp/8/8/3k4/8/3K4/8/PPPPPPPP",
        "PPPPPPPP/8/8/3k4/8/3K4/8/pppppppp",
        "P7/8/8/8/8/8/8/8",
        "k7/8/8/8/8/8/8/NB6",
        "8/8/8/8/8/8/8/KNB5",
        "R7/8/8/8/8/8/8/8",
        "bbbbbbbb/bbbbbbb1/8/3Kk3/8/8/8/BBBBBBBB",
        "qqqqrrrr/bbbbnnnn/QQQQRRRR/BBBBNNNN/qqqqrrrr/bbbbnnnn/QQQQRRRR/BBBBNNNN",
        "8/P7/8/8/8/8/p7/8",
    };
    for (const char* board : boards)
        for (const char* rest : {" w - -", " b - -", " w KQkq e3", " b KQkq a8"}) {
            const TestPosition pos(std::string(board) + rest);
            for (const int ply : {0, 1, 2, 3}) {
                const int score = Evaluate(pos.thread(), pos->stm, ply, false);
                EXPECT_EQ(pos.thread()->frames[static_cast<size_t>(ply)].eval, static_cast<int16_t>(score)) << board;
            }
        }
}

}  // namespace
}  // namespace vrel
