#pragma once

#include <array>
#include <cassert>
#include <cstdint>

#include "eval/eval_context.h"
#include "eval/evaluate.h"
#include "platform/narrow.h"

// What all terms use: sets of the board as a side sees them, and the notes for the report.
namespace vrel {

inline constexpr uint64_t kCentralSquares = 0x00003c3c3c3c0000ULL;  // c3 to f6
inline constexpr uint64_t kInnerBoard = 0x007e7e7e7e7e7e00ULL;      // b2 to g7

constexpr int Blend(ScorePair score, int stage) { return Blend(OpeningOf(score), EndingOf(score), stage); }

// Notes the share of a piece in the report: it replaces what its square shows.
inline void ReportPiece(EvalReport* report, std::array<int16_t, 2>* sums, Side side, Square sq, int share) {
    assert(sq < NO_SQUARE);
    (*sums)[side] = Narrow((*sums)[side] + share);
    report->eval_by_square[sq] = Narrow(share);
}

// Notes a share of a pawn: the square shows the sum of its shares.
inline void ReportPawn(EvalReport* report, std::array<int16_t, 2>* sums, Side side, Square sq, int share) {
    const int shown = report->eval_by_square[sq];
    ReportPiece(report, sums, side, sq, share);
    report->eval_by_square[sq] = Narrow(shown + share);
}

}  // namespace vrel
