#pragma once

#include <algorithm>
#include <cassert>

#include "board/attacks.h"
#include "eval/eval_tables.h"
#include "eval/terms.h"

// Passed pawns. They are scored at every evaluation, before the attack sets exist: the path of a pawn is tested square
// by square.
namespace vrel {

// The rank that a pawn on `rank` gets to on its own: up to the first square that is occupied, or attacked by the enemy
// alone. The pawn itself is lifted from the board, so that rooks behind it reach the squares ahead.
template <int Side>
[[gnu::always_inline]] inline int FreePath(const Position& pos, uint64_t occupied, Square sq, int rank) {
    assert(rank < 7);
    const uint64_t lifted = occupied & ~Bit(sq);
    int reach = rank;
    for (Square next = sq + pawn_dir[Side]; reach < 7; next += pawn_dir[Side], ++reach) {
        if (lifted & Bit(next))
            break;
        if (SqAtakdOver(pos, next, Side ^ 1, lifted) && !SqAtakdOver(pos, next, Side, lifted))
            break;
    }
    return reach;
}

// What one passed pawn is worth. The opening gets about two thirds of the ending's value.
template <int Side, bool Root>
[[gnu::always_inline]] inline void EvalPassedPawn(EvalContext* ctx, Square sq) {
    constexpr int Enemy = Side ^ 1;
    const Position& pos = *ctx->pos;
    const int rank = RelativeRank(Side, sq);
    // A pawn on the last rank, which only a set-up board can have, has nowhere to go.
    if (rank == 7) [[unlikely]]
        return;
    const uint64_t own_pawns = pos.bb[Side][PAWN];
    const uint64_t path = Side == WHITE ? BB_RayN[sq] : BB_RayS[sq];

    // The rear pawn of a doubled passer has to wait.
    if (path & own_pawns) {
        ctx->score[Side] += BothPair(PP_ADVANCE[rank] / 3);
        return;
    }

    // Whether the enemy king is outside of the pawn's square, and whether its own king guards its way.
    const Square front = sq + pawn_dir[Side];
    const Square promo = PromotionSquare(Side, FileOf(sq));
    const int to_move = ctx->side == Side ? 1 : 0;
    const Square own_king = ctx->king_sq[Side];
    const Square enemy_king = ctx->king_sq[Enemy];
    const int do_front = distance(own_king, front);
    const int de_front = distance(enemy_king, front);
    const int moves = 8 - rank - to_move;
    const bool outrun = moves < distance(enemy_king, promo);
    const bool escort =
        rank >= 4 && FileOf(sq) != 0 && FileOf(sq) != 7 && do_front <= 1 && distance(own_king, promo) <= 1;

    // As far as it gets alone it is worth a part of what it will be.
    const int reach = FreePath<Side>(pos, ctx->occupied, sq, rank);
    bool free = reach == 7;
    const int value = PP_ADVANCE[rank];
    const int next_value = PP_ADVANCE[rank + 1];
    int base = value;
    if (rank == SEVENTH_RANK && !free) {
        // On the seventh a capture is as good as a free path.
        if (BB_PawnRays[Side][sq] & pos.bb[Enemy][0]) {
            base += next_value / 4;
            free = true;
        }
    } else if (reach > rank) {
        base += next_value / 4;
    }

    int v = base;
    if (free) {
        v += base / 4 + 4;
        ctx->free_pawn_rank[Side] = std::max(ctx->free_pawn_rank[Side], rank);
        if constexpr (Root)
            ctx->report->report_free |= Bit(sq);
    }
    if (ctx->occupied & Bit(front))
        v -= base / 8;
    // A neighbour beside it supports its advance, one behind only the pawn as it stands.
    if (own_pawns & BB_AdjacentSquares[sq])
        v += base / 4;
    else if (own_pawns & BB_PawnRays[Enemy][sq])
        v += base / 8;
    // Kings: the enemy's far from the square ahead, its own near.
    v += (32 * de_front - 22 * do_front) * base / 256;
    if (outrun)
        v += base / 4;
    if (escort)
        v += base / 4;

    // Without pieces a pawn that nobody stops decides the game: the race is judged later.
    if (ctx->stage == LAST_STAGE && (escort || outrun)) {
        v += base / 2;
        // Steps made, as the race counts them: the move in hand, the double step, and one lost for a way to be cleared.
        const int t = rank + to_move + (rank == 1 ? 1 : 0) - (free ? 0 : 1);
        ctx->race_rank[Side] = std::max(ctx->race_rank[Side], t);
    }

    const int op = v * 165 / 256;
    ctx->score[Side] += MakePair(op, v);
    if constexpr (Root)
        ReportPawn(ctx->report, &ctx->report->report_passers, Side, sq, Blend(op, v, ctx->stage));
}

template <int Side, bool Root>
[[gnu::always_inline]] inline void EvalPassedPawns(EvalContext* ctx) {
    for (uint64_t left = ctx->pawn->passed & ctx->pos->bb[Side][PAWN]; left;)
        EvalPassedPawn<Side, Root>(ctx, PopLSB(&left));
}

}  // namespace vrel
