#include "search/search_control.h"

#include <cassert>

#include "board/legality.h"
#include "eval/personality.h"
#include "platform/standard_input.h"
#include "platform/threads.h"
#include "search/search.h"
#include "search/search_report.h"
#include "search/thread_pool.h"
#include "search/time_control.h"

namespace vrel {

void (*poll_input)() = [] {};

namespace {

constexpr int FIFTY_LIMIT = 100;  // plies; with more behind it the game is drawn
constexpr int TOOL_TURN = 1000;   // microseconds between a tool's looks at clock and input

bool workers_have_run = false;  // the search to be reported is the workers'

// Contempt makes a draw worth less to the side that the engine plays, and as much more to the other.
void ResetPublishedLine(const Position& game) {
    PBlock.score = NO_SCORE;
    PBlock.depth = 0;
    PBlock.done_depth = 0;
    PBlock.change_depth = 0;
    PBlock.easy = NOT_EASY;
    PBlock.pv[1] = NO_MOVE;
    PBlock.draw_score[game.stm] = Personality.contempt;
    PBlock.draw_score[game.stm ^ 1] = static_cast<int16_t>(-Personality.contempt);
    for (auto& score : PBlock.depth_score)
        score = NO_SCORE;
    for (auto& move : PBlock.depth_move)
        move = NO_MOVE;
}

// A mate at least as good as what stands, a deeper line unless a mate stands, or a better line of the same depth.
bool Qualifies(int score, Depth depth) {
    return (score > MATE_BOUND + 1 && score >= PBlock.score) || (depth > PBlock.depth && PBlock.score <= MATE_BOUND) ||
           (depth == PBlock.depth && score > PBlock.score);
}

}  // namespace

SearchLimits LimitsInForce() {
    return {PBlock.max_depth,  PBlock.max_nodes, PBlock.level_moves,
            PBlock.level_time, PBlock.inc,       {PBlock.clock[WHITE], PBlock.clock[BLACK]},
            PBlock.moves_to_go};
}

// Written one by one, since a search that is under way may read them.
void SetLimits(const SearchLimits& limits) {
    assert(limits.max_depth <= MAX_DEPTH);
    PBlock.max_depth = static_cast<int8_t>(limits.max_depth);
    PBlock.max_nodes = limits.max_nodes;
    PBlock.level_moves = static_cast<int8_t>(limits.level_moves);
    PBlock.level_time = limits.level_time;
    PBlock.inc = limits.inc;
    PBlock.clock[WHITE] = limits.clock[WHITE];
    PBlock.clock[BLACK] = limits.clock[BLACK];
    PBlock.moves_to_go = static_cast<int16_t>(limits.moves_to_go);
}

void LimitDepth(Depth depth) {
    SearchLimits limits = LimitsInForce();
    limits.max_depth = depth;
    SetLimits(limits);
}

void RequestSearch(SearchState kind, const SearchLimits& limits) {
    SetLimits(limits);
    RequestSearch(kind);
}

void RequestSearch(SearchState kind) { PBlock.request = kind; }

bool SearchIsRequested() { return PBlock.request != STATE_IDLE; }

void StopSearch(StopReason reason) { PBlock.stop = reason; }

// The wait is short: every node of the full-width search looks at `stop`.
void StopSearchAndWait() {
    StopSearch(STOP_COMMAND);
    WaitUntilIdle();
}

void EndRunningSearch() {
    if (PBlock.state == STATE_IDLE)
        return;
    // A reason that stands is kept: of mate and stalemate the report knows by it.
    if (!PBlock.stop)
        StopSearch(STOP_COMMAND);
    // While it ponders nothing would be reported.
    PonderHit();
}

// Nothing is left of pondering or analysing: the report may not wait for the opponent's move.
void StopAndReport() {
    StopSearch(STOP_TIME);
    PBlock.state = STATE_THINKING;
}

void PonderHit() {
    if (PBlock.state == STATE_PONDERING)
        PBlock.state = STATE_THINKING;
}

bool EngineIsFree() { return PBlock.state == STATE_IDLE && !SearchIsRequested() && WorkersIdle(); }

bool SearchIsOver() { return PBlock.state != STATE_IDLE && PBlock.state != STATE_PONDERING && WorkersIdle(); }

// The clock starts first, so that the time taken to prepare counts.
void PrepareRequestedSearch() {
    assert(WorkersIdle());
    GetElapsedTime(0);
    InitSearch(static_cast<SearchState>(PBlock.request.Get()));
    PBlock.request = STATE_IDLE;
}

// What isn't given to the workers is over at once, with whatever is published.
void StartRequestedSearch() {
    const Position& game = *GamePosition();
    workers_have_run = game.fifty <= FIFTY_LIMIT && PBlock.pv[1] == NO_MOVE && KingsAreInOrder(game);
    if (workers_have_run)
        StartWorkers();
}

void CompleteResult() {
    if (PBlock.pv[1] != NO_MOVE || PBlock.max_depth <= 0 || PBlock.stop == STOP_NO_MOVE || !workers_have_run)
        return;
    // The head of the root list is the best move known, or the first one generated.
    const SearchThread& master = *GetThread(1);
    const Move move = master.frames[1].first->move;
    if (move != END_OF_LIST && MoveIsLegal(master.pos, master.pos.stm, move))
        PublishMove(move);
}

// A result that is asked for from here on isn't completed: the root list may be that of another position by then.
void CloseSearch() {
    workers_have_run = false;
    PBlock.state = STATE_IDLE;
}

void InitSearch(SearchState state) {
    assert(WorkersIdle());
    const Position& game = *GamePosition();
    StopSearch(STOP_NONE);
    ResetPublishedLine(game);
    // Entries of earlier moves of the game are older by as many plies and give way.
    PBlock.tt_age = static_cast<uint16_t>(game.game_ply);
    // A table without room is none.
    if (PBlock.hash_mb == 0)
        PBlock.use_hash = 0;
    PBlock.state = state;
    SetTimeBudget(game);
    PrepareThreads();
    ShowSearchStart(game);
}

void SearchHere() { SearchIterations(1); }

void SearchOnWorkers() {
    const auto turn = [] {
        PollSearch();
        // The end of the program is asked for while a tool is at work; its search has to end first.
        if (PBlock.quit)
            StopSearch(STOP_COMMAND);
        SleepUntilWoken(TOOL_TURN, false);
        return !WorkersIdle();
    };
    StartWorkers();
    RunTurns(turn, [] { return 0; });
    PollSearch();  // a question that waits for idle workers is answered
}

// The state stays idle: nothing of this search is reported or answered.
void SearchAtDepthZero() {
    PBlock.report = EvalReport{};
    const Depth max_depth = PBlock.max_depth;
    LimitDepth(0);
    InitSearch(STATE_IDLE);
    SearchHere();
    LimitDepth(max_depth);
}

void PollSearch() {
    SearchTimeout();
    poll_input();
}

SearchResult PublishedResult() { return {PBlock.pv[1], PBlock.pv[2], PBlock.score, PBlock.depth}; }

bool PublishLine(const SearchThread& master) {
    assert(master.id == 1);
    const int score = master.score;
    const Depth depth = master.best_depth;
    assert(depth >= 1 && depth < FRAMES);
    const SpinGuard guard(&spinlock1);
    if (!Qualifies(score, depth))
        return false;
    if (master.pv[1] != PBlock.pv[1])
        PBlock.change_depth = static_cast<int8_t>(depth);  // the clock gives a new move time to prove itself
    PBlock.score = static_cast<int16_t>(score);
    PBlock.depth = static_cast<int8_t>(depth);
    PBlock.pv = master.pv;
    PBlock.depth_score[depth] = static_cast<int16_t>(score);
    PBlock.depth_move[depth] = master.pv[1];
    return true;
}

// A line of one move, with nothing to ponder on.
void PublishMove(Move best) {
    PBlock.pv[1] = best;
    PBlock.pv[2] = NO_MOVE;
}

void PublishScore(int score) { PBlock.score = static_cast<int16_t>(score); }

void PublishFinishedDepth(Depth depth) {
    if (PBlock.done_depth < depth)
        PBlock.done_depth = static_cast<int8_t>(depth);
}

void PublishEasy(EasyKind easy) { PBlock.easy = easy; }

}  // namespace vrel
