#pragma once

namespace vrel {

// 0 starts the clock of the search; nonzero refreshes PBlock.elapsed, in seconds.
void GetElapsedTime(int flag);

// Prepares a search: resets what is published, sets the time budget, hands the position to the workers, which are
// idle.
void InitSearch();

// Called about every 2 milliseconds: ends the search when it has had its time.
void SearchTimeout();

}  // namespace vrel
