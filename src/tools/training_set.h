#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "board/position.h"

namespace vrel {

struct TrainingPosition {
    Position setup;  // as SetPosition leaves the game record
    double target;   // result expected for the side to move, 0 to 1
};

class TrainingSet {
public:
    explicit TrainingSet(uint64_t key) : key_(key) {}

    // False if there is no room for another one.
    bool Add(const TrainingPosition& entry);

    size_t size() const { return size_; }
    const TrainingPosition& operator[](size_t i) const { return (*blocks_[i / BLOCK])[i % BLOCK]; }

    // Any key of the tables that the positions stand for: those are drawn anew as a whole.
    uint64_t key() const { return key_; }

    static constexpr size_t BLOCK = 1000;  // positions
    using Block = std::array<TrainingPosition, BLOCK>;

private:
    static constexpr size_t BLOCKS = 450;  // of about 600 kB

    std::array<std::unique_ptr<Block>, BLOCKS> blocks_;
    size_t size_ = 0;
    uint64_t key_;
};

// The positions of an EPD file, kept from call to call: tuning runs over the same file thousands of times. Read anew
// when the file or the position keys have changed; whoever holds the old set may go on with it. Null if the file can't
// be kept, being too large for us or for the memory there is, no regular file, or holding lines that tell no side to
// move and so depend on what stood on the board before.
std::shared_ptr<const TrainingSet> GetTrainingSet(const char* name);

// Puts a position of the set on the game record, as SetPosition does with its text.
void PlaceOnBoard(const TrainingSet& set, const TrainingPosition& entry);

}  // namespace vrel
