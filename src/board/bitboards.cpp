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
std::array<std::array<uint64_t, 64>, SQUARES + 1> BB_BetweenTable;
std::array<int8_t, 256> leftbit;
std::array<int8_t, 256> rightbit;

namespace {

// The square `files` and `ranks` away as a set, empty beyond the edge.
uint64_t Step(int sq, int files, int ranks) {
    const int file = FileOf(sq) + files;
    const int rank = RankOf(sq) + ranks;
    if (file < 0 || file > 7 || rank < 0 || rank > 7)
        return 0;
    return Bit(rank * 8 + file);
}

uint64_t Ray(int sq, int files, int ranks) {
    uint64_t ray = 0;
    for (int i = 1; i < 8; ++i)
        ray |= Step(sq, i * files, i * ranks);
    return ray;
}

void InitializeRankAndFileTables() {
    for (int i = 0; i < 8; ++i) {
        const auto n = static_cast<size_t>(i);
        BB_North[n] = i == 7 ? 0 : ~0ULL << (8 * (i + 1));
        BB_South[n] = ~(~0ULL << (8 * i));
        BB_AdjacentFiles[n] = (i > 0 ? FILE_A << (i - 1) : 0) | (i < 7 ? FILE_A << (i + 1) : 0);
    }
}

void InitializeSquare(int sq) {
    const auto n = static_cast<size_t>(sq);
    const auto file = static_cast<size_t>(FileOf(sq));
    const auto rank = static_cast<size_t>(RankOf(sq));
    const uint64_t three_files = BB_AdjacentFiles[file] | FILE_A << file;
    BB_AdjacentSquares[n] = Step(sq, -1, 0) | Step(sq, 1, 0);
    BB_PawnRays[WHITE][n] = Step(sq, -1, 1) | Step(sq, 1, 1);
    BB_PawnRays[BLACK][n] = Step(sq, -1, -1) | Step(sq, 1, -1);
    BB_PawnSpan[WHITE][n] = three_files & BB_North[rank];
    BB_PawnSpan[BLACK][n] = three_files & BB_South[rank];
    BB_KnightRays[n] = Step(sq, 1, 2) | Step(sq, 2, 1) | Step(sq, 2, -1) | Step(sq, 1, -2) | Step(sq, -1, -2) |
                       Step(sq, -2, -1) | Step(sq, -2, 1) | Step(sq, -1, 2);
    BB_RayN[n] = Ray(sq, 0, 1);
    BB_RayS[n] = Ray(sq, 0, -1);
    BB_RayE[n] = Ray(sq, 1, 0);
    BB_RayW[n] = Ray(sq, -1, 0);
    BB_RayNE[n] = Ray(sq, 1, 1);
    BB_RayNW[n] = Ray(sq, -1, 1);
    BB_RaySE[n] = Ray(sq, 1, -1);
    BB_RaySW[n] = Ray(sq, -1, -1);
    BB_BishopRays[n] = BB_RayNE[n] | BB_RayNW[n] | BB_RaySE[n] | BB_RaySW[n];
    BB_RookRays[n] = BB_RayN[n] | BB_RayS[n] | BB_RayE[n] | BB_RayW[n];
    BB_KingRays[n] =
        Step(sq, 0, 1) | Step(sq, 0, -1) | BB_AdjacentSquares[n] | BB_PawnRays[WHITE][n] | BB_PawnRays[BLACK][n];
}

constexpr int Sign(int x) { return (x > 0) - (x < 0); }

uint64_t SquaresBetween(int a, int b) {
    const int df = FileOf(b) - FileOf(a);
    const int dr = RankOf(b) - RankOf(a);
    if (a == b || (df != dr && df != -dr && df != 0 && dr != 0))
        return 0;
    const int step = Sign(dr) * 8 + Sign(df);
    uint64_t set = 0;
    for (int sq = a + step; sq != b; sq += step)
        set |= Bit(sq);
    return set;
}

}  // namespace

void InitializeBitboards() {
    InitializeRankAndFileTables();
    for (int sq = 0; sq < 64; ++sq)
        InitializeSquare(sq);
    for (int b = 0; b < 64; ++b)
        for (int a = 0; a < 64; ++a)
            BB_BetweenTable[static_cast<size_t>(b)][static_cast<size_t>(a)] = SquaresBetween(a, b);
}

}  // namespace vrel
