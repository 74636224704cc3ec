#include "search/time_control.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "board/search_thread.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "search/search_control.h"

namespace vrel {

namespace {

double start = 0.0;  // of the search, on the monotonic clock

constexpr double SHORTEST_TARGET = 0.002;
constexpr double EXTEND_FROM = 0.02;  // seconds of search before the target is lengthened

// Seconds beyond the target that a line of depth 2 is waited for. With one of depth 1 in hand it is a share of the
// clock.
constexpr double LONGEST_PATIENCE = 2.0;
constexpr double SHORTEST_PATIENCE = 0.2;
constexpr double PATIENCE_SHARE = 0.25;

constexpr int CLEARLY = 20;  // centipawns that make one worker's score differ from the published one

// Moves that the clock has to last for. In sudden death that is a guess, which the opening makes larger. The console
// counts the moves of a control itself; a UCI front end tells what is left of them.
int MovesToGo(int game_ply) {
    const int level_moves = PBlock.level_moves;
    if (level_moves == SUDDEN_DEATH)
        return game_ply > 25 ? 24 : 36 - game_ply / 2;
    if (level_moves > FIXED_TIME && PBlock.mode == MODE_CONSOLE)
        return level_moves - (game_ply / 2) % level_moves;
    return PBlock.moves_to_go;
}

// Target of a search under a clock of `left` seconds.
double TargetTime(double left, int moves) {
    const double base = left / (moves + 1);
    // Who ponders wins back time on the opponent's clock.
    double target = PBlock.ponder && moves > 2 ? base * 1.1 : base * 0.9;
    // The bonus tends to the increment with a large clock and fades with a small one.
    if (left > 4 * PBlock.overhead)
        target += PBlock.inc * left / (2 * PBlock.inc + left);
    // Never so much that what remains can't be played with.
    target = std::min(target, left * 0.65 - 4 * PBlock.overhead);
    return std::max(target, SHORTEST_TARGET);
}

// Percentage of the time left by which the workers' disagreement lengthens the target.
int DisagreementExtension() {
    const int score = PBlock.score;
    const Move best = PBlock.pv[1];
    int extension = 0;
    for (int i = 1; i <= PBlock.nthreads; ++i) {
        const SearchThread& worker = *GetThread(i);
        const int other = worker.score;
        if (worker.pv[1] == best) {
            if (other < score - CLEARLY)
                extension = 15;
        } else if (other > score + CLEARLY) {
            extension = std::max(extension, 10);
        } else if (other > score) {
            extension = std::max(extension, 4);
        }
    }
    return extension;
}

// The same for a score that falls against the last finished iteration, and for a best move that has just changed.
int TrendExtension() {
    const int before = PBlock.depth_score[PBlock.done_depth];
    if (before == NO_SCORE)
        return 0;
    const int margin = std::abs(before) / 16 + 20;
    const int score = PBlock.score;
    if (score < before - 2 * margin)
        return 14;
    if (score < before - margin)
        return 5;
    return PBlock.done_depth <= PBlock.change_depth ? 1 : 0;
}

// Of the side to move, seconds.
double TimeLeft() { return std::max(PBlock.clock[GamePosition()->stm] - PBlock.elapsed, 0.0); }

bool TimeIsOver() {
    const double elapsed = PBlock.elapsed;
    int extension = 0;
    if (PBlock.depth > 1 && elapsed > EXTEND_FROM)
        extension = std::max(DisagreementExtension(), TrendExtension());
    const double left = TimeLeft();
    const double limit = PBlock.trg_time + extension * 0.01 * left;
    // A fixed time is used up; from a clock the overhead of the move's way to the other side is kept.
    if (PBlock.level_moves == FIXED_TIME)
        return elapsed >= limit;
    return elapsed >= limit - PBlock.overhead || 5 * PBlock.overhead > left;
}

// A search never stops before it has a line of depth 2, unless the board is so crowded that it gets none for a while.
bool MayStillWait() {
    if (PBlock.depth > 1)
        return false;
    double patience = LONGEST_PATIENCE;
    if (PBlock.depth == 1 && PBlock.level_moves == FIXED_TIME)
        patience = SHORTEST_PATIENCE;
    else if (PBlock.depth == 1)
        patience = std::clamp(PATIENCE_SHARE * TimeLeft(), SHORTEST_PATIENCE, LONGEST_PATIENCE);
    return PBlock.elapsed < PBlock.trg_time + patience;
}

}  // namespace

void GetElapsedTime(int flag) {
    if (flag == 0) {
        start = MonotonicSeconds();
        PBlock.elapsed = 0.0;
    } else {
        PBlock.elapsed = SecondsSince(start);
    }
}

void SetTimeBudget(const Position& game) {
    const Side side = game.stm;
    if (PBlock.level_moves == FIXED_TIME) {
        PBlock.trg_time = PBlock.level_time.Get();
        PBlock.clock[side] = PBlock.level_time.Get();
        return;
    }
    PBlock.moves_to_go = static_cast<int16_t>(MovesToGo(game.game_ply));
    PBlock.trg_time = TargetTime(PBlock.clock[side], PBlock.moves_to_go);
}

void SearchTimeout() {
    GetElapsedTime(1);
    if (PBlock.state == STATE_PONDERING || PBlock.stop)
        return;
    if (TimeIsOver()) {
        if (MayStillWait())
            return;
        if (PBlock.state == STATE_THINKING)
            StopSearch(STOP_TIME);
        else if (PBlock.state == STATE_ANALYSING)
            StopSearch(STOP_COMMAND);
        return;
    }
    if (PBlock.easy == ONLY_MOVE || (PBlock.easy == FAR_AHEAD && PBlock.elapsed >= 0.5 * PBlock.trg_time))
        StopSearch(STOP_TIME);
}

}  // namespace vrel
