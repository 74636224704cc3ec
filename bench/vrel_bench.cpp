// Searches the positions of the bench to a fixed depth and prints the node total, which is the same on every machine
// and changes only when the search or the evaluation does. The program's own `bench` does the same.
//
//     vrel_bench [depth]

#include <cstdio>
#include <cstdlib>

#include "interface/pblock.h"
#include "search/start_up.h"
#include "tools/bench.h"

int main(int argc, char** argv) {
    using namespace vrel;
    const int depth = argc > 1 ? std::atoi(argv[1]) : BENCH_DEPTH;
    if (depth < 1 || depth > MAX_DEPTH) {
        std::fprintf(stderr, "usage: vrel_bench [depth 1 to %d]\n", MAX_DEPTH);
        return 2;
    }
    const bool started = StartEngine([] {
        PBlock.log = 0;
        PBlock.noise = SILENT;
    });
    if (!started || RunBench(depth) == 0) {
        std::fprintf(stderr, "no memory\n");
        return 1;
    }
    EndEngine();
    return 0;
}
