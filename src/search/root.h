#pragma once

#include "board/position.h"
#include "board/search_thread.h"

namespace vrel {

// Half width of the aspiration window around the score of the last iteration, centipawns.
int AspirationWidth(int score, Depth depth);

// The root's sort_value of a move's score: logarithmic, so that the order of nearly equal moves survives. Every move
// that was no improvement comes as a score below -11000 and gets 1.
uint8_t RootSortValue(int score);

}  // namespace vrel
