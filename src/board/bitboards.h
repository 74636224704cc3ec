#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

// Bitboards: sets of squares, bit n standing for square n (0 = a1, 7 = h1, 56 = a8, 63 = h8). "Left" is towards the
// a-file, "north" towards rank 8. All tables are written once by InitializeBitboards and only read afterwards.
//
// Tables by square have an entry for "no square" (64), which is empty: a side without a king is looked up like any
// other and simply meets nothing.
namespace vrel {

inline constexpr int SQUARES = 65;

using SquareTable = std::array<uint64_t, SQUARES>;
using SideSquareTable = std::array<SquareTable, 2>;

inline constexpr uint64_t FILE_A = 0x0101010101010101ULL;
inline constexpr uint64_t FILE_H = 0x8080808080808080ULL;
inline constexpr uint64_t RANK_1 = 0xffULL;

extern std::array<uint64_t, 8> BB_North;          // by rank: the ranks strictly above
extern std::array<uint64_t, 8> BB_South;          // by rank: the ranks strictly below
extern std::array<uint64_t, 8> BB_AdjacentFiles;  // by file
extern SquareTable BB_AdjacentSquares;            // left and right neighbour on the rank
extern SideSquareTable BB_PawnRays;               // squares that a pawn of the side attacks
extern SideSquareTable BB_PawnSpan;               // own and adjacent files, strictly in front
extern SquareTable BB_KnightRays;
extern SquareTable BB_KingRays;
extern SquareTable BB_RayN, BB_RayS, BB_RayE, BB_RayW;      // to the edge, without the square itself
extern SquareTable BB_RayNE, BB_RayNW, BB_RaySE, BB_RaySW;  // likewise
extern SquareTable BB_RookRays;
extern SquareTable BB_BishopRays;
extern std::array<std::array<uint64_t, 64>, SQUARES + 1> BB_BetweenTable;

inline constexpr std::array<uint64_t, 2> BB_r7 = {0x00ff000000000000ULL, 0x000000000000ff00ULL};
inline constexpr std::array<uint64_t, 2> BBHB = {0x00000000ffffffffULL, 0xffffffff00000000ULL};

// By byte mask of a rank, bit 0 the a-file: lowest set bit (8 if empty) and highest set bit (-1 if empty).
extern std::array<int8_t, 256> leftbit;
extern std::array<int8_t, 256> rightbit;

void InitializeBitboards();

constexpr uint64_t Bit(int sq) { return 1ULL << sq; }
constexpr int FileOf(int sq) { return sq & 7; }
constexpr int RankOf(int sq) { return sq >> 3; }

// Lowest and highest square of a set that isn't empty.
inline int GetLSB(uint64_t set) { return __builtin_ctzll(set); }
inline int GetMSB(uint64_t set) { return 63 ^ __builtin_clzll(set); }
inline int CountBits(uint64_t set) { return __builtin_popcountll(set); }

// Takes the lowest square out of a set that isn't empty.
inline int PopLSB(uint64_t* set) {
    const int sq = GetLSB(*set);
    *set &= *set - 1;
    return sq;
}

// Each square smeared to rank 8 or to rank 1, itself included.
constexpr uint64_t FillNorth(uint64_t set) {
    set |= set << 8;
    set |= set << 16;
    set |= set << 32;
    return set;
}
constexpr uint64_t FillSouth(uint64_t set) {
    set |= set >> 8;
    set |= set >> 16;
    set |= set >> 32;
    return set;
}

// The squares strictly between two squares of one line, else empty. `a` must be a square of the board.
inline uint64_t BB_Between(int a, int b) { return BB_BetweenTable[b][a]; }

// King distance. Defined for "no square" too, where it is merely some small number.
constexpr int distance(int a, int b) {
    const int files = FileOf(a) - FileOf(b);
    const int ranks = RankOf(a) - RankOf(b);
    return std::max(files < 0 ? -files : files, ranks < 0 ? -ranks : ranks);
}

}  // namespace vrel
