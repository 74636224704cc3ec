#include "eval/evaluate.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "board/keys.h"
#include "eval/endings.h"
#include "eval/eval_tables.h"
#include "eval/king.h"
#include "eval/kpk.h"
#include "eval/passed.h"
#include "eval/pawns.h"
#include "eval/pieces.h"
#include "eval/tactics.h"
#include "eval/terms.h"
#include "interface/pblock.h"
#include "platform/narrow.h"

namespace vrel {

namespace {

// Worth of the move, by stage.
constexpr std::array<int8_t, 25> tempo_bonus = {9, 9, 9, 8, 8, 8, 7, 7, 7, 6, 6, 6, 6,
                                                5, 5, 5, 5, 4, 4, 4, 4, 3, 3, 3, 3};

// The keys of the two caches: an entry that other weights have left is never found.
uint64_t EvalKey(const Position& pos) { return GetFullHash(pos) ^ weights_signature; }
uint64_t PawnKey(const Position& pos) { return pos.pawn_hash ^ weights_signature; }

// The report is worker 1's alone: at the root all others write theirs into the void.
EvalReport* ReportOf(const SearchThread* thread, EvalReport* spare) {
    return thread->pos.thread_index == 1 ? &PBlock.report : spare;
}

// The score for `side` of an ending with a rule of its own. A draw is worth what the root makes of draws.
int SpecialScore(const SearchThread* thread, PlyFrame* frame, Ending ending, Side side, bool root) {
    const Position& pos = thread->pos;
    // Only worker 1 shows what it found; below the root nobody does.
    EvalReport* report = root && pos.thread_index == 1 ? &PBlock.report : nullptr;
    switch (ending) {
        case Ending::KBNK:
            return EvalKBNK(pos, side, report);
        case Ending::MOPUP:
            return EvalMopup(pos, side, report);
        case Ending::KPK:
            return EvalKPK(pos, side);
        default:
            frame->eval_draw = 1;
            return PBlock.draw_score[side];
    }
}

// Such an ending, which doesn't enter the cache. Out of line and called last, so that Evaluate saves no registers.
[[gnu::noinline]] int EvalSpecialEnding(const SearchThread* thread, PlyFrame* frame, Ending ending, Side side,
                                        bool root) {
    const int score = SpecialScore(thread, frame, ending, side, root);
    frame->eval = Narrow(score);
    return score;
}

// Material of one side and what it says about the stage of the game. The tables hold the bishop pair and what spare
// heavy pieces lose; no other imbalance counts.
template <int Side>
[[gnu::always_inline]] inline void EvalMaterial(EvalContext* ctx) {
    const uint32_t counts = ctx->pos->msig[Side];
    const MaterialShare& light = MaterialShares[0][counts & 0xff];
    const MaterialShare& middle = MaterialShares[1][counts >> 8 & 0xff];
    const MaterialShare& heavy = MaterialShares[2][counts >> 16 & 0xff];
    ctx->material[Side] = light.value + middle.value + heavy.value;
    ctx->weight[Side] = light.force + middle.force + heavy.force;
}

// The pawn entry of the position, from the cache if it is there. At the root it is computed afresh for the report.
template <bool Root>
[[gnu::always_inline]] inline const PawnHashEntry* ProbePawns(SearchThread* thread, int stage, EvalReport* report) {
    const Position& pos = thread->pos;
    const uint64_t key = PawnKey(pos);
    PawnHashEntry* entry = &thread->pawn_cache[key % PAWN_CACHE_SIZE];
    thread->pawn_probes.Add(1);
    if (!Root && entry->key == key) [[likely]] {
        thread->pawn_hits.Add(1);
        return entry;
    }
    if constexpr (Root)
        UpdatePawnHashAtRoot(pos, entry, stage, report);
    else
        UpdatePawnHash(pos, entry);
    entry->key = key;
    return entry;
}

// In a pawn ending the side whose passed pawn is far enough ahead wins the race.
[[gnu::always_inline]] inline void EvalPawnRace(EvalContext* ctx) {
    const int lead = ctx->race_rank[WHITE] - ctx->race_rank[BLACK];
    if (lead >= 2 && ctx->race_rank[WHITE] >= 4)
        ctx->score[WHITE] += MakePair(0, 150);
    if (lead <= -2 && ctx->race_rank[BLACK] >= 4)
        ctx->score[BLACK] += MakePair(0, 150);
}

// Pawns that a piece of either colour blocks; worst on the d- and e-file where they shut in a bishop.
template <int Side>
[[gnu::always_inline]] inline void EvalBlockedPawns(EvalContext* ctx) {
    constexpr uint64_t home = Ranks<Side>(2, 2);
    const uint64_t blocked = ctx->pos->bb[Side][PAWN] & Backward<Side>(ctx->occupied);
    const int penalty = 2 * CountBits(blocked) + 12 * CountBits(blocked & home & (FILE_A << 3 | FILE_A << 4));
    ctx->score[Side] -= BothPair(penalty);
}

// Everything that stands on the board, in the one order that fills the context rightly.
template <bool Root>
[[gnu::always_inline]] inline void EvalTerms(EvalContext* ctx) {
    // What asks the board itself.
    EvalPassedPawns<WHITE, Root>(ctx);
    EvalPassedPawns<BLACK, Root>(ctx);
    EvalPawnRace(ctx);
    EvalBlockedPawns<WHITE>(ctx);
    EvalBlockedPawns<BLACK>(ctx);

    // What builds the attack sets, pawns and kings first: each piece sees what those before it attack.
    StartAttackSets<WHITE>(ctx);
    StartAttackSets<BLACK>(ctx);
    StartSquareSets<WHITE>(ctx);
    StartSquareSets<BLACK>(ctx);
    EvalPieces<WHITE, KNIGHT, Root>(ctx);
    EvalPieces<BLACK, KNIGHT, Root>(ctx);
    EvalPieces<WHITE, BISHOP, Root>(ctx);
    EvalPieces<BLACK, BISHOP, Root>(ctx);
    EvalPieces<WHITE, ROOK, Root>(ctx);
    EvalPieces<BLACK, ROOK, Root>(ctx);
    EvalPieces<WHITE, QUEEN, Root>(ctx);
    EvalPieces<BLACK, QUEEN, Root>(ctx);

    // What needs them complete.
    EvalKing<WHITE, Root>(ctx);
    EvalKing<BLACK, Root>(ctx);
    EvalHungPieces<WHITE>(ctx);
    EvalHungPieces<BLACK>(ctx);
    EvalPinnedPieces<WHITE>(ctx);
    EvalPinnedPieces<BLACK>(ctx);

    // Kings in opposition, the white one below: whoever is to move gives way. The mirror case doesn't count.
    if (ctx->stage == LAST_STAGE && ctx->king_sq[BLACK] == ctx->king_sq[WHITE] + 16 &&
        ctx->king_sq[BLACK] != NO_SQUARE) {
        if (ctx->side == WHITE)
            ctx->score[WHITE] -= MakePair(0, 5);
        else
            ctx->score[BLACK] -= MakePair(0, 5);
    }
}

// Blends opening and ending, for the side to move, who is worth a little more. The sums are 16-bit fields.
[[gnu::always_inline]] inline int BlendedScore(const EvalContext& ctx) {
    const int op = OpeningOf(ctx.material[WHITE]) + OpeningOf(ctx.score[WHITE]) - OpeningOf(ctx.material[BLACK]) -
                   OpeningOf(ctx.score[BLACK]);
    const int en = EndingOf(ctx.material[WHITE]) + EndingOf(ctx.score[WHITE]) - EndingOf(ctx.material[BLACK]) -
                   EndingOf(ctx.score[BLACK]);
    const int score = Blend(op, en, ctx.stage);
    return (ctx.side == WHITE ? score : -score) + tempo_bonus[ctx.stage];
}

// The figures of the report that are known only at the end.
void FinishReport(const EvalContext& ctx, double draw_adj) {
    EvalReport* report = ctx.report;
    report->report_stage = Narrow(ctx.stage);
    for (const Side side : {WHITE, BLACK}) {
        report->report_mtl[side] = Narrow(Blend(ctx.material[side], ctx.stage));
        report->report_pos[side] = Narrow(Blend(ctx.score[side], ctx.stage));
        report->report_mtl_pair[side] = ctx.material[side];
        report->report_pos_pair[side] = ctx.score[side];
        report->report_free_rank[side] = Narrow(ctx.free_pawn_rank[side]);
    }
    report->report_hung = ctx.hung;
    report->report_pinned = ctx.pinned;
    report->report_draw_adj = draw_adj;
}

// Hands the result to the search and keeps it; what stood in the entry is lost.
void StoreEval(const EvalContext& ctx, uint64_t key, int score, PlyFrame* frame, EvalHashEntry* entry) {
    const std::array<int16_t, 2> hung = {Narrow(ctx.hung_value[WHITE]), Narrow(ctx.hung_value[BLACK])};
    frame->eval = Narrow(score);
    frame->hung_value = hung;
    frame->free_pawn_rank = {Narrow(ctx.free_pawn_rank[WHITE]), Narrow(ctx.free_pawn_rank[BLACK])};
    *entry = {key, Narrow(score), hung, Narrow(ctx.free_pawn_rank[WHITE] | ctx.free_pawn_rank[BLACK] << 4),
              Narrow(ctx.side)};
}

// Hands a result of the cache to the search.
void RecallEval(const EvalHashEntry& entry, PlyFrame* frame) {
    frame->eval = entry.score;
    frame->hung_value = entry.hung_value;
    frame->free_pawn_rank = {Narrow(entry.free_pawn_ranks & 0xf), Narrow(entry.free_pawn_ranks >> 4)};
}

// A position of the ordinary kind that isn't in the cache.
template <bool Root>
int Compute(SearchThread* thread, Side side, PlyFrame* frame, uint64_t key, EvalHashEntry* entry) {
    const Position& pos = thread->pos;
    EvalContext ctx;
    [[maybe_unused]] EvalReport spare;
    ctx.pos = &pos;
    ctx.report = nullptr;
    if constexpr (Root)
        ctx.report = ReportOf(thread, &spare);
    ctx.side = side;
    ctx.king_sq = {KingSquare(pos, WHITE), KingSquare(pos, BLACK)};
    ctx.occupied = Occupied(pos);
    EvalMaterial<WHITE>(&ctx);
    EvalMaterial<BLACK>(&ctx);
    // More force than at the start is still an opening.
    ctx.stage = std::max(LAST_STAGE - ctx.weight[WHITE] - ctx.weight[BLACK], 0);
    // The pawns' own sums are what the other terms add to.
    ctx.pawn = ProbePawns<Root>(thread, ctx.stage, ctx.report);
    ctx.score = ctx.pawn->score;
    ctx.race_rank = {0, 0};
    ctx.free_pawn_rank = {0, 0};
    ctx.hung_value = {0, 0};
    ctx.hung = 0;
    ctx.pinned = 0;

    EvalTerms<Root>(&ctx);

    // Drawish endings are pulled towards zero.
    const int blended = BlendedScore(ctx);
    const double draw_adj = ScaleFactor(pos, side, blended, ctx.pawn->passed);
    const int score = draw_adj == 1.0 ? blended : static_cast<int>(blended * draw_adj);  // truncates towards zero
    StoreEval(ctx, key, score, frame, entry);
    if constexpr (Root)
        FinishReport(ctx, draw_adj);
    return score;
}

}  // namespace

int Evaluate(SearchThread* thread, Side side, Ply ply, bool in_check) {
    const Position& pos = thread->pos;
    assert(ply >= 0 && ply < FRAMES && side == pos.stm);
    PlyFrame* frame = &thread->frames[ply];
    const bool root = ply <= 1;
    frame->hung_value = {0, 0};
    frame->free_pawn_rank = {0, 0};
    frame->eval_draw = 0;
    if (in_check) {
        frame->eval = NO_SCORE;
        return NO_SCORE;
    }
    thread->evals.Add(1);
    // If it comes to the pawns, their entry has been on its way for a while.
    __builtin_prefetch(&thread->pawn_cache[PawnKey(pos) % PAWN_CACHE_SIZE]);

    // Some material says it all, and such endings have scores of their own.
    const Ending ending = ClassifyEnding(pos.msig[WHITE], pos.msig[BLACK]);
    if (ending != Ending::ORDINARY) [[unlikely]]
        return EvalSpecialEnding(thread, frame, ending, side, root);

    const uint64_t key = EvalKey(pos);
    EvalHashEntry* entry = &thread->eval_cache[key % EVAL_CACHE_SIZE];
    // At the root the report has to be complete, however often the position has been there.
    if (root)
        return Compute<true>(thread, side, frame, key, entry);
    // The key tells who is to move; the side is compared as well, for the price of a byte.
    if (entry->key == key && entry->side == side) {
        thread->eval_hits.Add(1);
        RecallEval(*entry, frame);
        return entry->score;
    }
    return Compute<false>(thread, side, frame, key, entry);
}

}  // namespace vrel
