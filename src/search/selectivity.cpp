#include "search/selectivity.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

#include "board/legality.h"
#include "board/move_kind.h"
#include "eval/personality.h"
#include "interface/messages.h"
#include "search/ordering.h"
#include "search/search.h"

namespace vrel {

namespace {

constexpr int MAX_REDUCTION_PAIR = 4;  // plies that two moves in a row may lose together

// Places in the tables of Personality: later moves are as the last column, deeper nodes as the last row.
int MoveColumn(int searched) { return std::min(searched, 31); }
int TableDepth(Depth depth) { return std::clamp(depth, 0, 69); }

// The move takes the opponent's last piece other than pawns. A pawn ending follows, which is won or lost by things that
// a shortened search doesn't see.
bool CaptureLastPiece(const Position& pos, const MoveEntry& entry) {
    const int type = TypeOf(entry.captured);
    return type > PAWN && pos.npv[pos.stm ^ 1] == npv_unit[type];
}

void PrintReductions(const std::array<std::array<int8_t, 32>, 70>& table) {
    for (size_t depth = 1; depth <= 30; ++depth) {
        Print("%2d  ", static_cast<int>(depth));
        for (const int8_t value : table[depth])
            Print("%d ", value);
        Print("\n");
    }
}

}  // namespace

int Extension(const Position& pos, MoveEntry* entry, const CheckContext& checks) {
    const CheckKind check = MoveGivesCheck(pos, pos.stm, *entry, checks);
    entry->flags = static_cast<uint8_t>(FlagsOf(pos, *entry, check));
    // A discovered check leaves the mover free to do harm wherever it lands, be it lost there or not.
    if (check == DISCOVERED_CHECK)
        return 1;
    if (check == DIRECT_CHECK || (entry->flags & FLAG_PUSH7) || CaptureLastPiece(pos, *entry))
        return MoveIsSafe(pos, *entry);
    return 0;
}

DropLimits DropLimitsOf(const PlyFrame& frame, Depth depth) {
    return {frame.eval <= frame.alpha - Personality.FP_margin[MarginDepth(depth)],
            Personality.LMP_count[MarginDepth(depth)]};
}

bool MayPrune(const DropLimits& limits, int searched) { return limits.futile || MoveColumn(searched) > limits.late; }

bool PruneMove(const Position& pos, const MoveEntry& entry, const DropLimits& limits) {
    assert(entry.captured == 0 && !EndgamePruneExclusion(pos, entry));
    // Futility, whatever the move's place in the order.
    if (limits.futile)
        return true;
    // A late move stays if something speaks for it and it doesn't lose material.
    if (MoveIsCastle(entry) || MoveIsPawnPush(pos, pos.stm, entry))
        return false;
    if (entry.sort_value <= ORDER_REMEMBERED && !MoveIsThreat(pos, entry))
        return true;
    return !MoveIsSafe(pos, entry);
}

bool EndgamePruneExclusion(const Position& pos, const MoveEntry& entry) {
    if (pos.npv[WHITE] == 0 || pos.npv[BLACK] == 0)
        return true;
    // The fewer pawns are left, the more the next one decides.
    const int victim = TypeOf(entry.captured);
    if (victim == NO_PIECE)
        return false;
    const uint32_t pawns = pos.msig[pos.stm ^ 1] & MSIG_PAWNS;
    if (victim == PAWN)
        return pawns <= 2;
    return CaptureLastPiece(pos, entry) || pawns <= 1;
}

int Reduction(const Position& pos, const MoveEntry& entry, Depth depth, int searched, NodeType node_type) {
    if (depth < Personality.LMR_depth)
        return 0;
    // Off the principal variation a mistake costs less, and moves are shortened sooner and by more.
    const auto& table = node_type == NODE_PV ? Personality.LMR_table1 : Personality.LMR_table2;
    int r = table[TableDepth(depth)][MoveColumn(searched)];
    if (r == 0 || CaptureLastPiece(pos, entry))
        return 0;
    // Active moves that nothing better is known of: a losing capture, an unsafe check.
    if (entry.flags & ANY_FLAG)
        return 1;
    // Moves that promise something keep their depth as long as they lose no material.
    if ((entry.sort_value > ORDER_REMEMBERED || MoveIsPawnPush(pos, pos.stm, entry)) && MoveIsSafe(pos, entry))
        return 0;
    r = std::min(r, MAX_REDUCTION_PAIR - pos.frames[pos.ply - 1].reduction);
    // Internal deepening looks for one good move, with little depth to lose.
    return r > 1 && pos.frames[pos.ply].iid ? 1 : r;
}

void DisplayLMR() {
    PrintReductions(Personality.LMR_table1);
    Print("\n\n");
    PrintReductions(Personality.LMR_table2);
}

}  // namespace vrel
