#pragma once

#include <cstdint>

#include "board/position.h"

// Position hashes of the book. They depend on no other table and stay valid from run to run.
namespace vrel {

// Hashes of the last position given to UpdatePosHash.
extern uint16_t hash1;
extern uint32_t hash2;

void InitBookKeys();

// Rights are not part of the hashes, the side to move only through the first.
void UpdatePosHash(const Position& pos);

// The key of a record: the first hash with the side to move in its highest bit.
constexpr uint16_t BookKey(uint16_t hash, int side) {
    return static_cast<uint16_t>(side == WHITE ? hash | 0x8000 : hash & 0x7fff);
}

}  // namespace vrel
