#pragma once

#include <cstdint>

#include "board/position.h"

namespace vrel {

// Attack sets of a slider on `sq` over the occupied set `occ`, the first blocker of each direction included.
uint64_t GenAttacksB(int sq, uint64_t occ);
uint64_t GenAttacksR(int sq, uint64_t occ);

// True if a piece of `side` attacks `sq`.
bool SqAtakd(const Position& pos, int sq, int side);

// Members of `set` that a piece of `type` (knight to queen) on `sq` attacks.
uint64_t GetAtakr(int sq, int type, uint64_t set, uint64_t occ);

// Pieces of any colour that stand alone between the king (or the only queen) of `side` and an enemy slider.
uint64_t PinnedToKing(const Position& pos, int side);
uint64_t PinnedToQueen(const Position& pos, int side);

}  // namespace vrel
