#include "search/mate_test.h"

#include "board/legality.h"
#include "search/ordering.h"

namespace vrel {

// Quiet moves are generated only if no capture answers the question.
MateResult IsMate(Position* pos, bool in_check) {
    pos->frames[pos->ply].stage = STAGE_HASH;
    const LegalityContext legality = MakeLegalityContext(*pos, pos->stm, in_check);
    while (const MoveEntry* entry = GetNextMoveFW(pos, in_check, legality))
        if (MoveIsLegal(*pos, pos->stm, entry->move, legality))
            return MAY_MOVE;
    return in_check ? CHECKMATED : STALEMATED;
}

}  // namespace vrel
