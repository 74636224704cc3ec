#pragma once

#include "board/position.h"

namespace vrel {

// 0 starts the clock of the search; nonzero refreshes PBlock.elapsed, in seconds.
void GetElapsedTime(int flag);

// Works out the target time of a search of the game's position from the limits in force, seconds.
void SetTimeBudget(const Position& game);

// Called about every 2 milliseconds: ends the search when it has had its time.
void SearchTimeout();

}  // namespace vrel
