#pragma once

#include "board/eval_records.h"
#include "board/position.h"

// Endings with a rule of their own, and the scale of drawish ones.
namespace vrel {

// What the material alone says about how to judge a position.
enum class Ending { ORDINARY, DRAW, KBNK, MOPUP, KPK };

// Decided on the two material signatures alone.
[[gnu::always_inline]] inline Ending ClassifyEnding(uint32_t white, uint32_t black) {
    if ((white | black) & MSIG_PAWNS) [[likely]]
        return white + black == 0x1 ? Ending::KPK : Ending::ORDINARY;
    switch (white + black) {
        case 0x0:   // bare kings
        case 0x10:  // a knight
        case 0x20:  // two knights, on one side or on both
            return Ending::DRAW;
        case 0x100:  // a bishop
            return Ending::DRAW;
        case 0x200:  // a bishop each
            return white == black ? Ending::DRAW : Ending::ORDINARY;
        case 0x110:
            if (white == 0 || black == 0)
                return Ending::KBNK;
            return (white == 0x100 || black == 0x100) ? Ending::DRAW : Ending::ORDINARY;
        case 0x1000:   // a rook
        case 0x10000:  // a queen
        case 0x11000:  // queen against rook, or both on one side
            return Ending::MOPUP;
        default:
            return Ending::ORDINARY;
    }
}

// King, bishop and knight against king, and a rook or a queen that mates. Centipawns for `side`. With a report, the
// score for the strong side is noted there.
int EvalKBNK(const Position& pos, int side, EvalReport* report);
int EvalMopup(const Position& pos, int side, EvalReport* report);

// The rules of ScaleFactor for a strong side with less than 14 units of pieces.
double ScaleEnding(const Position& pos, int side, int strong, uint64_t passed, double draw_adj);

// The factor that pulls a drawish score towards zero. `score` is for `side`, which is to move; `passed` holds the
// passed pawns of both sides.
[[gnu::always_inline]] inline double ScaleFactor(const Position& pos, int side, int score, uint64_t passed) {
    if (score >= -14 && score <= 14)
        return 1.0;
    const int strong = score > 14 ? side : side ^ 1;
    double draw_adj = 1.0;
    // Shuffling about without progress: from 1.09 at 21 down to 0.3 at 100.
    if (pos.fifty > 20)
        draw_adj = 1.0 - (pos.fifty - 30) * 0.01;
    if (pos.npv[strong] >= 14)
        return (pos.msig[strong] & MSIG_PAWNS) ? draw_adj : draw_adj * 0.9;
    return ScaleEnding(pos, side, strong, passed, draw_adj);
}

}  // namespace vrel
