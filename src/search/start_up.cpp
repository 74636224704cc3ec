#include "search/start_up.h"

#include "board/attacks.h"
#include "board/bitboards.h"
#include "board/fen.h"
#include "board/search_thread.h"
#include "eval/eval_tables.h"
#include "eval/kpk.h"
#include "eval/personality.h"
#include "interface/pblock.h"
#include "search/thread_pool.h"
#include "search/transposition.h"

namespace vrel {

bool StartEngine(const std::function<void()>& configure) {
    if (InitNewThread(0) != 0)
        return false;
    // The game record first: whatever looks for the position of the game finds one. KPKgen works on the bitboards.
    InitializeBitboards();
    InitializeAttacks();
    KPKgen();
    SetDefaults();
    InitPersonality();
    configure();
    // Memory is claimed for what has been configured.
    if (InitTTable() != 0 || InitLocks() != 0)
        return false;
    // The evaluation's tables follow the weights, and a position is set with the keys that go with the table.
    InitEval();
    SetPosition(GamePosition(), fen_opn);
    return true;
}

void EndEngine() {
    // The records go last: the game's position is looked at from everywhere.
    DestroyLocks();
    KillTTable();
    FreeThreads();
}

}  // namespace vrel
