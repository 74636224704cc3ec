#include "eval/endings.h"

#include <array>
#include <cassert>

#include "eval/kpk.h"
#include "eval/terms.h"

namespace vrel {

namespace {

// By square; the last entry stands for a missing king.
using SquareValues = std::array<int16_t, SQUARES>;

// Winning king's table: how far from the rim it stands, for bishop and knight.
constexpr SquareValues wktbl = {0, 0, 0, 0, 0, 0, 0, 0,  //
                                0, 1, 1, 1, 1, 1, 1, 0,  //
                                0, 1, 2, 2, 2, 2, 1, 0,  //
                                0, 1, 2, 3, 3, 2, 1, 0,  //
                                0, 1, 2, 3, 3, 2, 1, 0,  //
                                0, 1, 2, 2, 2, 2, 1, 0,  //
                                0, 1, 1, 1, 1, 1, 1, 0,  //
                                0, 0, 0, 0, 0, 0, 0, 0,  //
                                0};

// Losing king's table for bishop and knight: the nearer to a corner that a bishop on dark squares mates in, the better
// for the other side.
constexpr SquareValues lktbl = {120, 100, 80, 60, 40, 20, 10,  10,   //
                                100, 80,  60, 40, 20, 0,  15,  10,   //
                                80,  60,  40, 20, 0,  0,  0,   20,   //
                                60,  40,  20, 0,  0,  0,  20,  40,   //
                                40,  20,  0,  0,  0,  20, 40,  60,   //
                                20,  0,   0,  0,  20, 40, 60,  80,   //
                                10,  15,  0,  20, 40, 60, 80,  100,  //
                                10,  10,  20, 40, 60, 80, 100, 120,  //
                                0};

// Kings' table where rook or queen mate: how close to the rim and the corners one stands.
constexpr SquareValues ktbl = {60, 50, 40, 30, 30, 40, 50, 60,  //
                               50, 40, 30, 20, 20, 30, 40, 50,  //
                               40, 30, 20, 10, 10, 20, 30, 40,  //
                               30, 20, 10, 0,  0,  10, 20, 30,  //
                               30, 20, 10, 0,  0,  10, 20, 30,  //
                               40, 30, 20, 10, 10, 20, 30, 40,  //
                               50, 40, 30, 20, 20, 30, 40, 50,  //
                               60, 50, 40, 30, 30, 40, 50, 60,  //
                               0};

// Units of non-pawn material of a knight or a bishop.
constexpr int MINOR_PIECE = npv_unit[BISHOP];

// First piece of a row, which any piece of the type stands for where there is but one.
Square FirstOf(const Position& pos, Side side, int type) { return pos.plist[side][type][0]; }

void ReportEnding(EvalReport* report, Side strong, Square king, int score) {
    if (report != nullptr && king != NO_SQUARE)
        ReportPiece(report, &report->report_kings, strong, king, score);
}

bool HasMinorOrRook(const Position& pos, Side side) {
    return (pos.msig[side] & SignatureMask(KNIGHT, BISHOP, ROOK)) != 0;
}

// All pawns of the strong side on one rook file, the weak king in front of them, and no bishop that commands the
// promotion corner.
bool IsWrongCorner(const Position& pos, Side strong) {
    const uint64_t pawns = pos.bb[strong][PAWN];
    if ((pawns & ~FILE_A) != 0 && (pawns & ~FILE_H) != 0)
        return false;
    const int file = (pawns & ~FILE_A) == 0 ? 0 : 7;
    const Square corner = PromotionSquare(strong, file);
    if (distance(KingSquare(pos, strong ^ 1), corner) > 1)
        return false;
    const Square bishop = FirstOf(pos, strong, BISHOP);
    return bishop == NO_SQUARE || sq_color(bishop) != sq_color(corner);
}

// A bishop each and on different colours, few other pieces, no queens.
bool HasOppositeBishops(const Position& pos) {
    for (const Side side : {WHITE, BLACK})
        if (pos.npv[side] > 8 || (pos.msig[side] & SignatureMask(BISHOP, QUEEN)) != Signature(BISHOP))
            return false;
    return sq_color(FirstOf(pos, WHITE, BISHOP)) != sq_color(FirstOf(pos, BLACK, BISHOP));
}

// The only pawn of a side that has no more pieces than the other.
double ScaleLastPawn(const Position& pos, Side strong, double draw_adj) {
    const Square pawn = FirstOf(pos, strong, PAWN);
    const Square promo = PromotionSquare(strong, FileOf(pawn));
    const int guard = distance(KingSquare(pos, strong ^ 1), promo);
    // What the weak side has may give itself up for the pawn.
    draw_adj *= HasMinorOrRook(pos, strong ^ 1) ? 0.6 : 0.8;
    // The weak king is nearer to where it promotes, and may already stand there.
    if (distance(KingSquare(pos, strong), promo) > guard) {
        draw_adj *= 0.75;
        if (RelativeRank(strong, pawn) <= 4 && guard <= 1)
            draw_adj *= 0.75;
    }
    return draw_adj;
}

// The last two pawns of such a side against pawns.
double ScaleLastPawns(const Position& pos, Side strong, uint64_t passed, double draw_adj) {
    if (HasMinorOrRook(pos, strong ^ 1))
        draw_adj *= 0.85;
    uint64_t pawns = pos.bb[strong][PAWN];
    if ((passed & pawns) == 0)
        draw_adj *= 0.9;
    // A king before a pawn, or beside its way, holds it up.
    const Square king = KingSquare(pos, strong ^ 1);
    while (pawns) {
        const Square pawn = PopLSB(&pawns);
        const int files = FileOf(pawn) - FileOf(king);
        if (RelativeRank(strong, pawn) >= RelativeRank(strong, king))
            continue;
        if (files == 0)
            draw_adj *= 0.8;
        else if (files == 1 || files == -1)
            draw_adj *= 0.9;
    }
    return draw_adj;
}

}  // namespace

int EvalKBNK(const Position& pos, Side side, EvalReport* report) {
    const Side strong = pos.msig[WHITE] ? WHITE : BLACK;
    assert(pos.msig[strong] == Signature(BISHOP, KNIGHT) && pos.msig[strong ^ 1] == 0);
    const Square king = KingSquare(pos, strong);
    const Square weak_king = KingSquare(pos, strong ^ 1);
    // The table is for a bishop on dark squares; for the other one the board is looked at in a mirror.
    const bool mirror = sq_color(FirstOf(pos, strong, BISHOP)) == 0 && weak_king != NO_SQUARE;
    const Square corner = mirror ? weak_king ^ 7 : weak_king;
    const int score = 700 + 4 * wktbl[king] + lktbl[corner] - 12 * distance(king, weak_king);
    ReportEnding(report, strong, king, score);
    return side == strong ? score : -score;
}

int EvalMopup(const Position& pos, Side side, EvalReport* report) {
    const Side strong = pos.npv[WHITE] > pos.npv[BLACK] ? WHITE : BLACK;
    const Square king = KingSquare(pos, strong);
    const Square weak_king = KingSquare(pos, strong ^ 1);
    const int ahead = pos.npv[strong] - pos.npv[strong ^ 1];
    // The weak king belongs at the rim, the strong one beside it.
    const int score = 100 * ahead + 200 + ktbl[weak_king] - ktbl[king] / 4 - 15 * distance(king, weak_king);
    ReportEnding(report, strong, king, score);
    return side == strong ? score : -score;
}

// The rules stand in a fixed order, and most of them end the matter.
double ScaleEnding(const Position& pos, Side side, Side strong, uint64_t passed, double draw_adj) {
    const Side weak = strong ^ 1;
    const uint32_t ss = pos.msig[strong];
    const uint32_t ws = pos.msig[weak];
    const int sp = pos.npv[strong];
    const int wp = pos.npv[weak];
    const int spn = CountOf(pos, strong, PAWN);
    const int wpn = CountOf(pos, weak, PAWN);
    assert(sp < AMPLE_MATERIAL);

    // Two knights can't force mate.
    if (ss == Signature(KNIGHT, KNIGHT))
        return 0.05;
    // A lone rook or queen may have to give itself up for a pawn.
    if ((ss == Signature(ROOK) || ss == Signature(QUEEN)) && wpn > 0)
        draw_adj *= 0.9;
    // More than a piece ahead wins.
    if (sp - wp > MINOR_PIECE)
        return draw_adj;
    // Without pawns a small surplus doesn't win, but for two bishops, which mostly beat a knight.
    if (spn == 0) {
        if (ss == Signature(BISHOP, BISHOP) && ws == Signature(KNIGHT))
            return draw_adj * 0.9;
        return draw_adj * (sp <= MINOR_PIECE ? 0.05 : sp <= 7 ? 0.1 : 0.2);
    }
    // A pawn each: would the strong one win alone?
    if (ss == Signature(PAWN) && ws == Signature(PAWN))
        return EvalKPKFor(pos, strong, side) == 0 ? draw_adj * 0.25 : draw_adj;
    // Rook pawns with a bishop at most, and the weak king gets into the corner.
    if (sp <= MINOR_PIECE && wp == 0 && (ss & SignatureMask(KNIGHT, ROOK, QUEEN)) == 0 && IsWrongCorner(pos, strong))
        return draw_adj * 0.06;
    // Opposite bishops, worst if they are all the pieces; the other rules may still come on top.
    if (spn - wpn <= 2 && HasOppositeBishops(pos)) {
        const bool two_up = spn - wpn == 2;
        draw_adj *= sp <= MINOR_PIECE ? (two_up ? 0.6 : 0.4) : (two_up ? 0.9 : 0.75);
    }
    // Ahead in pawns alone, what counts is how many are left.
    if (sp > wp || wp == 0)
        return draw_adj;
    if (spn == 1)
        return ScaleLastPawn(pos, strong, draw_adj);
    if (spn == 2 && wpn > 0)
        return ScaleLastPawns(pos, strong, passed, draw_adj);
    return draw_adj;
}

}  // namespace vrel
