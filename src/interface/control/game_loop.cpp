#include "interface/control/game_loop.h"

#include <array>
#include <cstddef>
#include <string>

#include "board/generate.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_lookup.h"
#include "interface/board_text.h"
#include "interface/control/input.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "platform/standard_input.h"
#include "platform/threads.h"
#include "search/search_control.h"
#include "search/search_report.h"
#include "search/thread_pool.h"
#include "search/time_control.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr int TURN = 2000;             // microseconds between looks at input and clock
constexpr int SHORT_TURN = 200;        // the same in a short search
constexpr double SHORT_SEARCH = 0.02;  // seconds
constexpr int BOOK_PLIES = 35;         // of the game, beyond which no book is asked
constexpr double ENDLESS = 90000.0;    // seconds: a target time from here on is no limit

// A book move is the answer: no worker runs, and there is no score to tell.
void ConsultBook(Position* game) {
    if (game->game_ply > BOOK_PLIES || !PBlock.use_book)
        return;
    GetCandidates(game, false);
    if (PublishedResult().best == NO_MOVE)
        return;
    ShowMessage(PBlock.mode == MODE_UCI ? "info string book move" : "book move");
    PublishScore(0);
    StopSearch(STOP_TIME);
}

void StartSearch() {
    PrepareRequestedSearch();
    ConsultBook(GamePosition());
    StartRequestedSearch();
}

// A reply without a move names no ponder move either.
void SendBestMove() {
    MoveText text;
    const SearchResult result = PublishedResult();
    std::string reply = std::string("bestmove ") + MoveToStr(result.best, text.data());
    if (result.best != NO_MOVE && result.ponder != NO_MOVE)
        reply += std::string(" ponder ") + MoveToStr(result.ponder, text.data());
    ShowMessage(reply.c_str());
}

// In percent. One probe more than there were, so that none at all is no division by zero.
double HitRate(StatsIndex hits, StatsIndex probes) {
    return 100.0 * static_cast<double>(sstats[hits]) / static_cast<double>(sstats[probes] + 1);
}

void ShowSummary() {
    CheckTTable();
    MoveText text;
    const auto nodes = static_cast<double>(sstats[STAT_NODES]);
    ShowFormatted("move= %s, time= %0.3f, score= %d, nodes= %0.0f, nps= %0.0fK ebf= %0.2f",
                  MoveToStr(PBlock.pv[1], text.data()), PBlock.elapsed.Get(), PBlock.score.Get(), nodes,
                  nodes / (PBlock.elapsed + 0.001) / 1000, EffectiveBranchingFactor());
    ShowFormatted("Hash fill= %.1f%%, Hash hits: main= %0.1f%%, pawn= %0.1f%%, eval= %0.1f%%", PBlock.hash_fill * 100,
                  HitRate(STAT_TT_HITS, STAT_TT_PROBES), HitRate(STAT_PAWN_HITS, STAT_PAWN_PROBES),
                  HitRate(STAT_EVAL_HITS, STAT_EVALS));
    ShowMessage("");
}

// The game ends when the root has no move or the fifty-move counter has run out.
void ContinueSelfPlay(Move move) {
    Position* game = GamePosition();
    auto& clock = PBlock.clock[game->stm];
    clock = clock + PBlock.inc - PBlock.elapsed;
    // A command may have changed the board meanwhile, so that the move no longer fits.
    if (!MoveIsPossible(game, move)) {
        selfplay = 0;
        return;
    }
    PlayGameMove(game, move);
    ShowBoard(*game);
    // A line that waits for a free engine has its turn; a search that it asks for takes the place of the reply, and the
    // game goes on with its result.
    if (LineIsHeld())
        UserInput();
    if (!SearchIsRequested() && selfplay)
        RequestSearch(STATE_THINKING);
}

void Report() {
    Collect();
    DisplayPublishedLine();
    if (PBlock.mode == MODE_UCI || selfplay)
        CompleteResult();
    if (PBlock.mode == MODE_UCI)
        SendBestMove();
    else
        ShowSummary();
    const Move move = PublishedResult().best;
    CloseSearch();
    if (selfplay)
        ContinueSelfPlay(move);
}

bool SearchHasNoEnd() {
    const bool limited = PBlock.max_depth < MAX_DEPTH || PBlock.max_nodes != 0;
    return PBlock.state == STATE_PONDERING || (PBlock.trg_time >= ENDLESS && !limited);
}

// After the last line a search that ends by itself is waited for; any other is stopped, as soon as it has an answer to
// give, and answered.
void FinishAfterInput() {
    if (EngineIsFree() && !LineIsWaiting())
        PBlock.quit = 1;
    else if (SearchHasNoEnd() && (PBlock.depth > 1 || WorkersIdle()))
        EndRunningSearch();
}

// With a search asked for while one runs, that one ends first. No line is taken meanwhile, so that a `stop` behind
// the request reaches the new search.
void WaitForRequest() {
    EndRunningSearch();
    if (!WorkersIdle())
        UI_Sleep(1);
}

// What ends a turn early is input and the end of a search. Between searches nothing else happens, unless a line waits
// that has been tried. A search with hardly any time must not lose on the way what its clock gains with each move.
int TurnLength() {
    if (WorkersIdle() && !LineIsWaiting())
        return UNTIL_WOKEN;
    const bool hurries = PBlock.trg_time < SHORT_SEARCH && PBlock.elapsed < SHORT_SEARCH;
    return hurries ? SHORT_TURN : TURN;
}

void TakeTurn() {
    // A free engine has nothing to look after but its input: `go` follows `position` without delay.
    if (!EngineIsFree() || !(LineIsWaiting() || InputIsOver()))
        SleepForInput(TurnLength());
    SearchTimeout();
    UserInput();
    if (InputIsOver())
        FinishAfterInput();
}

// False if the program is to end.
bool Turn() {
    if (!SearchIsRequested())
        TakeTurn();
    else if (PBlock.state == STATE_IDLE)
        StartSearch();
    else
        WaitForRequest();
    if (WorkersIdle()) {
        PayReadyOk();
        if (SearchIsOver() && !PBlock.quit)
            Report();
    }
    return !PBlock.quit;
}

}  // namespace

int RunGameLoop(int (*end)()) {
    PBlock.quit = 0;
    return RunTurns(Turn, end);
}

void EndProgram() {
    StopSearch(STOP_COMMAND);
    PBlock.quit = 1;
}

}  // namespace vrel
