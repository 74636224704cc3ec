#include "search/mate_test.h"

#include "board/legality.h"
#include "search/ordering.h"

namespace vrel {

int IsMate(Position* pos, bool in_check) {
    pos->frames[pos->ply].stage = 0;
    while (const MoveEntry* entry = GetNextMoveFW(pos, in_check))
        if (MoveIsLegal(*pos, pos->stm, entry->move))
            return 0;
    return in_check ? 1 : 2;
}

}  // namespace vrel
