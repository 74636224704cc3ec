#include <gtest/gtest.h>

#include <random>

#include "board/fen.h"
#include "interface/pblock.h"
#include "search/transposition.h"
#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

constexpr Move E2E4 = MakeMoveValue(12, 28);
constexpr Move D2D4 = MakeMoveValue(11, 27);

void Resize(int megabytes) {
    PBlock.hash_mb = static_cast<int16_t>(megabytes);
    ASSERT_EQ(InitTTable(), 0);
}

class Table : public ::testing::Test {
protected:
    void SetUp() override {
        SetDefaults();
        Resize(64);
    }
};

TTData Probe(Position* pos) {
    TTData data{};
    ProbeTTable(pos, &data);
    return data;
}

void Store(Position* pos, int depth, Move move = E2E4, int score = 0) {
    StoreInTTable(pos, 3, depth, score, BOUND_LOWER, move);
}

TEST_F(Table, WhatIsStoredIsFound) {
    TestPosition pos(fen_opn);
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
    for (const int depth : {-1, 0, 7, 66, 77, 78, 127, 200})
        for (const int score : {55, -55, 9898, 9950, -9899, -9950}) {
            ClearTTable();
            Store(pos.get(), depth, E2E4, score);
            const TTData found = Probe(pos.get());
            EXPECT_EQ(found.depth, std::min(depth, 127));
            EXPECT_EQ(found.type, BOUND_LOWER);
            EXPECT_EQ(found.move, E2E4);
            // A mate is kept as a distance from the node.
            EXPECT_EQ(found.score, score > 9898 ? score + 3 : score < -9899 ? score - 3 : score);
            EXPECT_EQ(ExpandScore(found.score, 3), score);
        }
    pos->stm = BLACK;
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND) << "with the other side to move it is another position";
    pos->stm = WHITE;
    PBlock.use_hash = 0;
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
}

// A reader may come between the two words of another writer, or meet those of two writers.
TEST_F(Table, TornEntryIsNeverFound) {
    Resize(1);
    TestPosition pos(fen_opn);
    Store(pos.get(), 5, E2E4, 111);
    ASSERT_EQ(Probe(pos.get()).score, 111);
    TTEntry* entry = hashtable;
    while (entry->check == 0)
        ++entry;
    const uint64_t first = entry->data;
    Store(pos.get(), 6, D2D4, -222);
    ASSERT_EQ(Probe(pos.get()).score, -222);
    entry->data = first;
    EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
}

// Between the look at an entry and its new age another thread may have stored something better.
TEST_F(Table, RefreshingBringsNothingOldBack) {
    Resize(1);
    TestPosition pos(fen_opn);
    Store(pos.get(), 5);
    TTEntry* entry = hashtable;
    while (entry->check == 0)
        ++entry;
    TTData seen = Probe(pos.get());
    TTData current = seen;
    RefreshAge(entry, &current, static_cast<uint16_t>(seen.age + 1));
    EXPECT_EQ(Probe(pos.get()).depth, 5) << "only the age is new";
    Store(pos.get(), 6);
    RefreshAge(entry, &seen, static_cast<uint16_t>(seen.age + 2));
    EXPECT_EQ(Probe(pos.get()).depth, 6);
}

TEST_F(Table, MoveThatCannotBeMadeIsNotFound) {
    TestPosition pos(fen_opn);
    const Move knight = MakeMoveValue(1, 18);
    ASSERT_LT(Probe(pos.get()).depth, TT_FOUND);
    for (const Move move : {MakeMoveValue(52, 36), MakeMoveValue(0, 8), MakeMoveValue(20, 28),
                            static_cast<Move>(knight | PROMOTE_QUEEN), static_cast<Move>(knight | PROMOTE_KNIGHT),
                            static_cast<Move>(knight | PROMOTE_BISHOP), static_cast<Move>(knight | PROMOTE_ROOK)}) {
        Store(pos.get(), 5, move);
        EXPECT_LT(Probe(pos.get()).depth, TT_FOUND) << move;
    }
    pos.Set("8/P6k/8/8/8/8/8/K7 w - -");
    for (const Move bits : {PROMOTE_QUEEN, PROMOTE_KNIGHT, PROMOTE_BISHOP, PROMOTE_ROOK}) {
        Store(pos.get(), 5, static_cast<Move>(MakeMoveValue(48, 56) | bits));
        EXPECT_EQ(Probe(pos.get()).move, MakeMoveValue(48, 56) | bits);
    }
}

