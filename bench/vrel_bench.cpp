// Searches the positions of the bench to a fixed depth, one after the other, each with a cleared table and a fresh
// worker, on this thread. The node total is the same on every machine and changes only when the search or the
// evaluation does.
//
//     vrel_bench [depth]

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "engine.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "positions.h"
#include "search/search_control.h"
#include "search/start_up.h"
#include "search/transposition.h"

namespace {

constexpr int kDepth = 12;

}  // namespace

int main(int argc, char** argv) {
    using namespace vrel;
    const int depth = argc > 1 ? std::atoi(argv[1]) : kDepth;
    if (depth < 1 || depth > MAX_DEPTH) {
        std::fprintf(stderr, "usage: vrel_bench [depth 1 to %d]\n", MAX_DEPTH);
        return 2;
    }
    if (!StartForBench()) {
        std::fprintf(stderr, "no memory\n");
        return 1;
    }
    PBlock.max_depth = static_cast<int8_t>(depth);

    uint64_t total = 0;
    double seconds = 0.0;
    for (const char* fen : kBenchPositions) {
        ClearTTable();
        SearchThread* worker = FreshWorker(fen);
        if (worker == nullptr) {
            std::fprintf(stderr, "no memory\n");
            return 1;
        }
        const double start = MonotonicSeconds();
        SearchHere();
        seconds += SecondsSince(start);
        total += worker->nodes;
        std::printf("%10" PRIu64 "  %s\n", worker->nodes.Get(), fen);
        std::fflush(stdout);
    }
    std::printf("%" PRIu64 " nodes %.0f nps\n", total, static_cast<double>(total) / (seconds + 1e-9));
    EndEngine();
    return 0;
}
