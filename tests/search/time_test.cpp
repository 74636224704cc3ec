// When a search is told to end. How much time it gets, the transcripts show.
#include <gtest/gtest.h>

#include "board/fen.h"
#include "interface/pblock.h"
#include "search/search_control.h"
#include "search/time_control.h"
#include "support/engine.h"

namespace vrel {
namespace {

constexpr Move MINE = MakeMoveValue(6, 21);
constexpr Move OTHER = MakeMoveValue(1, 18);

// A search in progress as the clock sees it, with a target that is far off.
class Timeout : public ::testing::Test {
protected:
    void SetUp() override {
        SetDefaults();
        PBlock.log = 0;
        PBlock.noise = SILENT;
        SetPosition(GamePosition(), fen_opn);
        PBlock.level_time = 1000;
        GetElapsedTime(0);
        InitSearch(STATE_THINKING);
        PBlock.depth = 5;
        PBlock.done_depth = 4;
        PBlock.change_depth = 2;
        PBlock.score = 0;
        PBlock.depth_score[4] = 0;
        PBlock.pv[1] = GetThread(1)->pv[1] = MINE;
    }

    static int StopAfterTurn() {
        SearchTimeout();
        return PBlock.stop;
    }

    // The same in the first moment of a search, however often the test is held up.
    static int StopAtOnce() {
        do {
            PBlock.stop = 0;
            GetElapsedTime(0);
            SearchTimeout();
        } while (PBlock.elapsed > 0.05);
        return PBlock.stop;
    }
};

TEST_F(Timeout, EndsASearchAtItsTarget) {
    EXPECT_EQ(StopAfterTurn(), 0);
    PBlock.trg_time = 0.0;
    PBlock.depth = 1;
    EXPECT_EQ(StopAfterTurn(), 0) << "a line of depth 2 is waited for";
    PBlock.depth = 2;
    PBlock.state = STATE_PONDERING;
    EXPECT_EQ(StopAfterTurn(), 0) << "the opponent's time";
    PBlock.state = STATE_ANALYSING;
    EXPECT_EQ(StopAfterTurn(), STOP_COMMAND);
    PBlock.stop = 0;
    PBlock.state = STATE_THINKING;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

TEST_F(Timeout, WaitsForALineNotWithoutEnd) {
    const struct {
        int depth, level_moves;
        double clock, patience;
    } rows[] = {{0, 1, 1, 2}, {0, 0, 1, 2}, {1, 1, 100, 0.2}, {1, 0, 4, 1}, {1, 0, 100, 2}, {1, 0, 0.5, 0.2}};
    PBlock.overhead = 0.0;
    for (const auto& row : rows)
        for (const bool over : {false, true}) {
            PBlock.depth = static_cast<int8_t>(row.depth);
            PBlock.level_moves = static_cast<int8_t>(row.level_moves);
            PBlock.clock[WHITE] = row.clock;
            PBlock.trg_time = -row.patience + (over ? -0.1 : 0.1);
            EXPECT_EQ(StopAtOnce(), over ? STOP_TIME : 0) << row.depth << ' ' << row.level_moves << ' ' << row.clock;
        }
}

TEST_F(Timeout, KeepsTheOverheadFree) {
    PBlock.level_moves = 0;
    PBlock.clock[WHITE] = 1000;
    PBlock.trg_time = 5;
    PBlock.overhead = 4.9;
    EXPECT_EQ(StopAtOnce(), 0);
    PBlock.overhead = 5;
    EXPECT_EQ(StopAtOnce(), STOP_TIME);
    PBlock.trg_time = 1000;
    PBlock.overhead = 199.9;
    EXPECT_EQ(StopAtOnce(), 0);
    PBlock.overhead = 200;
    EXPECT_EQ(StopAtOnce(), STOP_TIME) << "five overheads stay on the clock, the target aside";
    PBlock.level_moves = 1;
    EXPECT_EQ(StopAtOnce(), 0) << "a fixed time is used up";
}

TEST_F(Timeout, PlaysAnEasyMoveEarly) {
    PBlock.easy = 2;
    EXPECT_EQ(StopAfterTurn(), 0);
    PBlock.easy = 1;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
    PBlock.stop = 0;
    PBlock.easy = 2;
    while (PBlock.elapsed < 0.001)
        GetElapsedTime(1);
    PBlock.trg_time = 2 * PBlock.elapsed;  // half of it is over, and all may be when the test was held up
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

struct ExtensionRow {
    const char* name;
    int score, worker_score;
    Move worker_move;
    int done_score;  // at the last finished depth
    int change_depth;
    int percent;  // of the time left, by which the target is lengthened
};

constexpr ExtensionRow kExtensions[] = {
    {"all agree", 0, 0, MINE, 0, 2, 0},
    {"the worker sees its own move fail", 0, -21, MINE, 0, 2, 15},
    {"by 20 isn't enough", 0, -20, MINE, 0, 2, 0},
    {"a worker has something better", 0, 21, OTHER, 0, 2, 10},
    {"a little better", 0, 20, OTHER, 0, 2, 4},
    {"equal", 0, 0, OTHER, 0, 2, 0},
    {"the score falls far", -41, -41, MINE, 0, 2, 14},
    {"the score falls", -40, -40, MINE, 0, 2, 5},
    {"the score falls by the margin alone", -20, -20, MINE, 0, 2, 0},
    {"the margin grows with the score", 108, 108, MINE, 160, 2, 5},
    {"and so does the larger one", 99, 99, MINE, 160, 2, 14},
    {"the best move has just changed", 0, 0, MINE, 0, 4, 1},
    {"nothing finished yet", -500, -500, MINE, NO_SCORE, 4, 0},
    {"the largest wins", -41, 0, OTHER, 0, 2, 14},
};

TEST_F(Timeout, LengthensTheTargetWhileInDoubt) {
    for (const ExtensionRow& row : kExtensions) {
        SetUp();
        PBlock.level_moves = 0;
        PBlock.overhead = 0.0;
        PBlock.score = static_cast<int16_t>(row.score);
        PBlock.depth_score[4] = static_cast<int16_t>(row.done_score);
        PBlock.change_depth = static_cast<int8_t>(row.change_depth);
        GetThread(1)->score = static_cast<int16_t>(row.worker_score);
        GetThread(1)->pv[1] = row.worker_move;
        while (PBlock.elapsed <= 0.02)  // before that nothing is lengthened
            GetElapsedTime(1);
        // With the target long over, the extension alone keeps the search going: as far as its share of the clock.
        PBlock.trg_time = -1000.0;
        for (const double share : {1.1, 0.9}) {
            PBlock.stop = 0;
            PBlock.clock[WHITE] = row.percent == 0 ? 1e9 : 1000.0 / (row.percent * 0.01) * share;
            EXPECT_EQ(StopAfterTurn(), row.percent != 0 && share > 1 ? 0 : STOP_TIME) << row.name;
        }
    }
}

}  // namespace
}  // namespace vrel
