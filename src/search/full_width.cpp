#include <cassert>

#include "board/keys.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "eval/personality.h"
#include "interface/pblock.h"
#include "platform/threads.h"
#include "search/ordering.h"
#include "search/search.h"
#include "search/search_report.h"
#include "search/selectivity.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr Depth STORE_DEPTH = -1;  // check evasions deeper in the quiescence aren't stored

// The state of one call.
struct MoveLoop {
    Position* pos;
    PlyFrame* frame;
    SearchThread* thread;
    Side side;
    Ply ply;
    Depth depth;
    int alpha, beta;  // alpha rises with the moves; frame->alpha keeps what it was
    NodeType node_type;
    bool in_check;
    bool lmp_ok;          // moves may be dropped, and what is left of the list hasn't been sifted yet ...
    DropLimits drop;      // ... within these limits
    Move* local_pv;       // the line that the children write
    int best = NO_SCORE;  // may end below alpha: the loop is fail-soft
    Move best_move = NO_MOVE;
    int searched = 0;  // moves made; dropped ones don't count
};

// By how many plies the scout of a move is shortened. The first legal move of a node is never touched: a searched move
// always scores above the bound that is tested first.
int SelectReduction(const MoveLoop& loop, const MoveEntry& entry, int ext) {
    if (loop.best < loop.ply - 9999 || entry.sort_value > ORDER_SURE || ext == 1 || loop.in_check)
        return 0;
    assert(loop.searched > 0);
    return Reduction(*loop.pos, entry, loop.depth, loop.searched, loop.node_type);
}

// True for a quiet move that is legal without a question, gives no check and has nothing that could extend it.
bool IsPlain(const MoveEntry& entry, const CheckContext& checks, uint64_t plain_from) {
    return (plain_from >> FromSquare(entry.move) & 1) && entry.captured == 0 &&
           (checks.check_squares[TypeOf(entry.piece)] >> ToSquare(entry.move) & 1) == 0;
}

// True once moves are dropped. Hash move, winning captures and queen promotions, which come first, never are, nor is
// the first legal move.
bool DropsMoves(const MoveLoop& loop) {
    return loop.lmp_ok && loop.frame->stage >= STAGE_REST && loop.best >= loop.ply - 9999 &&
           MayPrune(loop.drop, loop.searched);
}

// Makes the moves void that are dropped. Once that is done at all it takes nearly all that are left, and none of it
// depends on when a move's turn comes: so they are asked one after the other, and only those that stay are drawn.
void SiftRest(MoveLoop* loop, const CheckContext& checks, uint64_t plain_from) {
    loop->lmp_ok = false;
    const MoveEntry* end = EndOfList(loop->frame);
    for (MoveEntry* entry = loop->frame->current; entry != end; ++entry) {
        entry->sort_value = *OrderOf(loop->thread, entry);
        if (entry->move != NO_MOVE &&
            (IsPlain(*entry, checks, plain_from) || !MoveIsActive(*loop->pos, *entry, checks)) &&
            PruneMove(*loop->pos, *entry, loop->drop))
            entry->move = NO_MOVE;
    }
    DropVoidMoves(loop->pos);
}

int SearchChild(MoveLoop* loop, Depth depth, int alpha, int beta, NodeType type) {
    return -Search(loop->pos, loop->side ^ 1, loop->ply + 1, depth, -beta, -alpha, type, loop->local_pv);
}

// The move has been made. The first is expected to be best and gets the whole window, the others a scout that asks
// whether they are better. Scouts that fail high are searched again at full depth, reduced or not: a scout's child of
// type NODE_CUT has its static cuts and null moves, and the repeat at a node off the principal variation confirms its
// answer without them. At the frontier a scout would save nothing.
int SearchMove(MoveLoop* loop, const MoveEntry& entry, Depth new_depth, int reduction) {
    if (loop->searched == 0 || new_depth <= 1)
        return SearchChild(loop, new_depth - 1, loop->alpha, loop->beta, node_opp[loop->node_type]);
    loop->frame->reduction = static_cast<uint8_t>(reduction);
    const int v = SearchChild(loop, new_depth - reduction - 1, loop->alpha, loop->alpha + 1, NODE_CUT);
    loop->frame->reduction = 0;
    if (v <= loop->alpha)
        return v;
    // Beating alpha is worth a reward of its own, whatever the repeat says.
    if (!entry.captured && !loop->in_check)
        HistoryInc(loop->thread, entry);
    return SearchChild(loop, new_depth - 1, loop->alpha, loop->beta, loop->node_type == NODE_PV ? NODE_PV : NODE_ANY);
}

// Every searched quiet move is rewarded or punished, not only the one that cuts. Evasions tell nothing about a move in
// quieter times.
void UpdateHistory(const MoveLoop& loop, const MoveEntry& entry, int v) {
    if (entry.captured || loop.in_check)
        return;
    if (v > loop.alpha)
        HistoryInc(loop.thread, entry);
    else
        HistoryDec(loop.thread, entry);
}

