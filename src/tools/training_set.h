#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "board/position.h"

namespace vrel {

struct TrainingPosition {
    Position setup;  // as SetPosition leaves the game record
    double target;   // result expected for the side to move, 0 to 1
};

struct TrainingSet {
    uint64_t key = 0;  // any key of the tables that `setup` stands for: they are drawn anew as a whole
    std::vector<TrainingPosition> positions;
};

// The positions of an EPD file, kept from call to call: tuning runs over the same file thousands of times. Read anew
// when the file or the position keys have changed; whoever holds the old set may go on with it. Null if the file can't
// be kept, being too large, no regular file, or holding lines that tell no side to move and so depend on what stood on
// the board before.
std::shared_ptr<const TrainingSet> GetTrainingSet(const char* name);

// Puts a position of the set on the game record, as SetPosition does with its text.
void PlaceOnBoard(const TrainingSet& set, const TrainingPosition& entry);

}  // namespace vrel
