#pragma once

#include "board/attacks.h"
#include "board/exchange.h"
#include "eval/personality.h"
#include "eval/terms.h"

// The two tactical terms: hung pieces and pinned pieces. The attack sets are complete.
namespace vrel {

// Pieces of the side that stand to be lost. Their values go to the search.
template <int Side>
[[gnu::always_inline]] inline void EvalHungPieces(EvalContext* ctx) {
    constexpr int Enemy = Side ^ 1;
    const Position& pos = *ctx->pos;
    const auto& own = pos.bb[Side];
    const uint64_t attacked = own[0] & ctx->attacks[0][Enemy];

    // Attackers of less value than the piece win it even if it is covered.
    const uint64_t pawns = ctx->attacks[PAWN][Enemy];
    const uint64_t minors = pawns | ctx->attacks[KNIGHT][Enemy] | ctx->attacks[BISHOP][Enemy];
    const uint64_t rooks = minors | ctx->attacks[ROOK][Enemy];
    // Without cover anything attacked hangs.
    uint64_t hung = (attacked & ~ctx->attacks[0][Side]) | ((own[KNIGHT] | own[BISHOP]) & pawns) | (own[ROOK] & minors) |
                    (own[QUEEN] & rooks);
    // Pawns that attack each other are left to the search, covered or not.
    hung &= ~(own[PAWN] & pawns);

    // One hung piece counts once, each further one twice. Nothing here branches: whether something hangs changes from
    // node to node.
    const ScorePair factor = static_cast<ScorePair>(2 * CountBits(hung) - (hung != 0));
    ctx->score[Side] += factor * BothPair(Personality.hung);
    ctx->hung |= hung;
    ctx->hung_value[Side] += piece_value[PAWN] * CountBits(hung & own[PAWN]) +
                             piece_value[KNIGHT] * CountBits(hung & (own[KNIGHT] | own[BISHOP])) +
                             piece_value[ROOK] * CountBits(hung & own[ROOK]) +
                             piece_value[QUEEN] * CountBits(hung & own[QUEEN]) +
                             piece_value[KING] * CountBits(hung & own[KING]);
}
static_assert(piece_value[KNIGHT] == piece_value[BISHOP]);

// Pieces of the side that are pinned to its king, or to its queen if it has exactly one. Pawns don't count: they
// seldom have anywhere else to go. Whether a pinned piece may move along its line isn't asked.
template <int Side>
[[gnu::always_inline]] inline void EvalPinnedPieces(EvalContext* ctx) {
    const Position& pos = *ctx->pos;
    uint64_t pinned = PinnedToKing(pos, Side);
    if (CountOf(pos, Side, QUEEN) == 1)
        pinned |= PinnedToQueen(pos, Side);
    pinned &= pos.bb[Side][0] & ~pos.bb[Side][PAWN];
    ctx->pinned |= pinned;
    ctx->score[Side] += static_cast<ScorePair>(CountBits(pinned)) * BothPair(Personality.pinned);
}

}  // namespace vrel
