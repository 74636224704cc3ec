#pragma once

#include <string>

#include "board/eval_records.h"
#include "board/position.h"

namespace vrel {

// How the evaluation sees a position, for a person: `report` is what Evaluate has left of it, `eval` its score and
// `qscore` that of the quiescence search, centipawns for the side to move.
std::string EvalReportText(const Position& pos, const EvalReport& report, int eval, int qscore);

// What the figures of `mtl=` and `pos=` are blended from, the opening and the ending value of each, and the passed
// pawns with a free path.
std::string EvalPartsText(const EvalReport& report);

}  // namespace vrel
