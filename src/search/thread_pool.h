#pragma once

#include "platform/threads.h"

// The pool of workers. Each searches on its own SearchThread; worker 1 is the master and the only one that publishes.
namespace vrel {

// Starts workers 1 to n, none of which may exist, and waits for their records: 0, or the error code of the failed
// start. All per-worker state starts afresh.
int CreateThreadPool(int n);

// Ends workers 1 to n, after whatever they are searching.
void KillThreadPool(int n);

// True if no worker searches. When the last one has ended, it wakes the main thread.
bool WorkersIdle();

// Sleeps until no worker searches.
void WaitUntilIdle();

// Gives the workers 1 to nthreads their work; the position has been handed over by PrepareThreads.
void StartWorkers();

// spinlock1 guards the publication of the best line in PBlock, spinlock2 one search report. They are never held
// together, nor across a search call.
extern SpinLock spinlock1, spinlock2;

// Initialises the two locks: 0, or an error code.
int InitLocks();
void DestroyLocks();

// Copies the game's position and past into every worker and clears the counters of all slots.
void PrepareThreads();

}  // namespace vrel
