#include "board/bitboards.h"

#include <cstdlib>

#include "board/position.h"
#include "eval/eval_tables.h"
#include "support/engine.h"

namespace vrel {
namespace {

using BitboardsTest = EngineTest;

enum Named : int { A1 = 0, B1 = 1, C2 = 10, A2 = 8, H2 = 15, G3 = 22, B6 = 41, A7 = 48, E1 = 4, E8 = 60, H8 = 63 };

// The squares from `sq` to the edge in steps of a file and a rank.
uint64_t Walk(int sq, int file_step, int rank_step) {
    uint64_t set = 0;
    int file = sq % 8 + file_step;
    int rank = sq / 8 + rank_step;
    while (file >= 0 && file < 8 && rank >= 0 && rank < 8) {
        set |= Bit(rank * 8 + file);
        file += file_step;
        rank += rank_step;
    }
    return set;
}

TEST_F(BitboardsTest, RaysRunToTheEdge) {
    for (size_t n = 0; n < 64; ++n) {
        const int sq = static_cast<int>(n);
        EXPECT_EQ(BB_RayN[n], Walk(sq, 0, 1)) << sq;
        EXPECT_EQ(BB_RayS[n], Walk(sq, 0, -1)) << sq;
        EXPECT_EQ(BB_RayE[n], Walk(sq, 1, 0)) << sq;
        EXPECT_EQ(BB_RayW[n], Walk(sq, -1, 0)) << sq;
        EXPECT_EQ(BB_RayNE[n], Walk(sq, 1, 1)) << sq;
        EXPECT_EQ(BB_RayNW[n], Walk(sq, -1, 1)) << sq;
        EXPECT_EQ(BB_RaySE[n], Walk(sq, 1, -1)) << sq;
        EXPECT_EQ(BB_RaySW[n], Walk(sq, -1, -1)) << sq;
        EXPECT_EQ(BB_RookRays[n], BB_RayN[n] | BB_RayS[n] | BB_RayE[n] | BB_RayW[n]) << sq;
        EXPECT_EQ(BB_BishopRays[n], BB_RayNE[n] | BB_RayNW[n] | BB_RaySE[n] | BB_RaySW[n]) << sq;
    }
}

// Tables by distance: who is near, a knight's jump away, one rank ahead.
TEST_F(BitboardsTest, NeighboursAndJumpsAreThoseOfTheBoard) {
    for (size_t a = 0; a < 64; ++a) {
        const int from = static_cast<int>(a);
        for (int to = 0; to < 64; ++to) {
            const int files = std::abs(to % 8 - from % 8);
            const int ranks = to / 8 - from / 8;
            const auto in = [&](uint64_t set) { return (set & Bit(to)) != 0; };
            EXPECT_EQ(in(BB_KingRays[a]), distance(from, to) == 1) << from << ' ' << to;
            EXPECT_EQ(in(BB_KnightRays[a]), files * std::abs(ranks) == 2) << from << ' ' << to;
            EXPECT_EQ(in(BB_AdjacentSquares[a]), files == 1 && ranks == 0) << from << ' ' << to;
            EXPECT_EQ(in(BB_PawnRays[WHITE][a]), files == 1 && ranks == 1) << from << ' ' << to;
            EXPECT_EQ(in(BB_PawnRays[BLACK][a]), files == 1 && ranks == -1) << from << ' ' << to;
            EXPECT_EQ(in(BB_PawnSpan[WHITE][a]), files <= 1 && ranks > 0) << from << ' ' << to;
            EXPECT_EQ(in(BB_PawnSpan[BLACK][a]), files <= 1 && ranks < 0) << from << ' ' << to;
        }
    }
}

TEST_F(BitboardsTest, BetweenHoldsTheSquaresThatBothRaysShare) {
    for (int a = 0; a < 64; ++a) {
        for (int b = 0; b < 64; ++b) {
            uint64_t expected = 0;
            for (int file = -1; file <= 1; ++file)
                for (int rank = -1; rank <= 1; ++rank)
                    if ((file != 0 || rank != 0) && (Walk(a, file, rank) & Bit(b)))
                        expected = Walk(a, file, rank) & Walk(b, -file, -rank);
            ASSERT_EQ(BB_Between(a, b), expected) << a << ' ' << b;
        }
    }
}

TEST_F(BitboardsTest, NoSquareMeetsNothing) {
    EXPECT_EQ(BB_KingRays[NO_SQUARE] | BB_KnightRays[NO_SQUARE] | BB_RookRays[NO_SQUARE] | BB_BishopRays[NO_SQUARE],
              0U);
    EXPECT_EQ(BB_PawnRays[WHITE][NO_SQUARE] | BB_PawnRays[BLACK][NO_SQUARE], 0U);
    EXPECT_EQ(BB_PawnSpan[WHITE][NO_SQUARE] | BB_PawnSpan[BLACK][NO_SQUARE] | BB_AdjacentSquares[NO_SQUARE], 0U);
    for (int sq = 0; sq < 64; ++sq)
        EXPECT_EQ(BB_Between(sq, NO_SQUARE), 0U);
}

TEST_F(BitboardsTest, RanksAndFiles) {
    for (size_t n = 0; n < 8; ++n) {
        const int i = static_cast<int>(n);
        EXPECT_EQ(BB_North[n], i == 7 ? 0 : ~0ULL << (8 * (i + 1)));
        EXPECT_EQ(BB_South[n], (1ULL << (8 * i)) - 1);
        uint64_t files = 0;
        if (i > 0)
            files |= FILE_A << (i - 1);
        if (i < 7)
            files |= FILE_A << (i + 1);
        EXPECT_EQ(BB_AdjacentFiles[n], files);
    }
}

TEST_F(BitboardsTest, NamedSquares) {
    EXPECT_EQ(CountBits(BB_Between(A1, H8)), 6);
    EXPECT_EQ(BB_Between(A1, C2), 0U);
    EXPECT_EQ(BB_Between(A1, B1), 0U);
    EXPECT_EQ(BB_PawnRays[WHITE][H2], Bit(G3));
    EXPECT_EQ(BB_PawnRays[BLACK][A7], Bit(B6));
    EXPECT_EQ(BB_PawnRays[WHITE][E8], 0U);
    EXPECT_EQ(BB_PawnRays[BLACK][E1], 0U);
    EXPECT_EQ(BB_PawnSpan[WHITE][A2], 0x0303030303030000ULL);
    EXPECT_EQ(CountBits(BB_KingRays[A1]), 3);
    EXPECT_EQ(CountBits(BB_KnightRays[A1]), 2);
}

TEST_F(BitboardsTest, OutermostBitsOfAMask) {
    for (size_t mask = 1; mask < 256; ++mask) {
        EXPECT_EQ(leftbit[mask], GetLSB(mask));
        EXPECT_EQ(rightbit[mask], GetMSB(mask));
    }
    EXPECT_EQ(leftbit[0], 8);
    EXPECT_EQ(rightbit[0], -1);
}

TEST_F(BitboardsTest, FillsKeepTheirSquaresAndRunToTheEdge) {
    for (int sq = 0; sq < 64; ++sq) {
        const uint64_t other = Bit((sq * 7 + 3) % 64);
        EXPECT_EQ(FillNorth(Bit(sq)), Bit(sq) | Walk(sq, 0, 1));
        EXPECT_EQ(FillSouth(Bit(sq)), Bit(sq) | Walk(sq, 0, -1));
        EXPECT_EQ(FillNorth(Bit(sq) | other), FillNorth(Bit(sq)) | FillNorth(other));
    }
}

TEST_F(BitboardsTest, PopTakesTheLowestSquare) {
    uint64_t set = Bit(63) | Bit(17) | Bit(0);
    EXPECT_EQ(PopLSB(&set), 0);
    EXPECT_EQ(PopLSB(&set), 17);
    EXPECT_EQ(PopLSB(&set), 63);
    EXPECT_EQ(set, 0U);
}

}  // namespace
}  // namespace vrel
