#pragma once

#include <array>
#include <cstdint>

#include "board/position.h"

namespace vrel {

// Exchange values by piece type, centipawns. Not the tuned weights of the evaluation.
inline constexpr std::array<int16_t, 8> piece_value = {0, 100, 325, 325, 500, 975, 10000, 0};

// Static exchange evaluation on `sq`, centipawns from the view of `side`, which captures first. `from` names the
// first capturing piece, whose capture is then forced (down to -9999); NO_SQUARE lets the least valuable attacker
// begin, or nobody, so that the result is at least 0.
int swapoff1(const Position& pos, Side side, Square from, Square sq, uint64_t occ);

// True if swapoff1 with the forced capture by the piece on `from`, which isn't a king, gives at least `threshold`,
// which is not above the value of what stands on `sq`. Most answers need no more than a look at the pawns.
bool ExchangeReaches(const Position& pos, Side side, Square from, Square sq, int threshold);

}  // namespace vrel
