#include <algorithm>
#include <cassert>

#include "board/attacks.h"
#include "board/generate.h"
#include "eval/evaluate.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "search/mate_test.h"
#include "search/ordering.h"
#include "search/search.h"
#include "search/search_control.h"
#include "search/search_report.h"

namespace vrel {

namespace {

constexpr Depth MULTIPV_DEPTH = 5;  // deeper iterations search several lines
constexpr Depth POLICY_DEPTH = 7;   // deeper iterations are divided among the side workers
constexpr Depth REDO_DEPTH = 7;     // only a published line deeper than this is worth a repeat
constexpr int REDO_MARGIN = 9;      // centipawns by which a side worker must be better
constexpr int STAGGER = 5;          // milliseconds

// With no depth to search the answer is a quiescence search of the root, left in the record of worker 1 and not
// published. In check there is none: quiescence knows no evasions.
void SearchQuiet(SearchThread* thread, Side side, bool in_check) {
    if (thread->id != 1 || in_check)
        return;
    PvLine line{};
    thread->quiet_limit = thread->nodes + QUIET_TREE_LIMIT;
    thread->frames[1].depth = 0;
    thread->score = static_cast<int16_t>(Q_Search(&thread->pos, side, 1, 0, NO_SCORE, -NO_SCORE, NODE_PV, line.data()));
    std::copy(line.begin(), line.end(), thread->pv.begin());
}

// The game is over: mated where it stands, one ply from the root, or stalemated.
void ReportNoMove(SearchThread* thread, bool in_check) {
    thread->score = in_check ? -9999 : 0;
    thread->best_depth = 1;
    if (thread->id == 1) {
        NewBestMove(thread);
        StopSearch(STOP_NO_MOVE);
    }
}

// The list stays for the whole search, and each iteration leaves it in a better order for the next. The first finds it
// in generation order.
void PrepareRootList(Position* pos) {
    GenerateAll(pos);
    MoveEntry* list = pos->frames[1].first;
    RemoveIllegalMoves(*pos, list);
    for (MoveEntry* entry = list; entry->move != END_OF_LIST; ++entry)
        entry->sort_value = 1;
}

// Workers enter the table one after the other, the first two at once.
void StaggerStart(int id) {
    if (id > 2 && !PBlock.stop)
        SleepMilliseconds(STAGGER);
    if (id > 5 && !PBlock.stop)
        SleepMilliseconds(STAGGER);
}

int RootMoves(const Position& pos) {
    int n = 0;
    while (pos.frames[1].first[n].move != END_OF_LIST)
        ++n;
    return n;
}

void BeginIteration(SearchThread* thread, Depth d) {
    thread->iter_nodes[d] = 0;
    thread->iter_score[d] = NO_SCORE;
}

// Each pass looks for the best among the moves that have no line yet and puts it in its place, so that the list ends
// with the best lines in order. Worker 1 publishes only the first.
void SearchSeveralLines(SearchThread* thread, Side side, Depth d) {
    BeginIteration(thread, d);
    const int moves = RootMoves(thread->pos);
    for (int i = 0; i < PBlock.multipv && i < moves; ++i) {
        SearchRoot(&thread->pos, side, d, i);
        if (PBlock.stop)
            break;
        if (thread->id == 1)
            DisplaySearchInfo(1, i, d, thread->score, CopyPV(thread->pv).data());
    }
    if (PBlock.mode == MODE_CONSOLE && thread->id == 1)
        ShowMessage("");
}

// A worker that joins others at a depth searches in a slightly different order. Side by side through the same tree they
// would find nothing in the table that the other has left there.
void PerturbRootOrder(SearchThread* thread) {
    for (MoveEntry* entry = thread->frames[1].first; entry->move != END_OF_LIST; ++entry) {
        thread->seed = thread->seed * 63 + 0x3ade68b1;
        const int fall = static_cast<int>(thread->seed % 7);
        entry->sort_value = static_cast<uint8_t>(entry->sort_value > fall ? entry->sort_value - fall : 0);
    }
}

// Side workers leave a depth that enough others are at: two, or half of a crew of six and more. Those who go ahead fill
// the table for the ones behind. True to skip the depth.
bool SkipDepth(SearchThread* thread, Depth d) {
    assert(thread->id > 1 && thread->depth < d);
    const int nthreads = PBlock.nthreads;
    int there = 0;
    for (int k = 1; k <= nthreads; ++k)
        there += GetThread(k)->depth >= d;
    if (there >= (nthreads >= 6 ? nthreads / 2 : 2))
        return true;
    if (there > 0)
        PerturbRootOrder(thread);
    return false;
}

// A side worker has a clearly better score for another move at this depth or beyond: worker 1 looks again, with the
// table as the side worker has filled it. Only so does a find of a side worker come to be played. Its fields are read
// while it changes them; that can cost a repeat in vain, or miss one, and nothing worse.
void RedoIteration(SearchThread* thread, Side side, Depth d) {
    if (PBlock.depth <= REDO_DEPTH)
        return;
    for (int k = 2; k <= PBlock.nthreads; ++k) {
        const SearchThread& other = *GetThread(k);
        if (other.score > PBlock.score + REDO_MARGIN && other.best_depth >= PBlock.depth &&
            other.pv[1] != PBlock.pv[1]) {
            SearchRoot(&thread->pos, side, d, 0);
            return;
        }
    }
}

void SearchOneLine(SearchThread* thread, Side side, Depth d) {
    BeginIteration(thread, d);
    SearchRoot(&thread->pos, side, d, 0);
    if (thread->id != 1)
        return;
    if (!PBlock.stop && PBlock.nthreads != 1)
        RedoIteration(thread, side, d);
    // What the first iteration finds isn't shown move by move: its result is.
    if (d == 1 && !PBlock.stop)
        DisplaySearchInfo(1, 0, d, thread->score, CopyPV(thread->pv).data());
}

// A forced mate that is shorter than the depth searched needs no further iteration. Extensions see mates beyond that
// depth; a shorter one may still turn up.
bool MateIsCertain(const SearchThread& thread, Depth d) {
    const int v = thread.iter_score[d];
    return v >= 9999 - d || v < d - 9999;
}

// Iterations of growing depth, all workers on the same shared table. The last depth is left by nobody: beyond it there
// is nothing to do.
void Deepen(SearchThread* thread, Side side) {
    const int id = thread->id;
    for (Depth d = 1; d <= PBlock.max_depth; ++d) {
        const bool several = PBlock.multipv > 1 && d > MULTIPV_DEPTH;
        if (!several && id > 1 && d > POLICY_DEPTH && d < PBlock.max_depth && SkipDepth(thread, d))
            continue;
        thread->depth = static_cast<int8_t>(d);
        if (several)
            SearchSeveralLines(thread, side, d);
        else
            SearchOneLine(thread, side, d);
        thread->iter_nodes[d] = thread->nodes;
        if (PBlock.stop)
            return;
        // What has been given up has no score that could be a mate.
        if (thread->root_state == ROOT_GAVE_UP)
            continue;
        if (id == 1)
            PublishFinishedDepth(d);
        if (MateIsCertain(*thread, d))
            return;
    }
}

}  // namespace

void SearchIterations(int id) {
    assert(id >= 1 && id <= PBlock.nthreads);
    SearchThread* thread = GetThread(id);
    Position* pos = &thread->pos;
    const Side side = pos->stm;

    // History and killers start cold with each search: the table alone carries knowledge over.
    thread->depth = 0;
    thread->root_state = ROOT_AT_WORK;
    pos->ply = 1;
    for (Relaxed<Move>& move : thread->pv)
        move = NO_MOVE;
    InitMoveOrderingTables(thread);

    const bool in_check = SqAtakd(*pos, KingSquare(*pos, side), side ^ 1);
    // Until there is a line the static evaluation stands for its score.
    const auto eval = static_cast<int16_t>(Evaluate(thread, side, 1, in_check));
    thread->root_eval = eval;
    thread->score = eval;
    thread->frames[1].eval = eval;

    if (PBlock.max_depth <= 0) {
        SearchQuiet(thread, side, in_check);
        return;
    }
    if (IsMate(pos, in_check) != MAY_MOVE) {
        ReportNoMove(thread, in_check);
        return;
    }
    PrepareRootList(pos);
    StaggerStart(id);
    Deepen(thread, side);
    // Worker 1 being through ends the search; a side worker that is goes idle and stops nobody.
    if (id == 1 && !PBlock.stop)
        StopSearch(STOP_TIME);
}

}  // namespace vrel
