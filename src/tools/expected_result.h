#pragma once

namespace vrel {

// The result, from 0 for a loss to 1 for a win, that a score in centipawns promises the side that it is seen from.
double ExpectedResult(int score);

}  // namespace vrel
