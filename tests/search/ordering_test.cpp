#include "search/ordering.h"

#include <algorithm>
#include <map>
#include <vector>

#include "board/attacks.h"
#include "board/fen.h"
#include "board/generate.h"
#include "search/mate_test.h"
#include "support/engine.h"
#include "support/playout.h"

namespace vrel {

namespace {

class Ordering : public EngineTest {};

bool InCheck(const Position& pos) { return SqAtakd(pos, KingSquare(pos, pos.stm), pos.stm ^ 1); }

std::vector<Move> PickAll(Position* pos) {
    std::vector<Move> moves;
    pos->frames[pos->ply].stage = 0;
    while (const MoveEntry* entry = GetNextMoveFW(pos, InCheck(*pos)))
        if (entry->move != NO_MOVE)
            moves.push_back(entry->move);
    return moves;
}

std::vector<Move> Generated(Position* pos) {
    std::vector<Move> moves;
    for (const MoveEntry& entry : AllMoves(pos))
        moves.push_back(entry.move);
    return moves;
}

}  // namespace

TEST_F(Ordering, HandsOutEachGeneratedMoveOnce) {
    for (const std::string& fen : RandomPositions(400, 3)) {
        TestPosition pos(fen);
        InitMoveOrderingTables(pos.thread());
        std::vector<Move> wanted = Generated(pos.get());
        if (!wanted.empty())
            pos->frames[1].hash_move = wanted[wanted.size() / 2];
        const Move first = pos->frames[1].hash_move;
        std::vector<Move> picked = PickAll(pos.get());
        if (first != NO_MOVE) {
            EXPECT_EQ(picked.front(), first) << fen;
        }
        std::sort(wanted.begin(), wanted.end());
        std::sort(picked.begin(), picked.end());
        EXPECT_EQ(picked, wanted) << fen;
    }
}

// The sixteen-at-a-time selection against the plain one, whose exchanges decide the order of equals.
TEST_F(Ordering, SelectionIsThePlainSelectionSort) {
    std::mt19937 random(7);
    TestPosition pos(fen_opn);
    SearchThread* thread = pos.thread();
    for (size_t count : {1u, 2u, 15u, 16u, 17u, 31u, 33u, 90u, 218u}) {
        for (size_t spread : {1u, 3u, 200u}) {
            MoveEntry* list = thread->move_stack.data();
            std::vector<MoveEntry> plain;
            for (size_t i = 0; i < count; ++i) {
                const auto value = static_cast<uint8_t>(RandomBelow(&random, spread));
                list[i] = {static_cast<Move>(i + 1), 0, 0, value, 0};
                *OrderOf(thread, list + i) = value;
                plain.push_back(list[i]);
            }
            *OrderOf(thread, list + count) = 255;  // what stands behind the list must not matter
            plain.push_back({END_OF_LIST, 0, 0, 0, 0});
            for (size_t i = 0; i < count; ++i) {
                PickHighest(thread, list + i, list + count);
                PickNextMove(plain.data() + i);
                ASSERT_EQ(list[i].move, plain[i].move) << count << " " << spread << " " << i;
                ASSERT_EQ(list[i].sort_value, plain[i].sort_value);
            }
        }
    }
}

TEST_F(Ordering, LosingCaptureWaitsForTheQuietMoves) {
    // Qxd5 loses the queen to the e6 pawn; the killer comes before it, a move of no history behind.
    TestPosition pos("4k3/8/4p3/3p4/8/8/8/3QK3 w - -");
    InitMoveOrderingTables(pos.thread());
    const Move capture = MakeMoveValue(3, 35);
    const Move killer = MakeMoveValue(3, 2);
    pos->frames[1].killer1 = killer;
    const std::vector<Move> picked = PickAll(pos.get());
    EXPECT_EQ(picked.front(), killer);
    const auto at = std::find(picked.begin(), picked.end(), capture) - picked.begin();
    EXPECT_EQ(at, static_cast<ptrdiff_t>(picked.size()) - 1);
}

TEST_F(Ordering, HistoryStaysInItsBoundsByItself) {
    TestPosition pos(fen_opn);
    InitMoveOrderingTables(pos.thread());
    const MoveEntry entry{MakeMoveValue(12, 28), 1, 0, 0, 0};
    const int16_t& h = HistoryOf(pos.thread(), entry);
    EXPECT_EQ(h, 2048);
    HistoryInc(pos.thread(), entry);
    EXPECT_EQ(h, 2144);
    HistoryDec(pos.thread(), entry);
    EXPECT_EQ(h, 2128);
    for (int i = 0; i < 5000; ++i)
        HistoryInc(pos.thread(), entry);
    EXPECT_EQ(h, 8129);
    for (int i = 0; i < 5000; ++i)
        HistoryDec(pos.thread(), entry);
    EXPECT_EQ(h, 127);
}

TEST_F(Ordering, KillersKeepTwoAndSortOutChecksAndNullMoves) {
    TestPosition pos(fen_opn);
    InitMoveOrderingTables(pos.thread());
    PlyFrame& frame = pos->frames[1];
    pos->last_move = 7;
    for (const Move move : {Move{1}, Move{2}, Move{2}})
        UpdateKillers(pos.get(), 1, move, false);
    EXPECT_EQ(frame.killer1, 2);
    EXPECT_EQ(frame.killer2, 1);
    UpdateKillers(pos.get(), 1, 3, true);
    EXPECT_EQ(frame.check_killer, 3);
    pos->last_move = NO_MOVE;
    UpdateKillers(pos.get(), 1, 4, false);
    EXPECT_EQ(frame.null_killer, 4);
    EXPECT_EQ(frame.killer1, 2);
}

TEST_F(Ordering, MateTestKnowsMateStalemateAndTheRest) {
    const std::map<std::string, int> rows = {
        {fen_opn, 0},
        {"7k/5Q2/6K1/8/8/8/8/8 b - -", 2},
        {"7k/6Q1/6K1/8/8/8/8/8 b - -", 1},
        {"4k3/4r3/8/8/8/5n2/3PPP2/3QKR2 w - -", 1},  // double check, no king move
        {"k7/p7/P7/8/8/8/r7/1r5K w - -", 1},         // back rank
        {"7k/8/8/8/8/8/5r2/K6b w - -", 0},
        {"8/8/8/8/8/k7/p7/K7 w - -", 2},
    };
    for (const auto& [fen, result] : rows) {
        TestPosition pos(fen);
        InitMoveOrderingTables(pos.thread());
        EXPECT_EQ(IsMate(pos.get(), InCheck(*pos)), result) << fen;
    }
}

}  // namespace vrel
