// Times single functions of the engine.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "board/attacks.h"
#include "board/exchange.h"
#include "board/generate.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "eval/evaluate.h"
#include "interface/pblock.h"
#include "search/start_up.h"
#include "search/transposition.h"
#include "tools/bench.h"
#include "tools/bench_positions.h"
#include "tools/perft.h"

namespace vrel {
namespace {

// A worker on a position; the tables are built once.
SearchThread* Worker(const char* fen) {
    static const bool started = StartEngine([] {
                                    PBlock.log = 0;
                                    PBlock.noise = SILENT;
                                }) &&
                                InitNewThread(1) == 0;
    if (!started) {
        std::fprintf(stderr, "no memory\n");
        std::exit(1);
    }
    PrepareAfresh(fen);
    return GetThread(1);
}

// The legal moves of the side to move.
std::vector<MoveEntry> LegalMoves(Position* pos) {
    GenerateAll(pos);
    RemoveIllegalMoves(*pos, pos->frames[pos->ply].first);
    std::vector<MoveEntry> moves;
    for (const MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; entry++)
        moves.push_back(*entry);
    return moves;
}

void CountLeaves(benchmark::State& state, const char* fen, int depth) {
    SearchThread* worker = Worker(fen);
    worker->nodes = 0;
    for (auto _ : state)
        Perft(worker, worker->pos.stm, 1, depth);
    state.SetItemsProcessed(static_cast<int64_t>(worker->nodes.Get()));
}
BENCHMARK_CAPTURE(CountLeaves, start, kStartPosition, 5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CountLeaves, busy, kBusyPosition, 4)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CountLeaves, ending, kRookEnding, 6)->Unit(benchmark::kMillisecond);

// One function over all positions of the bench; an item is one position.
template <typename Function>
void OverPositions(benchmark::State& state, Function function) {
    std::vector<SearchThread*> workers;
    for (const char* fen : kBenchPositions) {
        // The record is taken out of its slot, so that each position keeps one.
        workers.push_back(Worker(fen));
        ThreadData[1].store(nullptr, std::memory_order_release);
    }
    for (auto _ : state)
        for (SearchThread* worker : workers)
            function(worker);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(workers.size()));
    for (SearchThread* worker : workers) {
        ThreadData[1].store(worker, std::memory_order_release);
        PrepareAfresh(kStartPosition);  // frees what stood in the slot
    }
}

void Generate(benchmark::State& state) {
    OverPositions(state, [](SearchThread* worker) {
        GenerateAll(&worker->pos);
        benchmark::ClobberMemory();
    });
}
BENCHMARK(Generate);

// At the root nothing is taken from the caches, so every call does the whole work.
void EvaluateWithoutCaches(benchmark::State& state) {
    OverPositions(state, [](SearchThread* worker) {
        benchmark::DoNotOptimize(Evaluate(worker, worker->pos.stm, 1, /*in_check=*/false));
    });
}
BENCHMARK(EvaluateWithoutCaches);

// Every legal move of the busy position; an item is one move.
void MakeAndUnmake(benchmark::State& state) {
    Position* pos = &Worker(kBusyPosition)->pos;
    const std::vector<MoveEntry> moves = LegalMoves(pos);
    for (auto _ : state)
        for (const MoveEntry& entry : moves) {
            MakeMove(pos, entry.move);
            UnmakeMove(pos);
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(moves.size()));
}
BENCHMARK(MakeAndUnmake);

void Exchange(benchmark::State& state) {
    Position& pos = Worker(kBusyPosition)->pos;
    const std::vector<MoveEntry> moves = LegalMoves(&pos);
    for (auto _ : state)
        for (const MoveEntry& entry : moves)
            benchmark::DoNotOptimize(
                swapoff1(pos, pos.stm, FromSquare(entry.move), ToSquare(entry.move), Occupied(pos)));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(moves.size()));
}
BENCHMARK(Exchange);

// Keys spread over the whole table, as in a search: an item is one store and one probe.
void StoreAndProbe(benchmark::State& state) {
    Position* pos = &Worker(kBusyPosition)->pos;
    const uint64_t key = pos->hash;
    uint64_t random = 1;
    for (auto _ : state) {
        random = random * 6364136223846793005ULL + 1442695040888963407ULL;
        pos->hash = random;
        StoreInTTable(pos, 1, 5, 20, BOUND_EXACT, MakeMoveValue(12, 28));
        TTData data;
        ProbeTTable(pos, &data);
        benchmark::DoNotOptimize(data);
    }
    pos->hash = key;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(StoreAndProbe);

}  // namespace
}  // namespace vrel
