#include "book/book_keys.h"

#include <array>
#include <cstddef>

namespace vrel {

uint16_t hash1 = 0;
uint32_t hash2 = 0;

namespace {

std::array<uint16_t, 772> hasharea;
constexpr std::array<size_t, 7> of2 = {0, 0, 128, 256, 384, 512, 640};

}  // namespace

void InitBookKeys() {
    uint32_t x = 77;
    for (uint16_t& value : hasharea) {
        x = (x * 33 + 12345) & 0xffff;
        value = static_cast<uint16_t>(x);
    }
}

void UpdatePosHash(const Position& pos) {
    hash1 = 0;
    hash2 = 0;
    for (size_t side = 0; side < 2; ++side) {
        const bool to_move = side == pos.stm;
        for (size_t type = PAWN; type <= KING; ++type) {
            uint64_t set = pos.bb[side][type];
            while (set) {
                const size_t i = of2[type] + side * 64 + static_cast<size_t>(PopLSB(&set));
                if (to_move)
                    hash1 ^= hasharea[i];
                hash2 ^= (static_cast<uint32_t>(hasharea[i + 1]) << 16) + hasharea[i + 2];
            }
        }
    }
    hash2 += pos.ep_square;
}

}  // namespace vrel
