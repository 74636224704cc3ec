#pragma once

#include "board/eval_records.h"
#include "board/position.h"

// Endings with a rule of their own, and the scale of drawish ones.
namespace vrel {

// What the material alone says about how to judge a position.
enum class Ending { ORDINARY, DRAW, KBNK, MOPUP, KPK };

// Decided on the two material signatures alone, before anything else of the board is looked at.
[[gnu::always_inline]] inline Ending ClassifyEnding(uint32_t white, uint32_t black) {
    if ((white | black) & MSIG_PAWNS) [[likely]]
        return white + black == Signature(PAWN) ? Ending::KPK : Ending::ORDINARY;
    // What both sides have together; how it is shared out matters only where it is asked.
    switch (white + black) {
        case Signature():
        case Signature(KNIGHT):
        case Signature(KNIGHT, KNIGHT):
        case Signature(BISHOP):
            return Ending::DRAW;
        case Signature(BISHOP, BISHOP):
            return white == black ? Ending::DRAW : Ending::ORDINARY;
        case Signature(BISHOP, KNIGHT):
            if (white == 0 || black == 0)
                return Ending::KBNK;
            // Fifteen knights against two add up to the same.
            return white == Signature(BISHOP) || black == Signature(BISHOP) ? Ending::DRAW : Ending::ORDINARY;
        case Signature(ROOK):
        case Signature(QUEEN):
        case Signature(QUEEN, ROOK):
            return Ending::MOPUP;
        default:
            return Ending::ORDINARY;
    }
}

// King, bishop and knight against king, and a rook or a queen or both that mate. Centipawns for `side`. With a report,
// the score for the strong side is noted there.
int EvalKBNK(const Position& pos, Side side, EvalReport* report);
int EvalMopup(const Position& pos, Side side, EvalReport* report);

// Units of non-pawn material from which on a side wins what it can win: two rooks and a bishop, say.
inline constexpr int AMPLE_MATERIAL = 14;

// The rules of ScaleFactor for a strong side with less than that. `draw_adj` is what the counter of moves has made of
// the factor so far.
double ScaleEnding(const Position& pos, Side side, Side strong, uint64_t passed, double draw_adj);

// Centipawns within which nobody is ahead.
inline constexpr int NEARLY_EQUAL = 14;

// The factor that pulls a drawish score towards zero. `score` is for `side`, which is to move; `passed` holds the
// passed pawns of both sides.
[[gnu::always_inline]] inline double ScaleFactor(const Position& pos, Side side, int score, uint64_t passed) {
    if (score >= -NEARLY_EQUAL && score <= NEARLY_EQUAL)
        return 1.0;
    const Side strong = score > 0 ? side : side ^ 1;
    double draw_adj = 1.0;
    // Shuffling about without progress: from 1.09 at 21 down to 0.3 at 100.
    if (pos.fifty > 20)
        draw_adj = 1.0 - (pos.fifty - 30) * 0.01;
    // With ample material only the lack of pawns counts.
    if (pos.npv[strong] >= AMPLE_MATERIAL)
        return (pos.msig[strong] & MSIG_PAWNS) ? draw_adj : draw_adj * 0.9;
    return ScaleEnding(pos, side, strong, passed, draw_adj);
}

}  // namespace vrel
