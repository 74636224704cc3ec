#pragma once

#include <array>
#include <cstdint>

#include "board/position.h"
#include "board/search_thread.h"
#include "search/search.h"

// What the search shows, and how a result leaves a worker.
namespace vrel {

// Sums over all threads, written by Collect.
enum StatsIndex : int {
    STAT_NODES,
    STAT_EVALS,
    STAT_EVAL_HITS,
    STAT_TT_PROBES,
    STAT_TT_HITS,
    STAT_PAWN_PROBES,
    STAT_PAWN_HITS,
    STATS
};
extern std::array<uint64_t, STATS> sstats;
void Collect();

// pv[ply] = move, then the child's line.
void UpdatePV(Move* pv, const Move* child_pv, Move move, Ply ply);

// A private copy of a line that others may be looking at.
PvLine CopyPV(const SharedLine& line);

// Publishes the thread's line in PBlock if it qualifies; only worker 1 does.
void NewBestMove(SearchThread* thread);

// True while no lines are wanted: in the first seconds of a search, or at all.
bool SearchIsSilent();

// In place of a MultiPV index: the report of a line while the iteration runs.
inline constexpr int ITERATION_RUNS = -1;

// One info line. `mpv` is the MultiPV index or ITERATION_RUNS.
void DisplaySearchInfo(int id, int mpv, Depth depth, int score, const Move* pv);
// The published line of PBlock.
void DisplayPublishedLine();

// Notes the position and the target time of the search that begins: for the log, in console mode for the person.
void ShowSearchStart(const Position& game);

// Progress lines of the root.
void ShowInfo();
void UCI_ShowCurrentMove(Move move, int number);

// Mean growth of the tree per ply over the last four iterations.
double EffectiveBranchingFactor();

}  // namespace vrel
