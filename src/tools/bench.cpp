#include "tools/bench.h"

#include <cinttypes>

#include "board/fen.h"
#include "board/search_thread.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "search/search_control.h"
#include "search/time_control.h"
#include "search/transposition.h"
#include "tools/bench_positions.h"

namespace vrel {

bool PrepareAfresh(const char* fen) {
    ClearTTable();
    if (InitNewThread(1) != 0)
        return false;
    SetPosition(GamePosition(), fen);
    GetElapsedTime(0);
    InitSearch(STATE_IDLE);
    return true;
}

uint64_t RunBench(Depth depth) {
    LimitDepth(depth);
    PBlock.noise = SILENT;
    uint64_t total = 0;
    double seconds = 0.0;
    for (const char* fen : kBenchPositions) {
        if (!PrepareAfresh(fen))
            return 0;
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
