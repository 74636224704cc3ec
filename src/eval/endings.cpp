#include "eval/endings.h"

#include <array>

#include "eval/kpk.h"
#include "eval/terms.h"

namespace vrel {

namespace {

// By square; the last entry stands for a missing king.
using SquareValues = std::array<int16_t, SQUARES>;

// How far the strong king is from the rim.
constexpr SquareValues wktbl = {0, 0, 0, 0, 0, 0, 0, 0,  //
                                0, 1, 1, 1, 1, 1, 1, 0,  //
                                0, 1, 2, 2, 2, 2, 1, 0,  //
                                0, 1, 2, 3, 3, 2, 1, 0,  //
                                0, 1, 2, 3, 3, 2, 1, 0,  //
                                0, 1, 2, 2, 2, 2, 1, 0,  //
                                0, 1, 1, 1, 1, 1, 1, 0,  //
                                0, 0, 0, 0, 0, 0, 0, 0,  //
                                0};

// The way of the weak king into the corners that a bishop on dark squares mates in.
constexpr SquareValues lktbl = {120, 100, 80, 60, 40, 20, 10,  10,   //
                                100, 80,  60, 40, 20, 0,  15,  10,   //
                                80,  60,  40, 20, 0,  0,  0,   20,   //
                                60,  40,  20, 0,  0,  0,  20,  40,   //
                                40,  20,  0,  0,  0,  20, 40,  60,   //
                                20,  0,   0,  0,  20, 40, 60,  80,   //
                                10,  15,  0,  20, 40, 60, 80,  100,  //
                                10,  10,  20, 40, 60, 80, 100, 120,  //
                                0};

// How close to the rim and the corners a king is.
constexpr SquareValues ktbl = {60, 50, 40, 30, 30, 40, 50, 60,  //
                               50, 40, 30, 20, 20, 30, 40, 50,  //
                               40, 30, 20, 10, 10, 20, 30, 40,  //
                               30, 20, 10, 0,  0,  10, 20, 30,  //
                               30, 20, 10, 0,  0,  10, 20, 30,  //
                               40, 30, 20, 10, 10, 20, 30, 40,  //
                               50, 40, 30, 20, 20, 30, 40, 50,  //
                               60, 50, 40, 30, 30, 40, 50, 60,  //
                               0};

constexpr int At(const SquareValues& table, int sq) { return table[sq]; }

// a1 is dark.
constexpr bool IsDark(int sq) { return ((FileOf(sq) + RankOf(sq)) & 1) == 0; }

int FirstOf(const Position& pos, int side, int type) { return pos.plist[side][type][0]; }

void ReportEnding(EvalReport* report, int strong, int king, int score) {
    if (report != nullptr && king != NO_SQUARE)
        ReportPiece(report, &report->report_kings, strong, king, score);
}

bool HasMinorOrRook(const Position& pos, int side) { return (pos.msig[side] & 0xfff0) != 0; }

// All pawns of the strong side on one rook file, the weak king in front of them, and no bishop that commands the
// promotion corner.
bool IsWrongCorner(const Position& pos, int strong) {
    const uint64_t pawns = pos.bb[strong][PAWN];
    if ((pawns & ~FILE_A) != 0 && (pawns & ~FILE_H) != 0)
        return false;
    const int file = (pawns & ~FILE_A) == 0 ? 0 : 7;
    const int corner = (56 + file) ^ flip_sq[strong];
    if (distance(KingSquare(pos, strong ^ 1), corner) > 1)
        return false;
    const int bishop = FirstOf(pos, strong, BISHOP);
    return bishop == NO_SQUARE || IsDark(bishop) != IsDark(corner);
}

// A bishop each and on different colours, few other pieces, no queens.
bool HasOppositeBishops(const Position& pos) {
    for (int side = 0; side < 2; ++side)
        if (pos.npv[side] > 8 || (pos.msig[side] & 0xf0f00) != 0x100)
            return false;
    return IsDark(FirstOf(pos, WHITE, BISHOP)) != IsDark(FirstOf(pos, BLACK, BISHOP));
}

// The only pawn of a side that has no more pieces than the other.
double ScaleLastPawn(const Position& pos, int strong, double draw_adj) {
    const int pawn = FirstOf(pos, strong, PAWN);
    const int promo = (56 + FileOf(pawn)) ^ flip_sq[strong];
    const int guard = distance(KingSquare(pos, strong ^ 1), promo);
    draw_adj *= HasMinorOrRook(pos, strong ^ 1) ? 0.6 : 0.8;
    if (distance(KingSquare(pos, strong), promo) > guard) {
        draw_adj *= 0.75;
        if (RelativeRank(strong, pawn) <= 4 && guard <= 1)
            draw_adj *= 0.75;
    }
    return draw_adj;
}

// The last two pawns of such a side against pawns.
double ScaleLastPawns(const Position& pos, int strong, uint64_t passed, double draw_adj) {
    if (HasMinorOrRook(pos, strong ^ 1))
        draw_adj *= 0.85;
    uint64_t pawns = pos.bb[strong][PAWN];
    if ((passed & pawns) == 0)
        draw_adj *= 0.9;
    const int king = KingSquare(pos, strong ^ 1);
    while (pawns) {
        const int pawn = PopLSB(&pawns);
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

int EvalKBNK(const Position& pos, int side, EvalReport* report) {
    const int strong = pos.msig[WHITE] ? WHITE : BLACK;
    const int king = KingSquare(pos, strong);
    const int weak_king = KingSquare(pos, strong ^ 1);
    // The table is for a bishop on dark squares.
    const bool mirror = !IsDark(FirstOf(pos, strong, BISHOP)) && weak_king != NO_SQUARE;
    const int corner = mirror ? weak_king ^ 7 : weak_king;
    const int score = 700 + 4 * At(wktbl, king) + At(lktbl, corner) - 12 * distance(king, weak_king);
    ReportEnding(report, strong, king, score);
    return side == strong ? score : -score;
}

int EvalMopup(const Position& pos, int side, EvalReport* report) {
    const int strong = pos.npv[WHITE] > pos.npv[BLACK] ? WHITE : BLACK;
    const int king = KingSquare(pos, strong);
    const int weak_king = KingSquare(pos, strong ^ 1);
    const int ahead = pos.npv[strong] - pos.npv[strong ^ 1];
    const int score = 100 * ahead + 200 + At(ktbl, weak_king) - At(ktbl, king) / 4 - 15 * distance(king, weak_king);
    ReportEnding(report, strong, king, score);
    return side == strong ? score : -score;
}

// The rules stand in a fixed order, and most of them end the matter.
double ScaleEnding(const Position& pos, int side, int strong, uint64_t passed, double draw_adj) {
    const int weak = strong ^ 1;
    const uint32_t ss = pos.msig[strong];
    const uint32_t ws = pos.msig[weak];
    const int sp = pos.npv[strong];
    const int wp = pos.npv[weak];
    const int spn = CountOf(pos, strong, PAWN);
    const int wpn = CountOf(pos, weak, PAWN);

    // Two knights can't force mate.
    if (ss == 0x20)
        return 0.05;
    // A lone rook or queen may have to give itself up for a pawn.
    if ((ss == 0x1000 || ss == 0x10000) && wpn > 0)
        draw_adj *= 0.9;
    if (sp - wp > 3)
        return draw_adj;
    // Without pawns a small surplus doesn't win.
    if (spn == 0) {
        if (ss == 0x200 && ws == 0x10)
            return draw_adj * 0.9;
        return draw_adj * (sp <= 3 ? 0.05 : sp <= 7 ? 0.1 : 0.2);
    }
    // A pawn each: would the strong one win alone?
    if (ss == 1 && ws == 1)
        return EvalKPKFor(pos, strong, side) == 0 ? draw_adj * 0.25 : draw_adj;
    if (sp <= 3 && wp == 0 && (ss & 0xff0f0) == 0 && IsWrongCorner(pos, strong))
        return draw_adj * 0.06;
    if (spn - wpn <= 2 && HasOppositeBishops(pos)) {
        const bool two_up = spn - wpn == 2;
        draw_adj *= sp <= 3 ? (two_up ? 0.6 : 0.4) : (two_up ? 0.9 : 0.75);
    }
    if (sp > wp || wp == 0)
        return draw_adj;
    if (spn == 1)
        return ScaleLastPawn(pos, strong, draw_adj);
    if (spn == 2 && wpn > 0)
        return ScaleLastPawns(pos, strong, passed, draw_adj);
    return draw_adj;
}

}  // namespace vrel