// Captures are ordered by victim and exchange and need no memory. A followup answers a pair of moves of this search, so
// that the first plies have none.
void RememberCut(const MoveLoop& loop, const MoveEntry& entry) {
    if (entry.captured)
        return;
    Position* pos = loop.pos;
    UpdateKillers(pos, loop.ply, entry.move, loop.in_check);
    if (pos->last_move)
        SetRefutation(pos, entry.move);
    if (!loop.in_check && pos->ply > 2)
        SetFollowup(pos, entry.move);
}

void Store(const MoveLoop& loop, int score, BoundType type) {
    if (loop.depth >= STORE_DEPTH && loop.best_move)
        StoreInTTable(loop.pos, loop.ply, loop.depth, score, type, loop.best_move);
}

// All moves are done. Mate and stalemate aren't stored, since no move goes with them. A score is exact only where the
// window was open: elsewhere the best of moves that all failed low is an upper bound.
int FinishNode(const MoveLoop& loop) {
    if (loop.searched == 0)
        return loop.in_check ? loop.ply - 10000 : PBlock.draw_score[loop.side].Get();
    const bool exact = loop.node_type == NODE_PV && loop.best > loop.frame->alpha;
    Store(loop, loop.best, exact ? BOUND_EXACT : BOUND_UPPER);
    return loop.best;
}

}  // namespace

int FW_Search(Position* pos, Side side, Ply ply, Depth depth, int alpha, int beta, bool in_check, NodeType node_type,
              Move* pv) {
    assert(pos->ply == ply && pos->stm == side && alpha < beta && (depth >= 0 || in_check));
    PlyFrame* frame = pos->frames + ply;
    PvLine local_pv;
    MoveLoop loop{.pos = pos,
                  .frame = frame,
                  .thread = ThreadOf(pos),
                  .side = side,
                  .ply = ply,
                  .depth = depth,
                  .alpha = alpha,
                  .beta = beta,
                  .node_type = node_type,
                  .in_check = in_check,
                  .lmp_ok = depth <= Personality.LMP_depth && node_type != NODE_PV && frame->iid == 0 && !in_check &&
                            pos->npv[WHITE] != 0 && pos->npv[BLACK] != 0,
                  .drop = DropLimitsOf(*frame, depth),
                  .local_pv = local_pv.data()};
    // The check that led here was extended where it was given; evasions earn nothing more.
    const bool no_flags = in_check || depth < 0;
    const LegalityContext legality = MakeLegalityContext(*pos, side, in_check);
    CheckContext checks;
    // A quiet move from one of these squares is neither a pawn's nor the king's, leaves no pin and opens no line.
    uint64_t plain_from = 0;
    if (!no_flags) {
        checks = MakeCheckContext(*pos, side);
        plain_from = ~(legality.tested | checks.discoverers | pos->bb[side][PAWN]);
    }
    pv[ply] = NO_MOVE;
    frame->stage = STAGE_HASH;

    while (MoveEntry* entry = GetNextMoveFW(pos, in_check, legality)) {
        if (DropsMoves(loop))
            SiftRest(&loop, checks, plain_from);
        if (entry->move == NO_MOVE)
            continue;
        const bool plain = IsPlain(*entry, checks, plain_from);
        if (!plain && !MoveIsLegal(*pos, side, entry->move, legality))
            continue;
        entry->flags = 0;
        const int ext = no_flags || plain ? 0 : Extension(*pos, entry, checks);
        const int reduction = SelectReduction(loop, *entry, ext);

        const Move move = entry->move;
        frame->gives_check = no_flags ? CHECK_UNKNOWN
                             : plain  ? CHECK_NO
                                      : CheckAfter(*pos, *entry, (entry->flags & FLAG_CHECK) != 0);
        MakeMove(pos, move);
        PrefetchTTable(GetFullHash(*pos), pos->stm);
        // Both extensions may meet: a check then gains two plies.
        const int v = SearchMove(&loop, *entry, depth + ext + frame->ext, reduction);
        UnmakeMove(pos);
        LetMainThreadRun();
        // What comes back from an abandoned tree is no score; nobody above looks at it.
        if (PBlock.stop)
            return 0;

        ++loop.searched;
        UpdateHistory(loop, *entry, v);
        if (v <= loop.best)
            continue;
        // A node that fails low names a move too: it is the one to try first next time.
        loop.best_move = move;
        pv[ply] = move;
        pv[ply + 1] = NO_MOVE;
        if (v >= beta) {
            RememberCut(loop, *entry);
            Store(loop, v, BOUND_LOWER);
            return v;
        }
        if (v > loop.alpha) {
            UpdatePV(pv, loop.local_pv, move, ply);
            loop.alpha = v;
        }
        loop.best = v;
    }
    return FinishNode(loop);
}

}  // namespace vrel
