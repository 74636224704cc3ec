#include "board/attacks.h"

namespace vrel {

namespace {

// The entry of "no square" stays empty, its bit as well: nothing is taken away from nothing.
constexpr std::array<SquareLines, SQUARES> MakeSquareLines() {
    std::array<SquareLines, SQUARES> table{};
    for (Square sq = 0; sq < NO_SQUARE; ++sq)
        // In the order of the fields.
        table[sq] = {Ray(sq, 0, 1) | Ray(sq, 0, -1),
                     Ray(sq, 1, 1) | Ray(sq, -1, -1),
                     Ray(sq, -1, 1) | Ray(sq, 1, -1),
                     Ray(sq, -1, 0),
                     Ray(sq, 1, 0),
                     Bit(sq),
                     Bit(sq ^ 56)};
    return table;
}

}  // namespace

constexpr std::array<SquareLines, SQUARES> square_lines = MakeSquareLines();

uint64_t GetAtakr(Square sq, int type, uint64_t set, uint64_t occ) {
    switch (type) {
        case KNIGHT:
            return set & BB_KnightRays[sq];
        case BISHOP:
            return set & GenAttacksB(sq, occ);
        case ROOK:
            return set & GenAttacksR(sq, occ);
        case QUEEN:
            return set & (GenAttacksB(sq, occ) | GenAttacksR(sq, occ));
        default:
            return 0;
    }
}

}  // namespace vrel
