#include "interface/control/game_loop.h"

#include <array>
#include <cstddef>
#include <string>

#include "board/attacks.h"
#include "board/generate.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_lookup.h"
#include "interface/board_text.h"
#include "interface/control/input.h"
#include "interface/control/requests.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "search/search_report.h"
#include "search/thread_pool.h"
#include "search/time_control.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr int TURN = 2000;             // microseconds between looks at input and clock
constexpr int SHORT_TURN = 200;        // the same when a search is about to end
constexpr double SHORT_SEARCH = 0.02;  // seconds
constexpr int BOOK_PLIES = 35;
constexpr int FIFTY_LIMIT = 100;
constexpr double ENDLESS = 90000.0;  // seconds: a target time from here on is no limit

bool workers_started = false;  // the search to be reported has been run by the workers

// A position that can't arise in chess is answered without a search.
bool CanBeSearched(const Position& pos) {
    return CountBits(pos.bb[WHITE][KING]) == 1 && CountBits(pos.bb[BLACK][KING]) == 1 &&
           !SqAtakd(pos, KingSquare(pos, pos.stm ^ 1), pos.stm);
}

void ConsultBook(Position* game) {
    if (game->game_ply > BOOK_PLIES || !PBlock.use_book)
        return;
    GetCandidates(game, false);
    if (PBlock.pv[1] == NO_MOVE)
        return;
    ShowMessage(PBlock.mode == MODE_UCI ? "info string book move" : "book move");
    PBlock.score = 0;
    PBlock.stop = STOP_TIME;
}

void StartSearch() {
    Position* game = GamePosition();
    GetElapsedTime(0);
    InitSearch();
    ConsultBook(game);
    workers_started = game->fifty <= FIFTY_LIMIT && PBlock.pv[1] == NO_MOVE && CanBeSearched(*game);
    if (workers_started)
        StartWorkers();
    PBlock.request = 0;
}

// A search that was stopped before it had a line answers with a legal move all the same, if there is one.
void PublishAnyMove() {
    if (PBlock.pv[1] != NO_MOVE || PBlock.max_depth <= 0 || PBlock.stop == STOP_NO_MOVE || !workers_started)
        return;
    const SearchThread& master = *GetThread(1);
    const Move move = master.frames[1].first->move;
    if (move == END_OF_LIST || !MoveIsLegal(master.pos, master.pos.stm, move))
        return;
    PBlock.pv[1] = move;
    PBlock.pv[2] = NO_MOVE;
}

// A reply without a move names no ponder move either.
void SendBestMove() {
    MoveText text;
    std::string reply = std::string("bestmove ") + MoveToStr(PBlock.pv[1], text.data());
    if (PBlock.pv[1] != NO_MOVE && PBlock.pv[2] != NO_MOVE)
        reply += std::string(" ponder ") + MoveToStr(PBlock.pv[2], text.data());
    ShowMessage(reply.c_str());
}

double HitRate(StatsIndex hits, StatsIndex probes) {
    return 100.0 * static_cast<double>(sstats[static_cast<size_t>(hits)]) /
           static_cast<double>(sstats[static_cast<size_t>(probes)] + 1);
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

bool reply_due = false;  // self-play goes on when a line that waits for a free engine has had its turn

// The game ends when the root has no move or the fifty-move counter has run out.
void ContinueSelfPlay() {
    Position* game = GamePosition();
    auto& clock = PBlock.clock[game->stm];
    clock = clock + PBlock.inc - PBlock.elapsed;
    // A command may have changed the board meanwhile, so that the move no longer fits.
    if (!MoveIsPossible(game, PBlock.pv[1])) {
        selfplay = 0;
        return;
    }
    PlayGameMove(game, PBlock.pv[1]);
    ShowBoard(*game);
    if (LineIsHeld())
        reply_due = true;
    else
        PBlock.request = STATE_THINKING;
}

void Report() {
    Collect();
    DisplayPublishedLine();
    if (PBlock.mode == MODE_UCI || selfplay)
        PublishAnyMove();
    workers_started = false;
    if (PBlock.mode == MODE_UCI)
        SendBestMove();
    else
        ShowSummary();
    if (selfplay)
        ContinueSelfPlay();
    PBlock.state = STATE_IDLE;
}

bool SearchHasNoEnd() {
    const bool limited = PBlock.max_depth < MAX_DEPTH || PBlock.max_nodes != 0;
    return PBlock.state == STATE_PONDERING || (PBlock.trg_time >= ENDLESS && !limited);
}

// After the last line a search that ends by itself is waited for; any other is stopped, as soon as it has an answer to
// give, and answered.
void FinishAfterInput() {
    if (PBlock.state == STATE_IDLE) {
        if (PBlock.request == 0)
            PBlock.quit = 1;
    } else if (SearchHasNoEnd() && (PBlock.depth > 1 || WorkersIdle())) {
        EndRunningSearch();
    }
}

// With a search asked for while one runs, that one ends first. No line is taken meanwhile, so that a `stop` behind
// the request reaches the new search.
void WaitForRequest() {
    EndRunningSearch();
    UI_Sleep(1);
}

// A search that has been stopped is over in a moment, and its reply is due. One with hardly any time must not lose on
// the way what its clock gains with each move.
int TurnLength() {
    if (WorkersIdle())
        return TURN;
    const bool hurries = PBlock.trg_time < SHORT_SEARCH && PBlock.elapsed < SHORT_SEARCH;
    return PBlock.stop || hurries ? SHORT_TURN : TURN;
}

void TakeTurn() {
    // A free engine has nothing to look after but its input: `go` follows `position` without delay.
    if (!EngineIsFree() || !LineIsWaiting())
        SleepForInput(TurnLength());
    SearchTimeout();
    UserInput();
    // A search that the line has asked for takes the place of the reply, and the game goes on with its result.
    if (reply_due && PBlock.request == 0)
        PBlock.request = STATE_THINKING;
    reply_due = false;
    if (InputIsOver())
        FinishAfterInput();
}

}  // namespace

void RunGameLoop() {
    PBlock.request = 0;
    PBlock.quit = 0;
    LetLinesWait(true);
    while (!PBlock.quit) {
        if (PBlock.request == 0)
            TakeTurn();
        else if (PBlock.state == STATE_IDLE)
            StartSearch();
        else if (!WorkersIdle())
            WaitForRequest();
        if (!WorkersIdle())
            continue;
        PayReadyOk();
        if (PBlock.quit || PBlock.state == STATE_IDLE)
            continue;
        if (PBlock.state == STATE_PONDERING) {
            if (PBlock.request)
                EndRunningSearch();
            continue;
        }
        Report();
    }
}

}  // namespace vrel
