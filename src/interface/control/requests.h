#pragma once

// How commands and the game loop deal with a search that is in the way.
namespace vrel {

// True if no search runs and none waits to be reported or started.
bool EngineIsFree();

// Asks a running search to end and to be reported, a pondering one as well.
void EndRunningSearch();

// For a command that needs a free engine: ends the search in its way. True if it can't be carried out yet; the line is
// then held back and handled again when the engine is free.
bool MustWait();

// The same for one that needs idle workers, but no report of what they have found.
bool MustWaitForWorkers();

// Says whether a line may be held back: only the game loop brings it again. A tool's search is waited for instead.
// Returns what held before.
bool LetLinesWait(bool may);

// For the input: true if the line just handled is to stay at the head of the queue. Resets itself.
bool LineWasHeld();

// `isready` is answered once all workers are idle: at once if they are, else when that is seen.
void OweReadyOk();
void PayReadyOk();

}  // namespace vrel
