#pragma once

#include "board/search_thread.h"

namespace vrel {

// Static evaluation in centipawns, seen from `side`, which is the side to move.
// Leaves `eval`, `hung_value`, `free_pawn_rank` and `eval_draw` in frames[ply] for the search to prune on.
// In check nothing is computed and the result is NO_SCORE. At ply 0 and 1 the caches are bypassed and the report
// block is filled.
int Evaluate(SearchThread* thread, int side, int ply, bool in_check);

// The one way in which an opening and an ending value are combined; stage 0 is the opening, 24 the ending.
constexpr int Blend(int op, int en, int stage) { return (op * (24 - stage) + en * stage) / 24; }

}  // namespace vrel
