#pragma once

#include <cstdint>

namespace vrel {

// Gradient descent over all weights, on the positions of PBlock.epd_file.
void Tune();

// Brackets the best value of one weight within `range`, restores it and returns what was found.
int PTune(const char* name, int16_t* param, int range);

}  // namespace vrel
