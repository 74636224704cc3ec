#include "search/time_control.h"
#include "search/search_control.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "eval/personality.h"
#include "interface/pblock.h"
#include "search/search.h"
#include "support/engine.h"

namespace vrel {
namespace {

constexpr Move KNIGHT_OUT[4] = {MakeMoveValue(6, 21), MakeMoveValue(62, 45), MakeMoveValue(21, 6),
                                MakeMoveValue(45, 62)};

// Starts from the defaults of the control record, in the start position.
class TimeControl : public EngineTest {
protected:
    void SetUp() override {
        SetDefaults();
        PBlock.log = 0;
        PBlock.noise = SILENT;
        PBlock.hash_mb = 1;
        SetPosition(GamePosition(), fen_opn);
    }

    static void PlayPlies(int plies) {
        for (int i = 0; i < plies; ++i)
            PlayGameMove(GamePosition(), KNIGHT_OUT[i % 4]);
    }
};

struct BudgetRow {
    const char* name;
    int plies;
    int level_moves;
    int moves_to_go;  // as `go` gave it
    double clock, inc, overhead;
    bool ponder;
    double target;
};

// Worked by hand.
constexpr BudgetRow budgets[] = {
    {"sudden death at ply 40", 40, 0, 0, 60, 1, 0.025, true, 60.0 / 25 * 1.1 + 60.0 / 62},
    {"at the start 36 moves are left", 0, 0, 0, 74, 0, 0.025, true, 2 * 1.1},
    {"at ply 25 still 24", 25, 0, 0, 50, 0, 0.025, true, 2 * 1.1},
    {"an odd ply counts as the one before", 11, 0, 0, 64, 0, 0.025, true, 2 * 1.1},
    {"without pondering less", 40, 0, 0, 50, 0, 0.025, false, 2 * 0.9},
    {"three moves to go", 0, 40, 3, 40, 0, 0.025, true, 11},
    {"two moves to go", 0, 40, 2, 30, 0, 0.025, true, 9},
    {"the last move keeps a reserve", 0, 40, 0, 10, 0, 0.025, true, 6.4},
    {"the increment fades with the clock", 40, 0, 0, 2.5, 10, 0.025, true, 0.11 + 25 / 22.5},
    {"no increment on a clock of four overheads", 40, 0, 0, 0.4, 10, 0.1, true, 0.002},
    {"a clock nearly gone", 0, 0, 0, 0.01, 0, 0.025, true, 0.002},
    {"no clock at all", 0, 0, 0, 0, 0, 0, true, 0.002},
};

TEST_F(TimeControl, GivesEachMoveItsShareOfTheClock) {
    for (const BudgetRow& row : budgets) {
        SetUp();
        PlayPlies(row.plies);
        PBlock.level_moves = static_cast<int8_t>(row.level_moves);
        PBlock.moves_to_go = static_cast<int16_t>(row.moves_to_go);
        PBlock.clock[GamePosition()->stm] = row.clock;
        PBlock.inc = row.inc;
        PBlock.overhead = row.overhead;
        PBlock.ponder = row.ponder;
        InitSearch(static_cast<SearchState>(PBlock.request.Get()));
        EXPECT_NEAR(PBlock.trg_time, row.target, 1e-9) << row.name;
    }
}

TEST_F(TimeControl, CountsTheMovesOfAControlInTheConsole) {
    const struct { int plies, moves; } rows[] = {{0, 40}, {1, 40}, {2, 39}, {78, 1}, {79, 1}, {80, 40}};
    for (const auto& row : rows) {
        SetUp();
        PlayPlies(row.plies);
        PBlock.mode = MODE_CONSOLE;
        PBlock.level_moves = 40;
        PBlock.clock[GamePosition()->stm] = 300;
        InitSearch(static_cast<SearchState>(PBlock.request.Get()));
        EXPECT_EQ(PBlock.moves_to_go, row.moves) << row.plies;
    }
}

TEST_F(TimeControl, FixedTimeSetsTheClock) {
    PlayPlies(1);
    PBlock.level_moves = 1;
    PBlock.level_time = 7.5;
    InitSearch(static_cast<SearchState>(PBlock.request.Get()));
    EXPECT_EQ(PBlock.trg_time, 7.5);
    EXPECT_EQ(PBlock.clock[BLACK], 7.5);
    EXPECT_EQ(PBlock.clock[WHITE], 5.0);
}

TEST_F(TimeControl, StartsASearchWithACleanRecord) {
    PlayPlies(3);
    PBlock.stop = STOP_POOL;
    PBlock.score = 77;
    PBlock.depth = PBlock.done_depth = PBlock.change_depth = 9;
    PBlock.easy = 2;
    PBlock.pv[1] = 5;
    PBlock.depth_score[69] = 3;
    PBlock.depth_move[69] = 3;
    PBlock.request = STATE_ANALYSING;
    PBlock.hash_mb = 0;
    Personality.contempt = 12;
    GetThread(1)->nodes = 99;
    InitSearch(static_cast<SearchState>(PBlock.request.Get()));
    EXPECT_EQ(PBlock.stop, 0);
    EXPECT_EQ(PBlock.score, NO_SCORE);
    EXPECT_EQ(PBlock.depth + PBlock.done_depth + PBlock.change_depth + PBlock.easy, 0);
    EXPECT_EQ(PBlock.pv[1], NO_MOVE);
    EXPECT_EQ(PBlock.depth_score[69], NO_SCORE);
    EXPECT_EQ(PBlock.depth_move[69], NO_MOVE);
    EXPECT_EQ(PBlock.state, STATE_ANALYSING);
    EXPECT_EQ(PBlock.use_hash, 0);
    EXPECT_EQ(PBlock.tt_age, 3);
    EXPECT_EQ(PBlock.draw_score[BLACK], 12);
    EXPECT_EQ(PBlock.draw_score[WHITE], -12);
    EXPECT_EQ(GetThread(1)->nodes, 0u);
    EXPECT_TRUE(SamePosition(GetThread(1)->pos, *GamePosition()));
    Personality.contempt = 0;
}

// A search in progress, as SearchTimeout sees it. Times are set relative to what the clock shows: targets that are
// far away from, or long before, the moment of the call.
class Timeout : public TimeControl {
protected:
    void SetUp() override {
        TimeControl::SetUp();
        PBlock.request = STATE_THINKING;
        PBlock.level_moves = 1;
        PBlock.level_time = 1000;
        GetElapsedTime(0);
        InitSearch(static_cast<SearchState>(PBlock.request.Get()));
        PBlock.request = 0;
        PBlock.depth = 5;
        PBlock.done_depth = 4;
        PBlock.change_depth = 2;
        PBlock.score = 0;
        PBlock.depth_score[4] = 0;
        PBlock.pv[1] = GetThread(1)->pv[1] = KNIGHT_OUT[0];
    }

