#include "search/transposition.h"

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#include "board/fen.h"
#include "board/keys.h"
#include "interface/pblock.h"
#include "search/search.h"
#include "support/engine.h"
#include "support/playout.h"

namespace vrel {

namespace {

constexpr Move E2E4 = MakeMoveValue(12, 28);
constexpr Move D2D4 = MakeMoveValue(11, 27);

class Table : public EngineTest {
protected:
    void SetUp() override {
        PBlock.use_hash = 1;
        PBlock.depth = 0;
        ClearTTable();
    }
};

TTData Probe(Position* pos) {
    TTData data{};
    ProbeTTable(pos, &data);
    return data;
}

}  // namespace

TEST_F(Table, WhatIsStoredIsFound) {
    TestPosition pos(fen_opn);
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
    StoreInTTable(pos.get(), 3, 7, 55, BOUND_LOWER, E2E4);
    const TTData found = Probe(pos.get());
    EXPECT_EQ(found.depth, 7);
    EXPECT_EQ(found.score, 55);
    EXPECT_EQ(found.type, BOUND_LOWER);
    EXPECT_EQ(found.move, E2E4);
    // The other side to move is another position.
    TestPosition black("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -");
    EXPECT_LT(Probe(black.get()).depth, TT_FOUND);
    PBlock.use_hash = 0;
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
}

TEST_F(Table, MateIsADistanceFromTheNode) {
    EXPECT_EQ(CompressScore(-9990, 5), -9995);
    EXPECT_EQ(ExpandScore(-9995, 9), -9986);
    EXPECT_EQ(CompressScore(9990, 5), 9995);
    EXPECT_EQ(ExpandScore(9995, 9), 9986);
    for (int edge : {-9899, 9898, 0}) {
        EXPECT_EQ(CompressScore(edge, 20), edge);
        EXPECT_EQ(ExpandScore(edge, 20), edge);
    }
}

TEST_F(Table, MuchDeeperResultOfThisSearchIsKept) {
    TestPosition pos(fen_opn);
    const auto depth_after = [&](int published, int tt_age_of_first) {
        ClearTTable();
        PBlock.depth = static_cast<int8_t>(published);
        PBlock.tt_age = static_cast<uint16_t>(tt_age_of_first);
        StoreInTTable(pos.get(), 1, 12, 10, BOUND_EXACT, E2E4);
        PBlock.tt_age = 0;
        StoreInTTable(pos.get(), 1, 9, 20, BOUND_UPPER, D2D4);
        return Probe(pos.get()).depth;
    };
    EXPECT_EQ(depth_after(18, 0), 12);
    EXPECT_EQ(depth_after(19, 0), 9);  // too shallow beside the iteration to be protected
    // An older entry of the same position is made young by the store itself and so protected as well.
    EXPECT_EQ(depth_after(18, 7), 12);
    StoreInTTable(pos.get(), 1, 10, 20, BOUND_UPPER, D2D4);  // not more than two plies shallower
    EXPECT_EQ(Probe(pos.get()).depth, 10);
}

TEST_F(Table, ReplacesTheEntryOfLowestValueInAFullBucket) {
    PBlock.depth = 30;  // nothing here is deep enough to be protected
    // Keys of one slot: they differ above the bits that choose it.
    TestPosition pos(fen_opn);
    const auto store = [&](uint64_t high, int depth) {
        pos->hash = (high << 40) ^ 12345;
        StoreInTTable(pos.get(), 1, depth, 0, BOUND_EXACT, E2E4);
    };
    const auto depth_of = [&](uint64_t high) {
        pos->hash = (high << 40) ^ 12345;
        return Probe(pos.get()).depth;
    };
    for (uint64_t i = 1; i <= 4; ++i)
        store(i, static_cast<int>(10 - i));
    store(5, 1);
    EXPECT_EQ(depth_of(5), 1);
    EXPECT_LT(depth_of(4), TT_FOUND);
    EXPECT_EQ(depth_of(3), 7);
}

TEST_F(Table, MoveThatCannotBeMadeIsNotFound) {
    TestPosition pos(fen_opn);
    StoreInTTable(pos.get(), 1, 5, 0, BOUND_EXACT, MakeMoveValue(52, 36));  // a black pawn
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
    StoreInTTable(pos.get(), 1, 5, 0, BOUND_EXACT, MakeMoveValue(0, 8));  // onto an own pawn
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
}

TEST_F(Table, FillCountsEmptyEntriesOnly) {
    TestPosition pos(fen_opn);
    StoreInTTable(pos.get(), 1, 5, 0, BOUND_EXACT, E2E4);
    StoreInTTable(pos.get(), 1, 6, 0, BOUND_EXACT, E2E4);
    CheckTTable();
    EXPECT_DOUBLE_EQ(PBlock.hash_fill, 1.0 / static_cast<double>(entries));
}

TEST_F(Table, EveryBitOfDepthSurvives) {
    TestPosition pos(fen_opn);
    for (int depth : {-1, 0, 1, 66, 77, 78, 126, 127, 200}) {
        ClearTTable();
        StoreInTTable(pos.get(), 1, depth, 0, BOUND_EXACT, E2E4);
        EXPECT_EQ(Probe(pos.get()).depth, std::min(depth, 127));
    }
}

TEST_F(Table, OtherSizesUseTheRemainderAndNoneAtAllWorks) {
    for (int megabytes : {63, 1, 0}) {
        PBlock.hash_mb = static_cast<int16_t>(megabytes);
        ASSERT_EQ(InitTTable(), 0);
        EXPECT_EQ(entries, static_cast<uint64_t>(megabytes) * 65536);
        for (const std::string& fen : RandomPositions(50, 9)) {
            TestPosition pos(fen);
            StoreInTTable(pos.get(), 1, 5, 1, BOUND_EXACT, NO_MOVE);
            EXPECT_EQ(Probe(pos.get()).depth >= TT_FOUND, megabytes > 0);
        }
        CheckTTable();
        EXPECT_LE(PBlock.hash_fill, 1.0);
    }
    PBlock.hash_mb = 64;
    ASSERT_EQ(InitTTable(), 0);
}

// Two writers store different results of one position; a reader never sees a mixture of them.
TEST_F(Table, TornEntryIsNeverFound) {
    std::atomic<bool> done = false;
    const auto write = [&](int score, Move move) {
        TestPosition pos(fen_opn);
        while (!done.load(std::memory_order_relaxed))
            StoreInTTable(pos.get(), 1, 5, score, BOUND_EXACT, move);
    };
    std::thread first(write, 111, E2E4);
    std::thread second(write, -222, D2D4);
    TestPosition pos(fen_opn);
    int torn = 0;
    std::set<Move> found;  // both writers have had their turns by then
    for (int i = 0; i < 100000 || found.size() < 2; ++i) {
        const TTData data = Probe(pos.get());
        if (data.depth < TT_FOUND)
            continue;
        found.insert(data.move);
        torn += (data.score == 111) != (data.move == E2E4);
    }
    done = true;
    first.join();
    second.join();
    EXPECT_EQ(torn, 0);
}

}  // namespace vrel
