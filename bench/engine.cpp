#include "engine.h"

#include "board/bitboards.h"
#include "board/fen.h"
#include "eval/eval_tables.h"
#include "eval/kpk.h"
#include "eval/personality.h"
#include "interface/pblock.h"
#include "search/thread_pool.h"
#include "search/time_control.h"
#include "search/transposition.h"

namespace vrel {

bool StartEngine() {
    if (InitNewThread(0) != 0)
        return false;
    InitializeBitboards();
    KPKgen();
    SetDefaults();
    PBlock.log = 0;
    PBlock.noise = SILENT;
    PBlock.hash_mb = BENCH_HASH_MB;
    InitPersonality();
    if (InitTTable() != 0 || InitLocks() != 0)
        return false;
    InitEval();
    return true;
}

SearchThread* FreshWorker(const char* fen) {
    if (InitNewThread(1) != 0)
        return nullptr;
    SetPosition(GamePosition(), fen);
    GetElapsedTime(0);
    InitSearch();
    return GetThread(1);
}

}  // namespace vrel
