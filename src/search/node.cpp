#include <algorithm>
#include <cassert>

#include "board/attacks.h"
#include "board/keys.h"
#include "board/make_move.h"
#include "eval/evaluate.h"
#include "eval/personality.h"
#include "interface/pblock.h"
#include "platform/narrow.h"
#include "search/mate_test.h"
#include "search/search.h"
#include "search/selectivity.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr Depth DRAWISH_DEPTH = 3;     // a draw by material isn't searched deeper than this
constexpr int NULL_MOVE_MARGIN = 11;   // both prunings of a node expected to fail high ask for this much above beta
constexpr int MAX_FREE_PAWN_RANK = 4;  // a free passed pawn beyond it forbids static judgement: it may promote at once
constexpr int EVAL_DROP = 124;         // centipawns since the side's last turn that make its evaluation a falling one
constexpr int ACCUMULATED = 7;         // points of the path counter before it gives an extension ...
constexpr int AFTER_EXTENSION = -8;    // ... and what it restarts with

// The node's state between the steps of Search. `depth` may become less than the frame's, which keeps what was given.
struct Node {
    Position* pos;
    PlyFrame* frame;
    Side side;
    Ply ply;
    Depth depth;
    int a, b;  // the window after the mate-distance clip
    NodeType node_type;
    int eval;
    bool in_check;
    TTData tt;
    bool tt_low, tt_high;  // the table says: not above a, not below b
};

int FailHard(int value, int a, int b) { return value <= a ? a : std::min(value, b); }

void ResetFrame(const Node& node, Move* pv) {
    PlyFrame* frame = node.frame;
    assert(node.ply >= 2 && node.ply + 2 < FRAMES);
    frame->depth = Narrow(node.depth);
    frame->alpha = Narrow(node.a);
    frame->node_type = static_cast<uint8_t>(node.node_type);
    frame->ext = 0;
    frame->reduction = 0;
    frame->iid = 0;
    frame->hash_move = NO_MOVE;
    // Killers survive among siblings and cousins and die when the node two plies up is entered again.
    PlyFrame* later = frame + 2;
    later->null_killer = later->killer1 = later->killer2 = later->check_killer = NO_MOVE;
    pv[node.ply] = NO_MOVE;
    pv[node.ply + 1] = NO_MOVE;
}

// The parent has mostly found out whether its move gives check.
bool IsInCheck(const Position& pos, Side side, GivesCheck gives_check) {
    if (gives_check != CHECK_UNKNOWN)
        return gives_check == CHECK_YES;
    return SqAtakd(pos, KingSquare(pos, side), side ^ 1);
}

// A position that occurred once before counts as a draw only some way into the tree: near the root the game may really
// come there, where one repetition is no draw yet. Whoever is mated by the move that completes the fifty has lost.
bool IsDraw(Position* pos, Ply ply, bool in_check) {
    if (ply > 2 && pos->fifty > 100)
        return IsMate(pos, in_check) == MAY_MOVE;
    const int repetitions = CountRepetitions(*pos);
    return repetitions >= 2 || (repetitions == 1 && ply > 4);
}

// The lists of a line lie one behind the other; the reserve takes the list of this node, whatever stands on the board.
bool MoveStackIsFull(const Position& pos, const PlyFrame& frame) {
    const auto& stack = ThreadOf(pos)->move_stack;
    return frame.first > stack.data() + (MOVE_STACK - MOVE_STACK_RESERVE);
}

void ProbeTable(Node* node) {
    node->tt = TT_NOT_THERE;
    if (PBlock.use_hash)
        ProbeTTable(node->pos, &node->tt);
    if (node->tt.depth < TT_FOUND)
        return;
    node->frame->hash_move = node->tt.move;
    const int score = ExpandScore(node->tt.score, node->ply);
    node->tt.score = Narrow(score);
    node->tt_low = score <= node->a && node->tt.type != BOUND_LOWER;
    node->tt_high = score >= node->b && node->tt.type != BOUND_UPPER;
}

