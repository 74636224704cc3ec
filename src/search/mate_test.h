#pragma once

#include "board/position.h"

namespace vrel {

// 0: the side to move has a legal move; 1: it is checkmated; 2: stalemated.
int IsMate(Position* pos, bool in_check);

}  // namespace vrel
