#pragma once

#include <functional>

namespace vrel {

// Builds every table, the game record, the transposition table and the evaluation, in an order that each step relies
// on; no worker is started. `configure` may change the defaults of PBlock before memory is claimed for what they ask.
// False without memory.
bool StartEngine(const std::function<void()>& configure = [] {});

// Gives back what StartEngine has claimed, and the records of workers that have ended.
void EndEngine();

}  // namespace vrel
