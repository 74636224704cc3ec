#include "engine.h"

#include "board/fen.h"
#include "interface/pblock.h"
#include "search/search_control.h"
#include "search/start_up.h"
#include "search/time_control.h"

namespace vrel {

bool StartForBench() {
    return StartEngine([] {
        PBlock.log = 0;
        PBlock.noise = SILENT;
        PBlock.hash_mb = BENCH_HASH_MB;
    });
}

SearchThread* FreshWorker(const char* fen) {
    if (InitNewThread(1) != 0)
        return nullptr;
    SetPosition(GamePosition(), fen);
    GetElapsedTime(0);
    InitSearch(STATE_IDLE);
    return GetThread(1);
}

}  // namespace vrel
