#include "board/keys.h"

#include <cassert>

#include "board/search_thread.h"

namespace vrel {

std::array<uint64_t, 1024> rtable;
std::array<uint64_t, 66> rtable2;

namespace {

// State of the generator: the sequence goes on wherever it was left.
uint32_t seed = 54321;

// The first value drawn is the high half.
uint64_t DrawKey() {
    const uint64_t high = myrand();
    return (high << 32) + myrand();
}

// Keys whose halves differ in at least five bits each keep both halves useful on their own.
bool FarFromEarlierKeys(uint64_t key, int count) {
    for (int j = 0; j < count; ++j) {
        const uint64_t x = key ^ rtable[j];
        if (CountBits(x & 0xffffffffULL) <= 4 || CountBits(x >> 32) <= 4)
            return false;
    }
    return true;
}

}  // namespace

uint32_t myrand() {
    seed = seed * 0x7ff8a3ed + 0x2aa01d31;
    return seed;
}

// A key that is too close to an earlier one is given up for the next. The second table isn't tested.
void FillKeyTables() {
    assert(NobodySearches());
    int count = 0;
    for (uint64_t& key : rtable) {
        do {
            key = DrawKey();
        } while (!FarFromEarlierKeys(key, count));
        ++count;
    }
    for (uint64_t& key : rtable2)
        key = DrawKey();
}

void SetHash(Position* pos) {
    pos->hash = 0;
    pos->pawn_hash = 0;
    for (Square sq = 0; sq < 64; ++sq) {
        const int code = pos->board[sq];
        if (code)
            UpdateHash(pos, SideOf(code), code, sq);
    }
}

}  // namespace vrel