// PV nodes are never cut by the table, which has no line to show, and take only the move from it. Mate scores count as
// deep enough at any depth.
bool CutByTable(const Node& node, int* result) {
    if (node.tt.depth < TT_FOUND || node.node_type == NODE_PV)
        return false;
    const bool mate = node.tt.score > MATE_BOUND || node.tt.score < -MATE_BOUND - 1;
    if (node.tt.depth < node.depth && !mate)
        return false;
    if (node.tt_low)
        *result = node.a;
    else if (node.tt_high)
        *result = node.b;
    else if (node.tt.type == BOUND_EXACT)
        *result = node.tt.score;
    else
        return false;
    return true;
}

// Neither bound of the window lies at the mate limit of this ply.
bool WindowIsInner(const Node& node) { return node.a >= node.ply - 9999 && node.b < 9999 - node.ply; }

// Razoring. Far below alpha near the leaves: let the quiet search confirm it.
bool Razor(const Node& node, Move* pv) {
    if (node.node_type != NODE_ALL || node.in_check || node.depth > Personality.RP_depth)
        return false;
    const int margin = Personality.RP_margin[MarginDepth(node.depth)];
    const Side side = node.side;
    if (node.a - margin <= node.eval || node.tt_high || node.frame->free_pawn_rank[side] > MAX_FREE_PAWN_RANK ||
        node.pos->npv[side ^ 1] <= 0 || !WindowIsInner(node))
        return false;
    const int floor = node.depth == 1 ? node.a : node.a - margin / 2;
    assert(node.depth > 0);
    return Q_Search(node.pos, node.side, node.ply, 0, floor, node.b, NODE_ALL, pv) <= floor;
}

// What static null pruning and the null move have in common: the node stands well above beta and nothing speaks
// against it.
bool MayPassTurn(const Node& node) {
    const Side side = node.side;
    return node.node_type == NODE_CUT && !node.in_check && node.eval > node.b + NULL_MOVE_MARGIN && !node.tt_low &&
           node.frame->free_pawn_rank[side ^ 1] <= MAX_FREE_PAWN_RANK && node.pos->npv[side] > 0 && WindowIsInner(node);
}

// Static null pruning. A side whose evaluation just fell isn't pruned; hung pieces widen the margin.
bool PruneStatically(const Node& node) {
    if (node.depth > Personality.CNP_depth || node.frame[-1].node_type == NODE_PV ||
        node.frame[-2].eval - EVAL_DROP > node.eval)
        return false;
    const int hung = node.frame->hung_value[node.side] / 2;
    const int margin = Personality.CNP_margin[MarginDepth(node.depth)];
    return node.eval >= node.b + std::max(hung, margin);
}

// A line that can no longer reach three quarters of the iteration tries no null move.
bool MayTryNullMove(const Node& node) {
    return node.depth >= Personality.NMP_depth && node.ply + node.depth >= 3 * ThreadOf(node.pos)->depth / 4;
}

int NullMoveSearch(const Node& node, Move* pv) {
    Position* pos = node.pos;
    const int reduction = node.depth > 6 && node.eval > node.b + 99 ? 4 : 3;
    const Depth depth = node.depth - reduction <= 0 ? 0 : node.depth - reduction - 1;
    // The child looks at its parent's move in work like at that of any move.
    // It is of no expected type, and so doesn't pass the turn back.
    MoveEntry* list = node.frame->first;
    list[0] = {};
    list[1].move = END_OF_LIST;
    node.frame->current = list;
    node.frame->gives_check = CHECK_NO;
    node.frame[1].first = list + 2;
    MakeNullMove(pos);
    const int v = -Search(pos, node.side ^ 1, node.ply + 1, depth, -node.b, -node.a, NODE_ANY, pv);
    UnmakeNullMove(pos);
    return v;
}

