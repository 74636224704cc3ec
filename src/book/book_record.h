#pragma once

#include <cstdint>

namespace vrel {

// One position of the book as it stands in the file, little-endian, without gaps. Counters are from the view of the
// side to move in the position.
struct [[gnu::packed]] BookRecord {
    uint16_t key;    // bits 0-14 the first position hash, bit 15 set if white is to move
    uint32_t hash2;  // the second
    uint16_t wins;
    uint16_t losses;
    uint16_t draws;  // games without a decisive result as well
    uint16_t reserved;
};
static_assert(sizeof(BookRecord) == 14);

// Place in the order of the file, which is descending.
inline uint64_t OrderOf(const BookRecord& record) { return static_cast<uint64_t>(record.key) << 32 | record.hash2; }

}  // namespace vrel
