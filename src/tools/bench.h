#pragma once

#include <cstdint>

#include "board/position.h"

namespace vrel {

inline constexpr int BENCH_DEPTH = 12;

// Searches the positions of the bench to a depth, one after the other, each with a cleared table and a fresh record of
// worker 1, on this thread; no pool runs. Prints the nodes of each, and a last line "N nodes M nps". The total, which
// is returned, is the same on every machine with a table of 64 MiB: it changes only when the search or the evaluation
// does. 0 without memory.
uint64_t RunBench(Depth depth);

// Gives worker 1 a fresh record that holds a position to search, and the game the same position. False without memory.
bool PrepareAfresh(const char* fen);

}  // namespace vrel
