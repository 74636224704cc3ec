#pragma once

#include <array>
#include <cstdint>

#include "eval/eval_context.h"
#include "eval/evaluate.h"

// What all terms use: sets of the board as a side sees them, and the notes for the report.
namespace vrel {

inline constexpr uint64_t kCentralSquares = 0x00003c3c3c3c0000ULL;  // c3 to f6
inline constexpr uint64_t kInnerBoard = 0x007e7e7e7e7e7e00ULL;      // b2 to g7

// One rank forward or back, as the side sees it; squares leave the board at its end.
template <int Side>
constexpr uint64_t Forward(uint64_t set) {
    return Side == WHITE ? set << 8 : set >> 8;
}
template <int Side>
constexpr uint64_t Backward(uint64_t set) {
    return Side == WHITE ? set >> 8 : set << 8;
}

// The squares left and right of a set.
constexpr uint64_t Sideways(uint64_t set) { return ((set & ~FILE_A) >> 1) | ((set & ~FILE_H) << 1); }

// A set smeared over the rest of its files in the side's direction, itself included.
template <int Side>
constexpr uint64_t FillForward(uint64_t set) {
    return Side == WHITE ? FillNorth(set) : FillSouth(set);
}

// Mask of the ranks `first` to `last`, counted from 1 as the side sees them.
template <int Side>
constexpr uint64_t Ranks(int first, int last) {
    uint64_t set = 0;
    for (int rank = first; rank <= last; ++rank)
        set |= RANK_1 << (8 * (Side == WHITE ? rank - 1 : 8 - rank));
    return set;
}

constexpr int Blend(ScorePair score, int stage) { return Blend(OpeningOf(score), EndingOf(score), stage); }

// Notes the share of a piece in the report: it replaces what its square shows.
inline void ReportPiece(EvalReport* report, std::array<int16_t, 2>* sums, int side, int sq, int share) {
    int16_t& sum = (*sums)[side];
    sum = static_cast<int16_t>(sum + share);
    report->eval_by_square[sq] = static_cast<int16_t>(share);
}

// Notes a share of a pawn: the square shows the sum of its shares.
inline void ReportPawn(EvalReport* report, std::array<int16_t, 2>* sums, int side, int sq, int share) {
    const int shown = report->eval_by_square[sq];
    ReportPiece(report, sums, side, sq, share);
    report->eval_by_square[sq] = static_cast<int16_t>(shown + share);
}

}  // namespace vrel
