#pragma once

#include <cstdint>

namespace vrel {

// Writes `count` short openings of random legal moves as PGN, none twice, each with as many wins for either side as a
// book needs to keep all of its positions. The same seed gives the same openings. False, with a word about it, if the
// file can't be written.
bool WriteOpenings(const char* file, int count, uint32_t seed);

}  // namespace vrel
