#pragma once

#include <array>
#include <cstdint>

#include "board/position.h"

// The book's records and the hashes that they are found by. The hashes depend on no table that changes, so that a
// book stays valid from run to run.
namespace vrel {

// One position of a book file, as it stands there: little-endian, without gaps. The counters are seen from the side to
// move in the position, so whoever chooses a move that leads to it reads `losses` as its own wins.
struct BookRecord {
    uint16_t key;        // BookKey
    uint16_t hash2_low;  // the second hash in halves, which leave no gap behind `key`
    uint16_t hash2_high;
    uint16_t wins;
    uint16_t losses;
    uint16_t draws;     // and games without a decisive result
    uint16_t reserved;  // 0
};
static_assert(sizeof(BookRecord) == 14 && alignof(BookRecord) == 2);

// The bit of a key that tells that white is to move.
inline constexpr int WHITE_KEY = 0x8000;

// Hashes of the position last given to UpdatePosHash. Main thread only.
extern uint16_t hash1;  // of the pieces of the side to move
extern uint32_t hash2;  // of all pieces and the en passant square

void UpdatePosHash(const Position& pos);

// What is remembered of a game to hash its positions one after the other; fresh for each game.
struct FollowedGame {
    std::array<uint8_t, 64> board{};  // codes on the board as it was last
    std::array<uint64_t, 2> sets{};   // the squares of either side there
    std::array<uint16_t, 2> first{};  // first hash of either side's pieces
    uint32_t second = 0;              // second hash, the pieces' part
};

// The same as UpdatePosHash for the next position of a game, from what its move has changed.
void FollowPosHash(FollowedGame* game, const Position& pos);

// `hash1` with the side to move in its highest bit.
inline uint16_t BookKey(Side side) {
    return static_cast<uint16_t>(side == WHITE ? hash1 | WHITE_KEY : hash1 & (WHITE_KEY - 1));
}

// Files and buffers are sorted by falling order: by key, then by second hash. 48 bits.
constexpr uint64_t BookOrder(uint16_t key, uint32_t second) { return static_cast<uint64_t>(key) << 32 | second; }
constexpr uint64_t BookOrder(const BookRecord& record) {
    return static_cast<uint64_t>(record.key) << 32 | static_cast<uint64_t>(record.hash2_high) << 16 | record.hash2_low;
}

}  // namespace vrel
