#include "tools/perft.h"

#include <cassert>

#include "board/attacks.h"
#include "board/generate.h"
#include "board/legality.h"
#include "board/make_move.h"

namespace vrel {

namespace {

// The leaves below a node, whose moves are all generated and tested; the last ply is counted without being made.
uint64_t CountLeaves(Position* pos, Side side, Ply ply, Depth depth) {
    assert(depth >= 1 && pos->ply == ply && pos->stm == side);
    GenerateAll(pos);
    const bool in_check = SqAtakd(*pos, KingSquare(*pos, side), side ^ 1);
    const LegalityContext legality = MakeLegalityContext(*pos, side, in_check);
    PlyFrame* frame = pos->frames + ply;
    uint64_t leaves = 0;
    for (MoveEntry* entry = frame->first; entry->move != END_OF_LIST; ++entry) {
        if (!MoveIsLegal(*pos, side, entry->move, legality))
            continue;
        frame->current = entry;
        if (depth == 1) {
            ++leaves;
            continue;
        }
        MakeMove(pos, entry->move);
        leaves += CountLeaves(pos, side ^ 1, ply + 1, depth - 1);
        UnmakeMove(pos);
    }
    return leaves;
}

}  // namespace

// At depth 0 the root itself would be a leaf, which nobody wants counted.
void Perft(SearchThread* thread, Side side, Ply ply, Depth depth) {
    if (depth >= 1)
        thread->nodes.Add(CountLeaves(&thread->pos, side, ply, depth));
}

}  // namespace vrel
