#include "board/bitboards.h"

#include "board/position.h"

namespace vrel {

std::array<uint64_t, 8> BB_North;
std::array<uint64_t, 8> BB_South;
std::array<uint64_t, 8> BB_AdjacentFiles;
SquareTable BB_AdjacentSquares;
SideSquareTable BB_PawnRays;
SideSquareTable BB_PawnSpan;
SquareTable BB_KnightRays;
SquareTable BB_KingRays;
SquareTable BB_RayN, BB_RayS, BB_RayE, BB_RayW;
SquareTable BB_RayNE, BB_RayNW, BB_RaySE, BB_RaySW;
SquareTable BB_RookRays;
SquareTable BB_BishopRays;
std::array<std::array<uint64_t, 64>, SQUARES> BB_BetweenTable;
std::array<int8_t, 256> leftbit;
std::array<int8_t, 256> rightbit;

namespace {

// Shifts of a whole board are left out: they aren't defined.
void InitializeRankAndFileTables() {
    for (int i = 0; i < 8; ++i) {
        BB_North[i] = i == 7 ? 0 : ~0ULL << (8 * (i + 1));
        BB_South[i] = ~(~0ULL << (8 * i));
        BB_AdjacentFiles[i] = (i > 0 ? FILE_A << (i - 1) : 0) | (i < 7 ? FILE_A << (i + 1) : 0);
    }
}

// Everything that starts from one square. Pawns are asked for on the back ranks as well, since their table is also read
// the other way round: from where a pawn attacks a square.
void InitializeSquare(Square sq) {
    const int file = FileOf(sq);
    const int rank = RankOf(sq);
    const uint64_t three_files = BB_AdjacentFiles[file] | FILE_A << file;
    BB_AdjacentSquares[sq] = Step(sq, -1, 0) | Step(sq, 1, 0);
    BB_PawnRays[WHITE][sq] = Step(sq, -1, 1) | Step(sq, 1, 1);
    BB_PawnRays[BLACK][sq] = Step(sq, -1, -1) | Step(sq, 1, -1);
    BB_PawnSpan[WHITE][sq] = three_files & BB_North[rank];
    BB_PawnSpan[BLACK][sq] = three_files & BB_South[rank];
    BB_KnightRays[sq] = Step(sq, 1, 2) | Step(sq, 2, 1) | Step(sq, 2, -1) | Step(sq, 1, -2) | Step(sq, -1, -2) |
                        Step(sq, -2, -1) | Step(sq, -2, 1) | Step(sq, -1, 2);
    BB_RayN[sq] = Ray(sq, 0, 1);
    BB_RayS[sq] = Ray(sq, 0, -1);
    BB_RayE[sq] = Ray(sq, 1, 0);
    BB_RayW[sq] = Ray(sq, -1, 0);
    BB_RayNE[sq] = Ray(sq, 1, 1);
    BB_RayNW[sq] = Ray(sq, -1, 1);
    BB_RaySE[sq] = Ray(sq, 1, -1);
    BB_RaySW[sq] = Ray(sq, -1, -1);
    BB_BishopRays[sq] = BB_RayNE[sq] | BB_RayNW[sq] | BB_RaySE[sq] | BB_RaySW[sq];
    BB_RookRays[sq] = BB_RayN[sq] | BB_RayS[sq] | BB_RayE[sq] | BB_RayW[sq];
    BB_KingRays[sq] =
        Step(sq, 0, 1) | Step(sq, 0, -1) | BB_AdjacentSquares[sq] | BB_PawnRays[WHITE][sq] | BB_PawnRays[BLACK][sq];
}

// The direction of a difference.
constexpr int Sign(int x) { return (x > 0) - (x < 0); }

// See BB_Between: squares are in line if they share a file, a rank or a diagonal.
uint64_t SquaresBetween(Square a, Square b) {
    const int df = FileOf(b) - FileOf(a);
    const int dr = RankOf(b) - RankOf(a);
    if (a == b || (df != dr && df != -dr && df != 0 && dr != 0))
        return 0;
    const int step = Sign(dr) * 8 + Sign(df);
    uint64_t set = 0;
    for (Square sq = a + step; sq != b; sq += step)
        set |= Bit(sq);
    return set;
}

}  // namespace

void InitializeBitboards() {
    InitializeRankAndFileTables();
    for (Square sq = 0; sq < 64; ++sq)
        InitializeSquare(sq);
    for (int b = 0; b < 64; ++b)
        for (int a = 0; a < 64; ++a)
            BB_BetweenTable[b][a] = SquaresBetween(a, b);
}

}  // namespace vrel
