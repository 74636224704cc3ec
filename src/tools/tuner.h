#pragma once

#include <cstdint>

namespace vrel {

// Gradient descent over all weights, on the positions of PBlock.epd_file. The result is left in Personality and told
// in "tune.log". False, with a word about it, if it couldn't begin or the log couldn't be written.
bool Tune();

// Brackets the best value of one weight within `range` on either side, on the positions of PBlock.epd_file. Restores
// the weight and returns what was found.
int PTune(const char* name, int16_t* param, int range);

}  // namespace vrel
