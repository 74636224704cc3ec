#pragma once

#include "board/search_thread.h"

// The engine as the benches use it: without input, log or output of its own.
namespace vrel {

inline constexpr int BENCH_HASH_MB = 64;

// Builds all tables and the game record: false without memory.
bool StartForBench();

// Gives worker 1 a fresh record that holds the game's position: null without memory.
SearchThread* FreshWorker(const char* fen);

}  // namespace vrel
