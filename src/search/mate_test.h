#pragma once

#include "board/position.h"

namespace vrel {

enum MateResult : int { MAY_MOVE = 0, CHECKMATED = 1, STALEMATED = 2 };

// Whether the side to move has a legal move, and what it is if there is none. Overwrites the list of the ply.
MateResult IsMate(Position* pos, bool in_check);

}  // namespace vrel
