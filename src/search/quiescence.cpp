#include <algorithm>
#include <cassert>

#include "board/exchange.h"
#include "board/generate.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/move_kind.h"
#include "interface/pblock.h"
#include "search/ordering.h"
#include "search/search.h"
#include "search/search_report.h"
#include "search/selectivity.h"

namespace vrel {

namespace {

constexpr Depth CAPTURE_HORIZON = -4;  // below it only PV nodes go on making moves
constexpr int DELTA_MARGIN = 150;      // centipawns that position may gain beside a capture

// There is no hash move to take out: the quiescence has no part in the table.
void PrescoreQU(Position* pos, const MoveEntry* list, const MoveEntry* end) {
    const Square last_to = pos->last_move ? ToSquare(pos->last_move) : NO_SQUARE;
    uint8_t* order = OrderOf(ThreadOf(pos), list);
    for (const MoveEntry* entry = list; entry != end; ++entry, ++order) {
        int value = (entry->move & PROMOTE_QUEEN) ? ORDER_QUEEN_PROMOTION : 1;
        if (entry->captured)
            value = capture_value[TypeOf(entry->captured)] - TypeOf(entry->piece);
        if (ToSquare(entry->move) == last_to)
            value += ORDER_RECAPTURE;
        *order = static_cast<uint8_t>(value);
    }
}

// Captures, and promotions to a queen alone: another piece is better too seldom to be looked for here.
void GenerateActiveQU(Position* pos, PlyFrame* frame, Side side) {
    MoveEntry* end = GeneratePawnCaptures(*pos, side, frame->first);
    end = GeneratePieceCaptures(*pos, side, end);
    end = GeneratePromotions(*pos, side, false, end);
    CloseList(pos, end);
    PrescoreQU(pos, frame->first, end);
    frame->stage = STAGE_ACTIVE;
    frame->current = frame->first;
}

// The list takes the place of that of the captures, which are through.
void GenerateQuietChecks(Position* pos, PlyFrame* frame, Side side) {
    CloseList(pos, GenerateChecks(*pos, side, frame->first));
    frame->stage = STAGE_CHECKS;
    frame->current = frame->first;
}

// The entry at `current`, or null at the end of the stage. Checks come in generation order.
MoveEntry* GetNextMoveQU(Position* pos, PlyFrame* frame) {
    MoveEntry* entry = frame->current;
    const MoveEntry* end = EndOfList(frame);
    if (entry == end)
        return nullptr;
    if (frame->stage == STAGE_ACTIVE)
        PickHighest(ThreadOf(pos), entry, end);
    return entry;
}

// Even with the victim and a margin the move doesn't reach alpha. Pawns about to promote are left alone.
bool TooLittleToGain(const MoveEntry& entry, Side side, int eval, int a) {
    if (TypeOf(entry.piece) == PAWN && RelativeRank(side, ToSquare(entry.move)) >= SEVENTH_RANK)
        return false;
    return eval <= a - (piece_value[TypeOf(entry.captured)] + DELTA_MARGIN);
}

// What a node finds out about its moves, each thing when it is first asked for: many nodes have no move worth trying.
struct QuietKnowledge {
    bool has_checks = false, has_legality = false;
    CheckContext checks;
    LegalityContext legality;
};

CheckKind CheckBy(const Position& pos, Side side, const MoveEntry& entry, QuietKnowledge* known) {
    if (!known->has_checks) {
        known->checks = MakeCheckContext(pos, side);
        known->has_checks = true;
    }
    return MoveGivesCheck(pos, side, entry, known->checks);
}

bool IsLegal(const Position& pos, Side side, const MoveEntry& entry, QuietKnowledge* known) {
    if (!known->has_legality) {
        known->legality = MakeLegalityContext(pos, side, false);
        known->has_legality = true;
    }
    return MoveIsLegal(pos, side, entry.move, known->legality);
}

// A discovered check is always tried, and so is what decides the kind of ending; a direct check must be safe, and
// anything else must promise enough besides. The cheap questions come first.
bool WorthTrying(const Position& pos, const MoveEntry& entry, Side side, int eval, int a, QuietKnowledge* known) {
    if (EndgamePruneExclusion(pos, entry))
        return true;
    const bool enough = !TooLittleToGain(entry, side, eval, a);
    if (enough && MoveIsSafe(pos, entry))
        return true;
    switch (CheckBy(pos, side, entry, known)) {
        case NO_CHECK:
            return false;
        case DIRECT_CHECK:
            return !enough && MoveIsSafe(pos, entry);
        default:
            return true;
    }
}

}  // namespace

int Q_Search(Position* pos, Side side, Ply ply, Depth depth, int alpha, int beta, NodeType node_type, Move* pv) {
    assert(pos->ply == ply && pos->stm == side && alpha < beta && depth <= 0);
    PlyFrame* frame = pos->frames + ply;
    // Standing pat: a side that needn't capture is worth at least what it has.
    const int eval = frame->eval;
    if (eval >= beta)
        return eval;
    int a = std::max(alpha, eval);
    // Beyond the horizon the best recapture on the last square is credited, and no move is made.
    if (depth < CAPTURE_HORIZON && node_type != NODE_PV) {
        const Square target = ToSquare(pos->last_move);
        if (eval + piece_value[TypeOf(pos->board[target])] <= a)
            return a;
        return std::max(a, eval + swapoff1(*pos, side, NO_SQUARE, target, Occupied(*pos)));
    }

    SearchThread* thread = ThreadOf(pos);
    // Every child has the whole window, there being no scouts here, and is of the type of a first child.
    const NodeType child_type = node_opp[node_type];
    QuietKnowledge known;
    PvLine local_pv;
    GenerateActiveQU(pos, frame, side);
    while (true) {
        while (MoveEntry* entry = GetNextMoveQU(pos, frame)) {
            const Move move = entry->move;
            if (WorthTrying(*pos, *entry, side, eval, a, &known) && IsLegal(*pos, side, *entry, &known)) {
                frame->gives_check = CheckAfter(*pos, *entry, CheckBy(*pos, side, *entry, &known) != NO_CHECK);
                MakeMove(pos, move);
                const int v = -Search(pos, side ^ 1, ply + 1, depth - 1, -beta, -a, child_type, local_pv.data());
                UnmakeMove(pos);
                // Cut short, the tree has proved no more than what it has found so far.
                if (PBlock.stop || thread->nodes > thread->quiet_limit)
                    return a;
                if (v > a) {
                    pv[ply] = move;
                    pv[ply + 1] = NO_MOVE;
                    if (v >= beta)
                        return v;
                    UpdatePV(pv, local_pv.data(), move, ply);
                    a = v;
                }
            }
            ++frame->current;
        }
        // Only the first ply below the full-width search tries quiet checks, or the tree would find no end.
        if (depth < 0 || frame->stage == STAGE_CHECKS)
            return a;
        GenerateQuietChecks(pos, frame, side);
    }
}

}  // namespace vrel
