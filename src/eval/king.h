#pragma once

#include <algorithm>
#include <array>
#include <cassert>

#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "eval/terms.h"

// King safety in the opening, king activity in the ending. All piece terms have run.
namespace vrel {

// The king's file, moved off the rim: the middle one of the three files that shield a king, which stay on the board.
inline constexpr std::array<int, 8> fyle_x = {1, 1, 2, 3, 4, 5, 6, 6};

// 0 where a castled king belongs (a1, b1, g1, h1 as the side sees it), else 1.
constexpr int KingExposed(Square rel_sq) { return (0xc3ULL >> rel_sq & 1) ? 0 : 1; }

// What a mate threat adds to the hung value of a side: more than all its pieces together.
inline constexpr int MATE_THREAT = 10000;

// How many of the files `middle` - 1 to `middle` + 1 are missing in a file mask.
inline int MissingFiles(int mask, int middle) {
    return 3 - CountBits(static_cast<uint64_t>(mask & (7 << (middle - 1))));
}

// Squares of the zone that a type of enemy piece attacks and no cheaper own piece covers, each counted once a type.
template <int Side>
[[gnu::always_inline]] inline int ZoneAttacks(const EvalContext* ctx, const std::array<uint64_t, 3>& cover) {
    constexpr int Enemy = Side ^ 1;
    const auto& attacks = ctx->attacks;
    const uint64_t zone = ctx->king_zone[Side];
    return CountBits(zone & attacks[KNIGHT][Enemy] & ~cover[0]) + CountBits(zone & attacks[BISHOP][Enemy] & ~cover[0]) +
           CountBits(zone & attacks[ROOK][Enemy] & ~cover[1]) + CountBits(zone & attacks[QUEEN][Enemy] & ~cover[2]);
}

// The safety of a king against an enemy that has some force left. Checks count in the ending as well.
template <int Side>
[[gnu::always_inline]] inline ScorePair KingSafety(EvalContext* ctx, Square king) {
    constexpr int Enemy = Side ^ 1;
    const auto& attacks = ctx->attacks;
    const uint64_t near = BB_KingRays[king];
    const int middle = fyle_x[FileOf(king)];
    assert(king < NO_SQUARE && ctx->weight[Enemy] > 2);
    int op = 0;

    // Shield: pawns next to the king, and a pawn on each of the three files before it.
    const int neighbours = CountBits(near & ctx->pos->bb[Side][PAWN]);
    const int gaps = std::max(2 - neighbours, 0) + MissingFiles(ctx->pawn->shield_files[Side], middle);
    op += Personality.pawn_shield * (2 - gaps);
    const int exposed = gaps + KingExposed(king ^ flip_sq[Side]);

    // Storm: with the kings on different wings the enemy pawns of this wing run, or have left it open.
    const int apart = middle - FileOf(ctx->king_sq[Enemy]);
    if (apart > 2 || apart < -2)
        op -= Personality.pawn_storm * MissingFiles(ctx->pawn->home_files[Enemy], middle);

    // Attackers in the zone. Minor pieces are met by pawns, rooks by minor pieces too, queens by all but the king,
    // whose own cover counts for nothing.
    std::array<uint64_t, 3> cover;
    cover[0] = attacks[PAWN][Side];
    cover[1] = cover[0] | attacks[KNIGHT][Side] | attacks[BISHOP][Side];
    cover[2] = cover[1] | attacks[ROOK][Side] | attacks[QUEEN][Side];
    assert(ctx->king_attackers[Side] >= 0);
    int danger = ZoneAttacks<Side>(ctx, cover) + ctx->king_attackers[Side] + exposed;

    // Safe checks: squares where an enemy piece could land; next to the king it needs support.
    const uint64_t safe = ~(ctx->pos->bb[Enemy][0] | cover[2] | (near & ~ctx->double_attacks[Enemy]));
    const uint64_t queen = attacks[QUEEN][Enemy] & safe;
    int checks = CountBits(safe & ((ctx->knight_checks[Side] & attacks[KNIGHT][Enemy]) |
                                   (ctx->bishop_checks[Side] & attacks[BISHOP][Enemy]) |
                                   (ctx->rook_checks[Side] & attacks[ROOK][Enemy])));
    checks += (queen & ctx->bishop_checks[Side]) ? 2 : 0;
    checks += (queen & ctx->rook_checks[Side]) ? 2 : 0;
    danger += checks;

    // A protected queen right beside the king is a mate threat: an alarm for the search.
    if (queen & near) {
        danger += 2;
        ctx->hung_value[Side] += MATE_THREAT;
    }

    // Whoever is to move may still do something about it.
    if (danger > 1)
        danger = std::min(danger - (ctx->side == Side ? 1 : 0), 31);
    op -= KingDanger[danger];
    return MakePair(op - 8 * checks, -8 * checks);
}

// The king in the ending: close to the pawns, and free to move in the centre.
template <int Side>
[[gnu::always_inline]] inline int KingActivity(const EvalContext* ctx, Square king) {
    constexpr int Enemy = Side ^ 1;
    constexpr uint64_t centre = 0x0000001818000000ULL;  // d4, e4, d5, e5
    int en = 0;
    // Each file between the king and the nearest file with a pawn of either side costs.
    const int files = ctx->pawn->pawn_files[WHITE] | ctx->pawn->pawn_files[BLACK];
    if (files) {
        en -= 6 * std::max(leftbit[files] - FileOf(king), 0);
        en -= 6 * std::max(FileOf(king) - rightbit[files], 0);
    }
    // Where it can go: the nearer to the middle, the better.
    const uint64_t free = BB_KingRays[king] & ~ctx->attacks[0][Enemy] & ~ctx->pos->bb[Side][0];
    if (free & centre)
        en += 8;
    else if (free & kCentralSquares)
        en += 4;
    else if ((free & kInnerBoard) == 0)
        en -= 8;
    return en;
}

// A side without a king has no king term.
template <int Side, bool Root>
[[gnu::always_inline]] inline void EvalKing(EvalContext* ctx) {
    constexpr int Enemy = Side ^ 1;
    const Square king = ctx->king_sq[Side];
    if (king == NO_SQUARE) [[unlikely]]
        return;
    // A lone rook or two minor pieces don't threaten a king.
    const int force = ctx->weight[Enemy];
    ScorePair score = SquarePairs[Side][KING][king];
    if (force > 2)
        score += KingSafety<Side>(ctx, king);
    if (ctx->stage > 13)
        score += MakePair(0, KingActivity<Side>(ctx, king));

    // All of the opening value fades as the enemy's force leaves the board, faster without a queen.
    const bool queen = ctx->pos->bb[Enemy][QUEEN] != 0;
    const int share = std::min(queen ? force : force / 2, 7) + 1;
    const int op = OpeningOf(score) * share * 32 / 256;
    const int en = EndingOf(score);
    ctx->score[Side] += MakePair(op, en);
    if constexpr (Root)
        ReportPiece(ctx->report, &ctx->report->report_kings, Side, king, Blend(op, en, ctx->stage));
}

}  // namespace vrel
