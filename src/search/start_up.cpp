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
    InitializeBitboards();
    InitializeAttacks();
    KPKgen();
    SetDefaults();
    InitPersonality();
    configure();
    if (InitTTable() != 0 || InitLocks() != 0)
        return false;
    InitEval();
    SetPosition(GamePosition(), fen_opn);
    return true;
}

void EndEngine() {
    DestroyLocks();
    KillTTable();
    FreeThreads();
}

}  // namespace vrel