    static int StopAfterTurn() {
        SearchTimeout();
        return PBlock.stop;
    }
};

TEST_F(Timeout, LetsASearchRunUpToItsTarget) {
    EXPECT_EQ(StopAfterTurn(), 0);
    PBlock.trg_time = 0.0;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

TEST_F(Timeout, NamesWhoAsked) {
    PBlock.trg_time = 0.0;
    PBlock.state = STATE_ANALYSING;
    EXPECT_EQ(StopAfterTurn(), STOP_COMMAND);
}

TEST_F(Timeout, LeavesAPonderingSearchAlone) {
    PBlock.trg_time = 0.0;
    PBlock.state = STATE_PONDERING;
    EXPECT_EQ(StopAfterTurn(), 0);
    PBlock.easy = 1;
    EXPECT_EQ(StopAfterTurn(), 0);
}

TEST_F(Timeout, WaitsForALineOfDepthTwo) {
    PBlock.trg_time = 0.0;
    PBlock.depth = 1;
    PBlock.easy = 1;
    EXPECT_EQ(StopAfterTurn(), 0);
    PBlock.depth = 2;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

TEST_F(Timeout, KeepsTheOverheadFree) {
    PBlock.level_moves = 0;
    PBlock.clock[WHITE] = 1000;
    PBlock.trg_time = 5;
    PBlock.overhead = 1;
    EXPECT_EQ(StopAfterTurn(), 0);
    PBlock.overhead = 5;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

TEST_F(Timeout, EndsASearchWhenTheClockIsNearlyGone) {
    PBlock.level_moves = 0;
    PBlock.clock[WHITE] = 1.0;
    PBlock.overhead = 0.25;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

TEST_F(Timeout, PlaysASingleReplyAtOnce) {
    PBlock.easy = 1;
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

TEST_F(Timeout, PlaysAnObviousMoveAfterHalfTheTime) {
    PBlock.easy = 2;
    EXPECT_EQ(StopAfterTurn(), 0);
    // Half of the target is over, the whole isn't: the clock has started long before.
    PBlock.trg_time = 0.002;
    while (PBlock.elapsed < 0.001)
        GetElapsedTime(1);
    EXPECT_EQ(StopAfterTurn(), STOP_TIME);
}

// How the target is lengthened: rows give what the worker and the published line show, and the share of the time left.
struct ExtensionRow {
    const char* name;
    int score, worker_score;
    bool same_move;
    int done_score;  // at the last finished depth
    int change_depth;
    int percent;
};

constexpr ExtensionRow extensions[] = {
    {"all agree", 0, 0, true, 0, 2, 0},
    {"the worker sees its own move fail", 0, -21, true, 0, 2, 15},
    {"by 20 isn't enough", 0, -20, true, 0, 2, 0},
    {"a worker has something better", 0, 21, false, 0, 2, 10},
    {"a little better", 0, 20, false, 0, 2, 4},
    {"equal", 0, 0, false, 0, 2, 0},
    {"the score falls far", -41, -41, true, 0, 2, 14},
    {"the score falls", -40, -40, true, 0, 2, 5},
    {"the score falls by the margin alone", -20, -20, true, 0, 2, 0},
    {"the margin grows with the score", 108, 108, true, 160, 2, 5},
    {"and so does the larger one", 99, 99, true, 160, 2, 14},
    {"the best move has just changed", 0, 0, true, 0, 4, 1},
    {"nothing finished yet", -500, -500, true, NO_SCORE, 4, 0},
    {"the largest wins", -41, 0, false, 0, 2, 14},
};

TEST_F(Timeout, LengthensTheTargetWhileInDoubt) {
    for (const ExtensionRow& row : extensions) {
        SetUp();
        PBlock.level_moves = 0;
        PBlock.overhead = 0.0;
        PBlock.score = static_cast<int16_t>(row.score);
        PBlock.depth_score[4] = static_cast<int16_t>(row.done_score);
        PBlock.change_depth = static_cast<int8_t>(row.change_depth);
        GetThread(1)->score = static_cast<int16_t>(row.worker_score);
        GetThread(1)->pv[1] = row.same_move ? KNIGHT_OUT[0] : KNIGHT_OUT[2];
        while (PBlock.elapsed <= 0.02)
            GetElapsedTime(1);
        // With the target long over, only the extension keeps the search going: it lasts percent / 100 of the clock.
        // The clock is chosen so that 0.5 percent less, or more, decides.
        PBlock.trg_time = -1000.0;
        PBlock.clock[WHITE] = row.percent == 0 ? 1e9 : 1000.0 / (row.percent * 0.01) * 1.1;
        EXPECT_EQ(StopAfterTurn(), row.percent == 0 ? STOP_TIME : 0) << row.name;
        PBlock.clock[WHITE] = row.percent == 0 ? 1e9 : 1000.0 / (row.percent * 0.01) * 0.9;
        EXPECT_EQ(StopAfterTurn(), STOP_TIME) << row.name;
    }
}

TEST_F(Timeout, DoesNotLengthenInTheFirstMoment) {
    PBlock.level_moves = 0;
    PBlock.overhead = 0.0;
    PBlock.trg_time = 0.0;
    PBlock.clock[WHITE] = 1e9;
    PBlock.depth = 2;
    GetThread(1)->score = -500;
    do {
        PBlock.stop = STOP_NONE;
        GetElapsedTime(0);
        SearchTimeout();
    } while (PBlock.elapsed > 0.02);  // the machine may have been busy elsewhere
    EXPECT_EQ(PBlock.stop, STOP_TIME);
}

}  // namespace
}  // namespace vrel
