#pragma once

#include <array>
#include <cstdint>

#include "board/search_thread.h"
#include "interface/pblock.h"

// The owner of a search. Here alone `stop`, `state`, `request` and the published line of PBlock are written and the
// workers are given their work; commands, the game loop, the tools and the workers themselves go through these calls.
//
// The life of a search that a command asks for: RequestSearch; PrepareRequestedSearch, which resets what the last one
// has published; StartRequestedSearch, which lets the workers run; StopSearch by whoever has a reason; SearchIsOver;
// CompleteResult; CloseSearch. A tool, which searches for itself, does the same without asking.
namespace vrel {

// Values of level_moves that are no number of moves.
inline constexpr int SUDDEN_DEATH = 0;  // the clock is for the rest of the game
inline constexpr int FIXED_TIME = 1;    // the same time for every move

// How far a search may go. PBlock holds the limits in force: what a command doesn't name stays for the next search.
struct SearchLimits {
    Depth max_depth;              // last iteration
    int64_t max_nodes;            // of one worker, 0 for none
    int level_moves;              // SUDDEN_DEATH, FIXED_TIME, or a control of so many moves
    double level_time;            // seconds per move or per control
    double inc;                   // seconds, of the side to move
    std::array<double, 2> clock;  // seconds left, by side
    int moves_to_go;
};

SearchLimits LimitsInForce();
void SetLimits(const SearchLimits& limits);

// The last iteration of the searches to come; the other limits stay.
void LimitDepth(Depth depth);

// What commands ask for
// ------------------------------------------------------------------------------------------------

// A search in place of whatever runs: the game loop ends that one, reports it, and starts the new one.
void RequestSearch(SearchState kind, const SearchLimits& limits);
void RequestSearch(SearchState kind);  // within the limits in force
bool SearchIsRequested();

// Tells a running search to end; any thread may ask. Readers only test whether anybody has.
void StopSearch(StopReason reason);

// Stops the search and waits until no worker runs.
void StopSearchAndWait();

// Asks a running search to end and to be reported, a pondering one as well. Nothing without a search.
void EndRunningSearch();

// Stops, and has the published line reported, be it that of a search long over.
void StopAndReport();

// The opponent has played the move that is being pondered on: from here on the search has its time limit.
void PonderHit();

// What the game loop goes by
// --------------------------------------------------------------------------------------------

// True if no search runs and none waits to be reported or started.
bool EngineIsFree();

// True if the workers have ended a search that waits to be reported. A pondering search waits for the ponder move or
// for `stop` first.
bool SearchIsOver();

// Starts the clock, prepares the search that has been asked for, and takes the request as met.
void PrepareRequestedSearch();

// Lets the workers search, unless a book move is the answer already or there is nothing to search: no chess position,
// or one that the fifty-move rule has ended.
void StartRequestedSearch();

// A search that was stopped before it had a line answers with a legal move all the same, if there is one.
void CompleteResult();

// The search has been reported: the engine is idle.
void CloseSearch();

// For tools, which search for themselves
// ----------------------------------------------------------------------------------

// Prepares a search: resets what is published, sets the time budget, hands the position to the workers, which are idle.
void InitSearch(SearchState state);

// Searches on this thread, with the record of worker 1.
void SearchHere();

// Lets the workers search, and keeps the clock and the input alive until they are through.
void SearchOnWorkers();

// Searches the root at depth 0 on this thread: the evaluation is left in PBlock.report and in the record of worker 1,
// and the limits stay. The workers are idle.
void SearchAtDepthZero();

// Looks at the clock, and at the input through `poll_input`.
void PollSearch();

// Keeps the input alive while a tool works in the place of the game loop. The program sets it once at its start; until
// then nothing is read.
extern void (*poll_input)();

// The published line
// ------------------------------------------------------------------------------------------------------

// Why a move is easy.
enum EasyKind : int8_t { NOT_EASY = 0, ONLY_MOVE = 1, FAR_AHEAD = 2 };

struct SearchResult {
    Move best;  // NO_MOVE if there is none
    Move ponder;
    int score;  // centipawns for the side to move at the root
    Depth depth;
};
SearchResult PublishedResult();

// Publishes the best line of worker 1 if it is better or deeper than what stands. False if it isn't.
bool PublishLine(const SearchThread& master);

// Publishes a move that nobody has searched, such as one of the book, or none; and a score for it.
void PublishMove(Move best);
void PublishScore(int score);

// Worker 1 has finished an iteration, or found that the move needs little of the time.
void PublishFinishedDepth(Depth depth);
void PublishEasy(EasyKind easy);

}  // namespace vrel
