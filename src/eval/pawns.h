#pragma once

#include "board/eval_records.h"
#include "board/position.h"

namespace vrel {

// Computes the pawn entry of a position, all but its key. At the root each pawn's share goes into the report, which
// needs the stage.
void UpdatePawnHash(const Position& pos, PawnHashEntry* entry);
void UpdatePawnHashAtRoot(const Position& pos, PawnHashEntry* entry, int stage, EvalReport* report);

}  // namespace vrel
