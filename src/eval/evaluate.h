#pragma once

#include <cassert>

#include "board/search_thread.h"

namespace vrel {

// Static evaluation in centipawns, seen from `side`, which is the side to move.
// Leaves `eval`, `hung_value`, `free_pawn_rank` and `eval_draw` in frames[ply] for the search to prune on.
// In check nothing is computed and the result is NO_SCORE. At ply 0 and 1 the caches are bypassed and the report
// block is filled.
int Evaluate(SearchThread* thread, Side side, Ply ply, bool in_check);

// Stage of the game: 0 with the force of the start on the board, up to this with kings and pawns alone.
inline constexpr int LAST_STAGE = 24;

// The one way in which an opening and an ending value are combined.
constexpr int Blend(int op, int en, int stage) {
    assert(stage >= 0 && stage <= LAST_STAGE);
    return (op * (LAST_STAGE - stage) + en * stage) / LAST_STAGE;
}

}  // namespace vrel