TEST_F(Table, MuchDeeperResultOfThisSearchIsKept) {
    TestPosition pos(fen_opn);
    const auto depth_after = [&](int iteration, int age_of_first, int second) {
        ClearTTable();
        PBlock.depth = static_cast<int8_t>(iteration);
        PBlock.tt_age = static_cast<uint16_t>(age_of_first);
        Store(pos.get(), 12);
        PBlock.tt_age = 0;
        Store(pos.get(), second, D2D4);
        return Probe(pos.get()).depth;
    };
    EXPECT_EQ(depth_after(18, 0, 9), 12);
    EXPECT_EQ(depth_after(18, 0, 10), 10) << "hardly shallower";
    EXPECT_EQ(depth_after(19, 0, 9), 9) << "too shallow beside the iteration";
    EXPECT_EQ(depth_after(18, 7, 9), 12) << "an older one is made young by the store";
}

TEST_F(Table, LowestValueOfABucketIsReplaced) {
    PBlock.depth = 30;  // nothing here is deep enough to be protected
    TestPosition pos(fen_opn);
    // Keys of one slot: they differ above the bits that choose it.
    const auto use = [&](uint64_t high) { pos->hash = (high << 40) ^ 12345; };
    const auto store = [&](uint64_t high, int depth, int age) {
        use(high);
        PBlock.tt_age = static_cast<uint16_t>(age);
        Store(pos.get(), depth);
    };
    const auto depth_of = [&](uint64_t high) {
        use(high);
        return Probe(pos.get()).depth;
    };
    store(1, 9, 1);
    store(2, 8, 1);
    store(3, 7, 1);
    store(4, 37, 0);
    store(5, 1, 1);  // one ply of the game is worth 32 of depth
    EXPECT_EQ(depth_of(3), 7);
    EXPECT_EQ(depth_of(5), 1);
    EXPECT_LT(depth_of(4), TT_FOUND);
    CheckTTable();
    EXPECT_DOUBLE_EQ(PBlock.hash_fill, 4.0 / static_cast<double>(entries)) << "only empty places count";
}

TEST_F(Table, SlotIsTheRemainderOfTheKey) {
    std::mt19937_64 random(19);
    for (const int megabytes : {1, 2, 3, 5, 63, 64, 65, 100, 127, 1000, 1024, 4095, 8191, 8192}) {
        Resize(megabytes);
        const uint64_t slots = entries / 2;
        for (const uint64_t multiple : {uint64_t{0}, slots, UINT64_MAX / slots * slots, random() / slots * slots})
            for (const uint64_t beside : {uint64_t{0}, uint64_t{1}, UINT64_MAX})
                EXPECT_EQ(SlotOf(multiple + beside), (multiple + beside) % slots) << megabytes;
        for (int i = 0; i < 10000; ++i) {
            const uint64_t key = random();
            ASSERT_EQ(SlotOf(key), key % slots) << key << " of " << megabytes;
        }
    }
}

TEST_F(Table, EverySizeHoldsEveryPosition) {
    for (const int megabytes : {300, 63, 1, 0}) {
        Resize(megabytes);
        EXPECT_EQ(entries, static_cast<uint64_t>(megabytes) * 65536);
        for (const std::string& fen : RandomPositions(50, 9)) {
            TestPosition pos(fen);
            Store(pos.get(), 5, NO_MOVE);
            EXPECT_EQ(Probe(pos.get()).depth >= TT_FOUND, megabytes > 0);
            ClearTTable();
            EXPECT_LT(Probe(pos.get()).depth, TT_FOUND);
        }
    }
}

}  // namespace
}  // namespace vrel
