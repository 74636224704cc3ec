#pragma once

#include <vector>

#include "board/position.h"

namespace vrel {

struct TrainingPosition {
    Position setup;  // as SetPosition leaves the game record
    double target;   // result expected for the side to move, 0 to 1
};

using TrainingSet = std::vector<TrainingPosition>;

// The positions of an EPD file, kept from call to call: tuning runs over the same file thousands of times. Read anew
// when the file or the position keys have changed. Null if the file can't be kept, being too large, no regular file,
// or holding lines that tell no side to move and so depend on what stood on the board before.
const TrainingSet* GetTrainingSet(const char* name);

// Puts a position on the game record, as SetPosition does with its text.
void PlaceOnBoard(const TrainingPosition& entry);

}  // namespace vrel
