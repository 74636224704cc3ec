#include "board/attacks.h"

namespace vrel {

namespace {

// The squares from `sq` to the edge in steps of one file and rank each way.
constexpr uint64_t Ray(Square sq, int file_step, int rank_step) {
    uint64_t ray = 0;
    for (int file = FileOf(sq) + file_step, rank = RankOf(sq) + rank_step;
         file >= 0 && file < 8 && rank >= 0 && rank < 8; file += file_step, rank += rank_step)
        ray |= Bit(rank * 8 + file);
    return ray;
}

constexpr std::array<SquareLines, SQUARES> MakeSquareLines() {
    std::array<SquareLines, SQUARES> table{};
    for (int sq = 0; sq < NO_SQUARE; ++sq)
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
