#pragma once

#include <cstdint>

namespace vrel {

inline constexpr int BENCH_DEPTH = 12;

// Searches the positions of the bench to a depth, one after the other, each with a cleared table and cleared caches, on
// this thread with the record of worker 1. Prints the nodes of each, and a last line "N nodes M nps". The total, which
// is returned, is the same on every machine with a table of 64 MiB: it changes only when the search or the evaluation
// does.
uint64_t RunBench(int depth);

// Gives worker 1 a position of its own to search, as if nothing had been searched before.
void PrepareAfresh(const char* fen);

}  // namespace vrel
