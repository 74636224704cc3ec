// What several workers do for one another, played through by one thread: the records of the others stay as they might
// be found at a moment of a search.
#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/legality.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "search/search.h"
#include "search/search_control.h"
#include "search/thread_pool.h"
#include "search/transposition.h"
#include "support/engine.h"

namespace vrel {
namespace {

constexpr const char* ENDING = "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -";
constexpr const char* FEW_MOVES = "4k3/4p3/8/8/8/8/4P3/4K3 w - -";
constexpr const char* MATED = "7k/6Q1/6K1/8/8/8/8/8 b - -";
constexpr int DEEPEST = 10;

class Workers : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        PBlock.hash_mb = 1;
        ASSERT_EQ(InitTTable(), 0);
    }

    // The moment before a search: nothing is left of earlier ones.
    static void Prepare(const char* fen, int workers, int depth) {
        SetDefaults();
        PBlock.log = 0;
        PBlock.noise = SILENT;
        ClearTTable();
        for (int id = 1; id <= workers; ++id)
            ASSERT_EQ(InitNewThread(id), 0);
        PBlock.nthreads = static_cast<int8_t>(workers);
        PBlock.max_depth = static_cast<int8_t>(depth);
        SetPosition(GamePosition(), fen);
        InitSearch(STATE_ANALYSING);
    }

    // What worker 2 has found when it has gone through its depths, while `others` workers are at depth 9.
    static SearchThread& SideWorker(int workers, int others, int multipv = 1) {
        Prepare(FEW_MOVES, workers, DEEPEST);
        PBlock.multipv = static_cast<int16_t>(multipv);
        for (int id = 1; others > 0; ++id)
            if (id != 2) {
                GetThread(id)->depth = 9;
                --others;
            }
        SearchIterations(2);
        return *GetThread(2);
    }
};

struct RedoRow {
    int depth;
    int better;      // than worker 1's score, centipawns
    int best_depth;  // of the side worker, beyond that of worker 1
    bool other_move;
    bool redone;
};

TEST_F(Workers, WorkerOneLooksAgainAtABetterMoveOfAnother) {
    for (const RedoRow& row :
         {RedoRow{8, 10, 0, true, true}, RedoRow{8, 9, 0, true, false}, RedoRow{8, 10, 1, true, true},
          RedoRow{8, 10, -1, true, false}, RedoRow{8, 10, 0, false, false}, RedoRow{7, 10, 0, true, false}}) {
        Prepare(ENDING, 1, row.depth);
        SearchHere();
        const SearchResult alone = PublishedResult();
        const uint64_t nodes = GetThread(1)->nodes;
        uint64_t with_one = 0;
        for (const int workers : {2, 3}) {
            Prepare(ENDING, workers, row.depth);
            for (int id = 2; id <= workers; ++id) {
                SearchThread& other = *GetThread(id);
                other.score = static_cast<int16_t>(alone.score + row.better);
                other.best_depth = static_cast<int16_t>(alone.depth + row.best_depth);
                other.pv[1] = static_cast<Move>(row.other_move ? alone.best + 1 : alone.best);
            }
            SearchHere();
            EXPECT_EQ(GetThread(1)->nodes > nodes, row.redone) << row.better << ' ' << row.best_depth;
            if (workers == 2)
                with_one = GetThread(1)->nodes;
        }
        EXPECT_EQ(GetThread(1)->nodes, with_one) << "once for all of them";
    }
}

TEST_F(Workers, SideWorkersLeaveADepthThatEnoughOthersAreAt) {
    const struct {
        int workers, others;
        bool skipped;
    } rows[] = {{2, 0, false}, {2, 1, false}, {3, 2, true},  {5, 2, true}, {6, 2, false},
                {6, 3, true},  {7, 3, true},  {8, 3, false}, {8, 4, true}};
    for (const auto& row : rows) {
        const SearchThread& side = SideWorker(row.workers, row.others);
        for (int depth = 1; depth <= DEEPEST; ++depth)
            EXPECT_EQ(side.iter_nodes[depth] == 0, row.skipped && (depth == 8 || depth == 9))
                << row.workers << ' ' << row.others << ' ' << depth;
    }
    EXPECT_NE(SideWorker(3, 2, 2).iter_nodes[8], 0U) << "several lines are searched by all";
    const uint64_t alone = SideWorker(2, 0).nodes;
    EXPECT_EQ(SideWorker(3, 0).nodes, alone);
    EXPECT_NE(SideWorker(3, 1).nodes, alone) << "beside another one it searches in another order";
}

