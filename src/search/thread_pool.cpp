#include "search/thread_pool.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>

#include "board/search_thread.h"
#include "interface/pblock.h"
#include "platform/standard_input.h"
#include "platform/threads.h"
#include "search/search.h"
#include "search/search_control.h"

namespace vrel {

SpinLock spinlock1, spinlock2;

namespace {

std::array<Worker, MAX_THREADS + 1> workers;

// Workers that have been given work and haven't gone by EndWork since. Looking at the flags wouldn't tell a worker that
// it is the last: two that clear theirs at once may each still see the other's.
std::atomic<int> at_work{0};

// The record of the worker may be replaced as soon as its flag is cleared.
void EndWork(SearchThread* self) {
    self->work_flag.store(WORK_IDLE, std::memory_order_release);
    if (at_work.fetch_sub(1, std::memory_order_acq_rel) == 1)
        WakeMainThread();
}

// A worker makes its record itself.
const std::atomic<int>* BeginWork(int id) {
    // Without memory for a worker there is no engine, and nobody here to tell.
    if (InitNewThread(id) != 0)
        std::_Exit(0);
    WakeMainThread();
    return &GetThread(id)->work_flag;
}

bool Work(int id) {
    SearchThread* self = GetThread(id);
    const bool go_on = self->work_flag.load(std::memory_order_relaxed) != WORK_END;
    if (go_on)
        SearchIterations(id);
    EndWork(self);
    return go_on;
}

// Hands work to an idle worker, or tells it to end.
void WakeWorker(int id, WorkFlag flag) {
    SearchThread* worker = GetThread(id);
    assert(worker->work_flag.load(std::memory_order_relaxed) == WORK_IDLE);
    // The position and the limits that were written before go with the flag.
    at_work.fetch_add(1, std::memory_order_relaxed);
    worker->work_flag.store(flag, std::memory_order_release);
    WakeWaiter(&worker->work_flag);
}

// A new search of the slot begins: nothing of the last one is left in what others read.
void ResetCounters(SearchThread* thread) {
    thread->depth = 0;
    thread->best_depth = 0;
    thread->score = 0;
    thread->nodes = 0;
    thread->root_state = ROOT_AT_WORK;
    thread->evals = 0;
    thread->eval_hits = 0;
    thread->tt_probes = 0;
    thread->tt_hits = 0;
    thread->pawn_probes = 0;
    thread->pawn_hits = 0;
    thread->pv[1] = NO_MOVE;
    thread->pos.ply = 1;
}

// The position and its past, so that repetition tests see the game.
void HandOverPosition(const SearchThread& game, SearchThread* worker) {
    worker->pos = game.pos;
    worker->pos.undo = worker->undo.data();
    worker->pos.frames = worker->frames.data();
    worker->pos.thread_index = static_cast<uint8_t>(worker->id);
    // The record behind those in use holds the move ahead, if one has been taken back.
    const int records = game.pos.game_ply + 1;
    std::copy_n(game.undo.begin(), std::min(records, UNDO_RECORDS), worker->undo.begin());
    if (records < UNDO_RECORDS)
        worker->undo[records].move = NO_MOVE;
}

}  // namespace

int CreateThreadPool(int n) {
    assert(n >= 1 && n <= MAX_THREADS);
    for (int i = 1; i <= n; ++i) {
        FreeThread(i);  // a record of an earlier pool must not be taken for the new one
        workers[i] = {BeginWork, Work, i};
    }
    for (int i = 1; i <= n; ++i) {
        const int error = StartWorker(&workers[i]);
        if (error != 0)
            return error;
    }
    // A record appears when it is complete.
    for (int i = 1; i <= n; ++i)
        while (GetThread(i) == nullptr)
            SleepUntilWoken(UNTIL_WOKEN, false);
    return 0;
}

// The records stay for whoever reads the figures of the last search.
void KillThreadPool(int n) {
    StopSearch(STOP_POOL);
    WaitUntilIdle();
    for (int i = 1; i <= n; ++i)
        WakeWorker(i, WORK_END);
    WaitUntilIdle();
}

// Acquires what the workers have written before they went idle.
bool WorkersIdle() {
    for (int i = 1; i <= PBlock.nthreads; ++i)
        if (GetThread(i)->work_flag.load(std::memory_order_acquire) != WORK_IDLE)
            return false;
    return true;
}

void WaitUntilIdle() {
    while (!WorkersIdle())
        SleepUntilWoken(UNTIL_WOKEN, false);
}

// Worker 1 goes first: its line is the one that is waited for.
void StartWorkers() {
    for (int i = 1; i <= PBlock.nthreads; ++i)
        WakeWorker(i, WORK_SEARCH);
}

int InitLocks() {
    const int error = spinlock1.Init();
    return error != 0 ? error : spinlock2.Init();
}

void DestroyLocks() {
    spinlock1.Destroy();
    spinlock2.Destroy();
}

void PrepareThreads() {
    // What is copied here is a worker's own until it goes idle again.
    assert(WorkersIdle());
    const SearchThread& game = *GetThread(0);
    for (int i = 1; i <= PBlock.nthreads; ++i)
        HandOverPosition(game, GetThread(i));
    for (int i = 0; i <= PBlock.nthreads; ++i)
        ResetCounters(GetThread(i));
}

}  // namespace vrel
