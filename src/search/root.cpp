#include "search/root.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>

#include "board/attacks.h"
#include "board/exchange.h"
#include "board/generate.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/move_kind.h"
#include "interface/pblock.h"
#include "search/search.h"
#include "search/search_control.h"
#include "search/search_report.h"

namespace vrel {

namespace {

// The window never opens further: no score of a root is lower than mated at once or higher than mate in one.
constexpr int LOWEST_BOUND = -9999;
constexpr int HIGHEST_BOUND = 9998;
constexpr int NO_IMPROVEMENT = -11000;  // what a move is sorted by that was none; below every score
constexpr Depth GIVE_UP_DEPTH = 5;      // deeper iterations are given up by a worker that has been overtaken
constexpr Depth LMR_FROM_DEPTH = 7;     // deeper iterations reduce quiet late moves ...
constexpr int LMR_FROM_MOVE = 5;        // ... behind this many
constexpr Depth EASY_FROM_DEPTH = 6;    // deeper iterations look whether the move is easy
constexpr Depth FAR_FROM_DEPTH = 11;    // and deeper than this, whether it is far ahead of all others ...
constexpr Depth SETTLED_DEPTH = 3;      // ... having been the best ever since
constexpr int FAR_GAIN = 225;           // centipawns above the static evaluation
constexpr int FAR_WIN = 89;             // centipawns by exchange that must be exceeded
constexpr int FAR_LEAD = 200;           // centipawns by which all others are behind
constexpr double QUIET_SECONDS = 3.5;   // progress lines start after this time

// The state of one pass over the root list.
struct RootPass {
    Position* pos;
    SearchThread* thread;
    PlyFrame* frame;
    Side side;
    Depth depth;
    int first_index;
    int prev, delta;  // last score, and half the width of the window around it
    int n = 0;        // moves searched so far
    int best = NO_SCORE;
    bool in_check;
    bool show_fail;  // worker 1 alone tells of failed windows
    bool report;
    bool root_lmr;
    PvLine local_pv{};
};

int SearchChild(RootPass* pass, Depth depth, int lo, int hi, NodeType type) {
    return -Search(pass->pos, pass->side ^ 1, 2, depth, -hi, -lo, type, pass->local_pv.data());
}

// For the eyes of the clock: a failed window's score and its move alone. It is taken back when the move is done.
void NoteFailure(RootPass* pass, Move move, int v, bool show) {
    SearchThread* thread = pass->thread;
    thread->pv[1] = move;
    thread->pv[2] = NO_MOVE;
    thread->score = static_cast<int16_t>(v);
    if (show && pass->show_fail)
        DisplaySearchInfo(thread->id, ITERATION_RUNS, pass->depth, v, CopyPV(thread->pv).data());
}

// First move: a window around the last score that widens on the side where it fails. A result that has reached a
// bound which can't move any further is accepted.
int AspirationSearch(RootPass* pass, Move move) {
    int delta = pass->delta;
    int lo = std::max(pass->prev - delta, LOWEST_BOUND);
    int hi = std::min(pass->prev + delta, HIGHEST_BOUND);
    int v = SearchChild(pass, pass->depth - 1, lo, hi, NODE_PV);
    while (((v <= lo && lo > LOWEST_BOUND) || (v >= hi && hi < HIGHEST_BOUND)) && !PBlock.stop) {
        NoteFailure(pass, move, v, true);
        delta *= 2;
        // With an evaluation beyond the bounds the window may be empty: the bound that can still move does.
        if (v <= lo && lo > LOWEST_BOUND)
            lo -= delta;
        else
            hi += delta;
        if (lo <= -9501)
            lo = LOWEST_BOUND;
        if (hi >= 9500)
            hi = HIGHEST_BOUND;
        v = SearchChild(pass, pass->depth - 1, lo, hi, NODE_PV);
    }
    return v;
}

// Later moves: a scout above the best score, or up to the published one, whose upper bound widens while it is reached.
int ScoutSearch(RootPass* pass, Move move, int reduction) {
    const int lo = pass->best;
    int hi = std::min(std::max(pass->best, static_cast<int>(PBlock.score)) + 1, HIGHEST_BOUND);
    int v = SearchChild(pass, pass->depth - reduction - 1, lo, hi, NODE_CUT);
    int step = 1;
    while (v >= hi && hi < HIGHEST_BOUND && !PBlock.stop) {
        NoteFailure(pass, move, v, step > 20);
        step = step < 25 ? 25 : 2 * step;
        hi += step;
        if (hi >= 9499)
            hi = HIGHEST_BOUND;
        v = SearchChild(pass, pass->depth - 1, lo, hi, NODE_PV);
    }
    return v;
}

// Quiet late moves lose a ply while nothing is wrong with the best one. Castling counts as a king move.
int RootReduction(const RootPass& pass, const MoveEntry& entry) {
    const Position& pos = *pass.pos;
    if (!pass.root_lmr || pass.n <= LMR_FROM_MOVE || pass.best < std::max(pass.prev - pass.delta, LOWEST_BOUND) ||
        pass.in_check || pos.npv[pass.side] <= 0)
        return 0;
    const bool en_passant = TypeOf(entry.piece) == PAWN && ToSquare(entry.move) == pos.ep_square;
    if (MoveIsCapture(entry) || en_passant || MoveGivesCheck(pos, pass.side, entry) != NO_CHECK ||
        MoveIsPawnPush(pos, pass.side, entry) || MoveIsThreat(pos, entry))
        return 0;
    return 1;
}

// At depth 1 every move gets the full window and thereby an exact value to sort by.
bool IsSortingPass(const RootPass& pass) { return pass.depth == 1 && PBlock.max_depth > 1; }

int SearchRootMove(RootPass* pass, const MoveEntry& entry, int reduction) {
    if (IsSortingPass(*pass))
        return SearchChild(pass, 0, NO_SCORE, -NO_SCORE, NODE_PV);
    if (pass->n == 0)
        return AspirationSearch(pass, entry.move);
    return ScoutSearch(pass, entry.move, reduction);
}

void ShowProgress(const RootPass& pass, Move move) {
    if (!pass.report || PBlock.mode != MODE_UCI || PBlock.elapsed <= QUIET_SECONDS || SearchIsSilent())
        return;
    if (pass.n == 0)
        ShowInfo();
    if (PBlock.multipv == 1 && PBlock.nthreads == 1)
        UCI_ShowCurrentMove(move, pass.n + 1);
}

// A new best move: the worker's line and score, and at once, with the pass still under way, the published one.
void AcceptMove(RootPass* pass, MoveEntry* head, MoveEntry* entry, int w) {
    SearchThread* thread = pass->thread;
    const Move move = entry->move;
    thread->score = static_cast<int16_t>(w);
    thread->best_depth = static_cast<int16_t>(pass->depth);
    PvLine line = CopyPV(thread->pv);
    UpdatePV(line.data(), pass->local_pv.data(), move, 1);
    std::copy(line.begin(), line.end(), thread->pv.begin());
    if (pass->first_index == 0) {
        thread->iter_score[pass->depth] = static_cast<int16_t>(w);
        NewBestMove(thread);
    }
    // To the head of this pass; the order of those it overtakes stays.
    std::rotate(head, entry, entry + 1);
    pass->best = w;
}

// The best move gains far more than the static evaluation showed, wins material by exchange, and all others are far
// behind: then the clock needn't be used up.
void EasyMove(RootPass* pass, MoveEntry* list) {
    Position* pos = pass->pos;
    const int b = pass->best;
    if (pass->n == 1) {
        PublishEasy(ONLY_MOVE);
        return;
    }
    if (b <= pass->frame->eval + FAR_GAIN || pass->depth <= FAR_FROM_DEPTH || PBlock.change_depth > SETTLED_DEPTH)
        return;
    if (swapoff1(*pos, pass->side, FromSquare(list->move), ToSquare(list->move), Occupied(*pos)) <= FAR_WIN)
        return;
    assert(list->move != END_OF_LIST);
    const int bound = b - FAR_LEAD;
    for (MoveEntry* entry = list + 1; entry->move != END_OF_LIST; ++entry) {
        // The likeliest to come near is asked first; a quiescence search is answer enough.
        PickNextMove(entry);
        pass->frame->current = entry;
        MakeMove(pos, entry->move);
        const int v = -Search(pos, pass->side ^ 1, 2, 0, -bound - 1, -bound, NODE_ANY, pass->local_pv.data());
        UnmakeMove(pos);
        if (v > bound || PBlock.stop)
            return;
    }
    PublishEasy(FAR_AHEAD);
}

// The node limit is each worker's own, but of several only worker 1 ends the search, and not before it has a line of
// depth 2: a side worker may be through with its share before worker 1 has had a core.
bool NodesAreUsedUp(const SearchThread& thread) {
    if (PBlock.max_nodes == 0 || thread.nodes <= static_cast<uint64_t>(PBlock.max_nodes))
        return false;
    return PBlock.nthreads == 1 || (thread.id == 1 && PBlock.depth > 1);
}

// The frame of the root as its children look at it: they find a PV node that has reduced and extended nothing.
RootPass BeginPass(Position* pos, Side side, Depth depth, int first_index) {
    SearchThread* thread = ThreadOf(pos);
    PlyFrame* frame = pos->frames + 1;
    frame->node_type = NODE_PV;
    frame->depth = static_cast<int16_t>(depth);
    frame->alpha = NO_SCORE;
    frame->ext = 0;
    frame->reduction = 0;
    frame->iid = 0;
    frame->gives_check = CHECK_UNKNOWN;
    thread->ext_count = 0;
    const bool master = thread->id == 1;
    const int prev = thread->score;
    return RootPass{.pos = pos,
                    .thread = thread,
                    .frame = frame,
                    .side = side,
                    .depth = depth,
                    .first_index = first_index,
                    .prev = prev,
                    .delta = AspirationWidth(prev, depth),
                    .in_check = SqAtakd(*pos, KingSquare(*pos, side), side ^ 1),
                    .show_fail = PBlock.multipv <= 1 && depth > 3 && master,
                    .report = first_index == 0 && master,
                    .root_lmr = depth > LMR_FROM_DEPTH && first_index == 0};
}

}  // namespace

int AspirationWidth(int score, Depth depth) { return std::max(4 * (16 - depth), 24) + std::abs(score) / 16; }

uint8_t RootSortValue(int score) {
    if (score < -1000)
        return static_cast<uint8_t>(score / 1000 + 12);
    if (score > 1000)
        return static_cast<uint8_t>(score / 1000 + 240);
    if (score == 0)
        return 120;
    const int l = static_cast<int>(std::min(15 * std::log(std::abs(score)), 119.0));
    return static_cast<uint8_t>(score < 0 ? 120 - l : 120 + l);
}

void SearchRoot(Position* pos, Side side, Depth depth, int first_index) {
    assert(pos->ply == 1 && pos->stm == side && depth >= 1 && depth < FRAMES);
    RootPass pass = BeginPass(pos, side, depth, first_index);
    SearchThread* thread = pass.thread;
    MoveEntry* const head = pass.frame->first + first_index;

    for (MoveEntry* entry = head; entry->move != END_OF_LIST; ++entry) {
        // The tree below the published depth isn't worth finishing.
        if (depth > GIVE_UP_DEPTH && thread->id > 1 && depth < PBlock.depth) {
            thread->root_state = ROOT_GAVE_UP;
            return;
        }
        PickNextMove(entry);
        // A failed window shows itself in score and line; both are put back before the move is judged.
        const SharedLine saved_pv = thread->pv;
        const int16_t saved_score = thread->score;
        thread->root_state = ROOT_AT_WORK;
        pass.frame->current = entry;
        ShowProgress(pass, entry->move);
        entry->sort_value = 0;
        entry->flags = 0;

        const int reduction = RootReduction(pass, *entry);
        MakeMove(pos, entry->move);
        const int v = SearchRootMove(&pass, *entry, reduction);
        UnmakeMove(pos);
        thread->root_state = ROOT_AT_WORK;
        thread->pv = saved_pv;
        thread->score = saved_score;
        if (PBlock.stop)
            return;

        // A scout's fail low is a bound and no score to sort by.
        const int w = v > pass.best || IsSortingPass(pass) ? v : NO_IMPROVEMENT - pass.n;
        ++pass.n;
        entry->sort_value = RootSortValue(w);
        if (w > pass.best)
            AcceptMove(&pass, head, entry, w);
        if (NodesAreUsedUp(*thread)) {
            StopSearch(STOP_TIME);
            return;
        }
    }
    if (depth > EASY_FROM_DEPTH && pass.report)
        EasyMove(&pass, head);
}

}  // namespace vrel