TEST_F(Workers, SideWorkersGiveUpADepthThatIsPublished) {
    for (const int id : {1, 2}) {
        Prepare(FEW_MOVES, 2, DEEPEST);
        PBlock.depth = 8;
        SearchIterations(id);
        for (int depth = 1; depth <= DEEPEST; ++depth)
            EXPECT_EQ(GetThread(id)->iter_score[depth] == NO_SCORE, id == 2 && (depth == 6 || depth == 7)) << depth;
    }
}

TEST_F(Workers, SideWorkersPublishNothingAndEndNothing) {
    for (const char* fen : {FEW_MOVES, MATED})
        for (const int depth : {0, 5}) {
            Prepare(fen, 2, depth);
            PBlock.max_nodes = 1;
            SearchIterations(2);
            EXPECT_EQ(PBlock.stop + PBlock.depth + PBlock.done_depth + PBlock.pv[1], 0) << fen;
            EXPECT_EQ(GetThread(2)->nodes > 0, fen == FEW_MOVES && depth > 0);
            EXPECT_EQ(GetThread(2)->iter_nodes[depth] > 0, fen == FEW_MOVES && depth > 0) << "nodes limit worker 1";
            if (fen == MATED && depth > 0) {
                EXPECT_EQ(GetThread(2)->score, -9999);
            }
        }
}

// Behind the root move in work: alone at once, of several not before there is a line of depth 2.
TEST_F(Workers, WorkerOneEndsTheSearchByItsNodes) {
    for (const int workers : {1, 2}) {
        Prepare(FEW_MOVES, workers, DEEPEST);
        PBlock.max_nodes = 1;
        SearchHere();
        EXPECT_EQ(PBlock.stop, STOP_TIME);
        EXPECT_EQ(PBlock.depth, workers);
    }
}

TEST_F(Workers, TheThirdAndTheSixthComeLater) {
    for (const int id : {2, 3, 6}) {
        Prepare(FEW_MOVES, 6, 1);
        const double start = MonotonicSeconds();
        SearchIterations(id);
        EXPECT_GE(SecondsSince(start), id == 2 ? 0 : id == 3 ? 0.0049 : 0.0099);
    }
}

// A search that is stopped before it has found anything.
TEST_F(Workers, AnswerWithALegalMoveAllTheSame) {
    const struct {
        const char* fen;
        int depth;
        bool answers;
    } rows[] = {{FEW_MOVES, 5, true}, {FEW_MOVES, 0, false}, {MATED, 5, false}, {"8/8/8/8/8/8/8/8 w - -", 5, false}};
    for (const auto& row : rows) {
        Prepare(row.fen, 1, row.depth);
        ASSERT_EQ(CreateThreadPool(1), 0);
        RequestSearch(STATE_THINKING);
        PrepareRequestedSearch();
        StopSearch(STOP_COMMAND);
        StartRequestedSearch();
        while (!SearchIsOver())
            SleepMilliseconds(1);
        CompleteResult();
        const SearchResult result = PublishedResult();
        EXPECT_EQ(result.best != NO_MOVE && MoveIsLegal(*GamePosition(), WHITE, result.best), row.answers) << row.fen;
        EXPECT_EQ(result.ponder, NO_MOVE);
        CloseSearch();
        EXPECT_TRUE(EngineIsFree());
        KillThreadPool(1);
    }
}

// A single move needs no thought; nor does one that wins far more than any other.
TEST_F(Workers, NoteAnEasyMove) {
    const struct {
        const char* fen;
        int depth, easy;
    } rows[] = {
        {"k7/8/8/8/8/8/R7/2K5 b - -", 7, 0},
        {"k7/2K5/8/8/8/p7/P7/8 b - -", 7, 1},
        {"k7/2K5/8/8/8/p7/P7/8 b - -", 6, 0},
        {"6k1/5ppp/8/3q4/4P3/8/5PPP/6K1 w - -", 12, 2},
        {"6k1/5ppp/8/3q4/4P3/8/5PPP/6K1 w - -", 11, 0},
        {"6k1/5ppp/8/3q4/2P1P3/8/5PPP/6K1 w - -", 12, 0},
        {"6k1/5ppp/8/3p4/4P3/8/5PPP/6K1 w - -", 12, 0},
        {"8/4P1k1/8/6p1/8/8/8/6K1 w - -", 12, 0},
    };
    for (const auto& row : rows) {
        Prepare(row.fen, 1, row.depth);
        SearchHere();
        EXPECT_EQ(PBlock.easy, row.easy) << row.fen << ' ' << row.depth << ' ' << PBlock.score;
    }
}

}  // namespace
}  // namespace vrel
