#include "search/selectivity.h"

#include <algorithm>
#include <cstddef>

#include "board/legality.h"
#include "board/move_kind.h"
#include "eval/personality.h"
#include "interface/messages.h"
#include "search/ordering.h"
#include "search/search.h"

namespace vrel {

namespace {

constexpr int MAX_REDUCTION_PAIR = 4;

int MoveColumn(int searched) { return std::min(searched, 31); }
int TableDepth(Depth depth) { return std::clamp(depth, 0, 69); }

// The move takes the opponent's last piece other than pawns.
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
    const Side side = pos.stm;
    const int check = MoveGivesCheck(pos, side, *entry, checks);
    const bool push7 =
        static_cast<int>(TypeOf(entry->piece) == PAWN) & (RelativeRank(side, ToSquare(entry->move)) == 6);
    int flags = 0;
    if (check)
        flags |= FLAG_CHECK;
    if (push7)
        flags |= FLAG_PUSH7;
    if (entry->captured)
        flags |= FLAG_CAPTURE;
    if (entry->move & PROMOTE_QUEEN)
        flags |= FLAG_QUEEN;
    entry->flags = static_cast<uint8_t>(flags);
    if (check == 2)
        return 1;
    if (check == 1 || push7 || CaptureLastPiece(pos, *entry))
        return MoveIsSafe(pos, *entry);
    return 0;
}

bool PruneMove(const Position& pos, const MoveEntry& entry, Depth depth, int searched) {
    const PlyFrame& frame = pos.frames[pos.ply];
    const Side side = pos.stm;
    if (entry.flags & ANY_FLAG)
        return false;
    if (EndgamePruneExclusion(pos, entry))
        return false;
    // Futility, whatever the move's place in the order.
    if (frame.eval <= frame.alpha - Personality.FP_margin[MarginDepth(depth)])
        return true;
    if (std::min(searched, 31) <= Personality.LMP_count[MarginDepth(depth)])
        return false;
    if (MoveIsCastle(entry) || MoveIsPawnPush(pos, side, entry))
        return false;
    if (entry.sort_value <= ORDER_REMEMBERED && !MoveIsThreat(pos, entry))
        return true;
    return !MoveIsSafe(pos, entry);
}

bool EndgamePruneExclusion(const Position& pos, const MoveEntry& entry) {
    if (pos.npv[WHITE] == 0 || pos.npv[BLACK] == 0)
        return true;
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
    const auto& table = node_type == NODE_PV ? Personality.LMR_table1 : Personality.LMR_table2;
    int r = table[TableDepth(depth)][MoveColumn(searched)];
    if (r == 0 || CaptureLastPiece(pos, entry))
        return 0;
    if (entry.flags & ANY_FLAG)
        return 1;
    if ((entry.sort_value > ORDER_REMEMBERED || MoveIsPawnPush(pos, pos.stm, entry)) && MoveIsSafe(pos, entry))
        return 0;
    // Two consecutive reductions take no more than this together.
    r = std::min(r, MAX_REDUCTION_PAIR - pos.frames[pos.ply - 1].reduction);
    return r > 1 && pos.frames[pos.ply].iid ? 1 : r;
}

void DisplayLMR() {
    PrintReductions(Personality.LMR_table1);
    Print("\n\n");
    PrintReductions(Personality.LMR_table2);
}

}  // namespace vrel
