#include "tools/bench.h"

#include <cinttypes>
#include <cstring>

#include "board/fen.h"
#include "board/search_thread.h"
#include "interface/messages.h"
#include "platform/clock.h"
#include "search/search_control.h"
#include "search/time_control.h"
#include "search/transposition.h"
#include "tools/bench_positions.h"

namespace vrel {

void PrepareAfresh(const char* fen) {
    ClearTTable();
    SearchThread* worker = GetThread(1);
    std::memset(&worker->eval_cache, 0, sizeof worker->eval_cache);
    std::memset(&worker->pawn_cache, 0, sizeof worker->pawn_cache);
    SetPosition(GamePosition(), fen);
    GetElapsedTime(0);
    InitSearch(STATE_IDLE);
}

uint64_t RunBench(int depth) {
    LimitDepth(depth);
    uint64_t total = 0;
    double seconds = 0.0;
    for (const char* fen : kBenchPositions) {
        PrepareAfresh(fen);
        const double start = MonotonicSeconds();
        SearchHere();
        seconds += SecondsSince(start);
        const uint64_t nodes = GetThread(1)->nodes;
        total += nodes;
        Print("%10" PRIu64 "  %s\n", nodes, fen);
    }
    Print("%" PRIu64 " nodes %.0f nps\n", total, static_cast<double>(total) / (seconds + 1e-9));
    return total;
}

}  // namespace vrel
