#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>

// Bitboards: sets of squares, bit n standing for square n (0 = a1, 7 = h1, 56 = a8, 63 = h8). "Left" is towards the
// a-file, "north" towards rank 8. The tables are written once by InitializeBitboards, but for the two of file masks,
// and only read afterwards.
//
// Tables by square have an entry for "no square" (64), which is empty: a side without a king is looked up like any
// other and simply meets nothing.
namespace vrel {

// What an int stands for in a signature. Codes are plain numbers, since they index tables and are flipped by `^ 1`.
using Square = int;  // 0 to 63, or NO_SQUARE where "no square" has a meaning
using Side = int;    // WHITE or BLACK

enum : Side { WHITE = 0, BLACK = 1 };

inline constexpr Square NO_SQUARE = 64;
inline constexpr int SQUARES = NO_SQUARE + 1;  // entries of a table by square

using SquareTable = std::array<uint64_t, SQUARES>;
using SideSquareTable = std::array<SquareTable, 2>;

inline constexpr uint64_t FILE_A = 0x0101010101010101ULL;
inline constexpr uint64_t FILE_H = 0x8080808080808080ULL;
inline constexpr uint64_t RANK_1 = 0xffULL;
inline constexpr uint64_t ALL_SQUARES = ~0ULL;

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
extern std::array<std::array<uint64_t, 64>, SQUARES> BB_BetweenTable;  // see BB_Between

// By side: its seventh rank, and its own half of the board.
inline constexpr std::array<uint64_t, 2> BB_r7 = {0x00ff000000000000ULL, 0x000000000000ff00ULL};
inline constexpr std::array<uint64_t, 2> BBHB = {0x00000000ffffffffULL, 0xffffffff00000000ULL};

// By byte mask of a rank, bit 0 the a-file: lowest set bit (8 if empty) and highest set bit (-1 if empty). They go with
// the tables of the evaluation, which alone reads them: InitEval writes them, with the same values each time.
extern std::array<int8_t, 256> leftbit;
extern std::array<int8_t, 256> rightbit;

// Fills the tables above but leftbit and rightbit. Called once, before anything else of the engine.
void InitializeBitboards();

constexpr uint64_t Bit(Square sq) { return 1ULL << sq; }
constexpr int FileOf(Square sq) { return sq & 7; }
constexpr int RankOf(Square sq) { return sq >> 3; }

// Colour of a square: 1 dark, 0 light. a1 is dark.
constexpr int sq_color(Square sq) { return ((FileOf(sq) + RankOf(sq)) & 1) ^ 1; }

// Lowest and highest square of a set that isn't empty, one instruction each.
inline Square GetLSB(uint64_t set) {
    assert(set != 0);
    return __builtin_ctzll(set);
}
inline Square GetMSB(uint64_t set) {
    assert(set != 0);
    return 63 ^ __builtin_clzll(set);
}
inline int CountBits(uint64_t set) { return __builtin_popcountll(set); }

// At most one square, or none.
constexpr bool AtMostOne(uint64_t set) { return (set & (set - 1)) == 0; }

// Takes the lowest square out of a set that isn't empty.
inline Square PopLSB(uint64_t* set) {
    const Square sq = GetLSB(*set);
    *set &= *set - 1;
    return sq;
}

// The square `files` and `ranks` away as a set, empty beyond the edge; and all squares in steps of that kind.
constexpr uint64_t Step(Square sq, int files, int ranks) {
    const int file = FileOf(sq) + files;
    const int rank = RankOf(sq) + ranks;
    return file < 0 || file > 7 || rank < 0 || rank > 7 ? 0 : Bit(rank * 8 + file);
}
constexpr uint64_t Ray(Square sq, int files, int ranks) {
    uint64_t ray = 0;
    for (int i = 1; i < 8; ++i)
        ray |= Step(sq, i * files, i * ranks);
    return ray;
}

// One rank forward or back, as the side sees it; squares leave the board at its end.
template <int Side>
constexpr uint64_t Forward(uint64_t set) {
    return Side == WHITE ? set << 8 : set >> 8;
}
template <int Side>
constexpr uint64_t Backward(uint64_t set) {
    return Side == WHITE ? set >> 8 : set << 8;
}

// The ranks `first` to `last`, counted from 1 as the side sees them.
template <int Side>
constexpr uint64_t Ranks(int first, int last) {
    uint64_t set = 0;
    for (int rank = first; rank <= last; ++rank)
        set |= RANK_1 << (8 * (Side == WHITE ? rank - 1 : 8 - rank));
    return set;
}

// The squares left and right of a set.
constexpr uint64_t Sideways(uint64_t set) { return ((set & ~FILE_A) >> 1) | ((set & ~FILE_H) << 1); }

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

// The squares strictly between two squares of one line, else empty. `b` may be "no square", which is on no line.
inline uint64_t BB_Between(Square a, Square b) {
    assert(a < NO_SQUARE);
    return BB_BetweenTable[b][a];
}

// King distance. Defined for "no square" too, where it is merely some small number.
constexpr int distance(Square a, Square b) {
    const int files = FileOf(a) - FileOf(b);
    const int ranks = RankOf(a) - RankOf(b);
    return std::max(files < 0 ? -files : files, ranks < 0 ? -ranks : ranks);
}

}  // namespace vrel