// Internal deepening: a move to begin with where the table has none, or only a shallow one. A good first move saves
// more than the shallow search costs, at PV nodes sooner than elsewhere. The list of that search is forgotten.
void DeepenInternally(const Node& node, Move* pv) {
    Depth depth = 0;
    if (node.node_type == NODE_PV)
        depth = node.depth >= 4 ? node.depth - 3 : 0;
    else if (node.depth > 4)
        depth = node.depth - 4;
    else if (node.depth == 4 && node.frame->hash_move == NO_MOVE)
        depth = 1;
    if (depth == 0 || node.tt.depth >= depth)
        return;
    node.frame->iid = 1;
    const int v = FW_Search(node.pos, node.side, node.ply, depth, node.a, node.b, node.in_check, node.node_type, pv);
    node.frame->iid = 0;
    if (v > node.a)
        node.frame->hash_move = pv[node.ply];
}

// Accumulated extension: a ply for every move of a node whose path has gathered enough PV nodes and captures.
void CountPath(const Node& node, SearchThread* thread) {
    int count = thread->ext_count + (node.node_type == NODE_PV) + (node.frame[-1].current->captured != 0);
    if (count > ACCUMULATED) {
        node.frame->ext = 1;
        count = AFTER_EXTENSION;
    }
    thread->ext_count = static_cast<int8_t>(count);
}

}  // namespace

int Search(Position* pos, Side side, Ply ply, Depth depth, int alpha, int beta, NodeType node_type, Move* pv) {
    assert(pos->ply == ply && pos->stm == side);
    SearchThread* thread = ThreadOf(pos);
    thread->nodes.Add(1);

    // Mate distance: no line from here is better or worse than a mate at once.
    const int a = std::max(alpha, ply - 10000);
    const int b = std::min(beta, 9999 - ply);
    if (a >= b)
        return a;

    Node node{pos, pos->frames + ply, side, ply, depth, a, b, node_type, 0, false, {}, false, false};
    PlyFrame* frame = node.frame;
    ResetFrame(node, pv);
    // The first node of a line that has no depth left is the root of a quiescence tree.
    if (depth <= 0 && frame[-1].depth > 0)
        thread->quiet_limit = thread->nodes + QUIET_TREE_LIMIT;
    node.in_check = IsInCheck(*pos, side, frame[-1].gives_check);

    if (pos->fifty >= 4 && IsDraw(pos, ply, node.in_check))
        return PBlock.draw_score[side];

    node.eval = Evaluate(thread, side, ply, node.in_check);
    frame->eval = Narrow(node.eval);
    if (frame->eval_draw == 1 && depth > DRAWISH_DEPTH && !node.in_check)
        node.depth = DRAWISH_DEPTH;

    if (ply > MAX_PLY || MoveStackIsFull(*pos, *frame))
        return node.in_check ? 0 : FailHard(node.eval, a, b);

    // Most quiet nodes stand pat, which needs no call.
    if (node.depth <= 0 && !node.in_check)
        return node.eval >= b ? b : FailHard(Q_Search(pos, side, ply, node.depth, a, b, node_type, pv), a, b);

    ProbeTable(&node);
    int result = 0;
    if (CutByTable(node, &result))
        return result;

    if (Razor(node, pv))
        return a;
    if (MayPassTurn(node)) {
        if (PruneStatically(node))
            return b;
        if (MayTryNullMove(node) && NullMoveSearch(node, pv) >= b) {
            // Near the leaves that is enough; above, the node is searched after all, but less deeply.
            if (node.depth <= 4)
                return b;
            node.depth -= 4;
        }
    }

    DeepenInternally(node, pv);

    // The counter is that of the path: siblings start from what it was here.
    const int8_t saved = thread->ext_count;
    CountPath(node, thread);
    const int v = FW_Search(pos, side, ply, node.depth, a, b, node.in_check, node_type, pv);
    thread->ext_count = saved;
    return FailHard(v, a, b);
}

}  // namespace vrel
