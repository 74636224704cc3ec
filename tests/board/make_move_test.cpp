#include "board/make_move.h"

#include "board/fen.h"
#include "board/keys.h"
#include "support/engine.h"
#include "support/moves.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using MakeMoveTest = EngineTest;

void ExpectKeysOfTheBoard(const Position& pos) {
    Position copy = pos;
    SetHash(&copy);
    ASSERT_EQ(copy.hash, pos.hash) << FenOf(pos);
    ASSERT_EQ(copy.pawn_hash, pos.pawn_hash) << FenOf(pos);
}

// Makes and takes back every pseudo-legal move of the tree; what the oracle makes of a move must be the same board.
void WalkTree(Position* pos, int depth) {
    const Position before = *pos;
    const oracle::Board board = OracleBoard(before);
    for (const MoveEntry& entry : AllMoves(pos)) {
        MakeMove(pos, entry.move);
        const std::string text = FenOf(before) + ' ' + oracle::MoveText(OracleMove(entry.move));
        ASSERT_TRUE(PositionIsConsistent(*pos)) << text;
        ExpectKeysOfTheBoard(*pos);
        oracle::Board after = oracle::AfterMove(board, OracleMove(entry.move));
        if (IsCastling(entry))
            after.quiet_plies = 0;  // as no rule demands
        ASSERT_EQ(OracleBoard(*pos), after) << text;
        ASSERT_EQ(pos->last_move, entry.move);
        if (depth > 1)
            WalkTree(pos, depth - 1);
        UnmakeMove(pos);
        ASSERT_TRUE(SamePosition(*pos, before)) << text;
        if (::testing::Test::HasFatalFailure())
            return;
    }
}

TEST_F(MakeMoveTest, AgreesWithTheRulesAndTakesBackEverything) {
    TestPosition pos(fen_opn);
    for (const NamedPosition& row : kTrickyPositions) {
        pos.Set(row.fen);
        WalkTree(pos.get(), 2);
    }
    for (const std::string& fen : ManyPositions(300, 300)) {
        pos.Set(fen);
        WalkTree(pos.get(), 1);
    }
}

TEST_F(MakeMoveTest, WholeGamesAreTakenBackToTheirStart) {
    TestPosition pos(fen_opn);
    for (uint32_t seed = 0; seed < 20; ++seed) {
        pos.Set(fen_opn);
        const Position start = *pos;
        oracle::Board board = OracleBoard(start);
        for (const oracle::Board& next : RandomGame(fen_opn, seed, 60)) {
            for (const oracle::Move& move : oracle::LegalMoves(board)) {
                if (oracle::AfterMove(board, move) != next)
                    continue;
                MakeMove(pos.get(), EngineMove(move));
                break;
            }
            board = next;
            ASSERT_EQ(FenOf(*pos), oracle::WriteFen(board));
        }
        while (pos->game_ply > 0)
            UnmakeMove(pos.get());
        EXPECT_TRUE(SamePosition(*pos, start));
    }
}

TEST_F(MakeMoveTest, NullMoveTurnsTheSideAndNothingElse) {
    TestPosition pos("4k3/8/8/3pP3/8/8/8/R3K3 w Q d6");
    MakeMove(pos.get(), Coord("a1a2"));
    const Position before = *pos;
    MakeNullMove(pos.get());
    EXPECT_EQ(pos->stm, before.stm ^ 1);
    EXPECT_EQ(pos->hash, before.hash);
    EXPECT_EQ(pos->board, before.board);
    EXPECT_EQ(pos->castling, before.castling);
    EXPECT_EQ(pos->ep_square, NO_SQUARE);
    EXPECT_EQ(pos->fifty, 0);
    EXPECT_EQ(pos->last_move, NO_MOVE);
    EXPECT_EQ(pos->ply, before.ply + 1);
    EXPECT_EQ(pos->undo[pos->game_ply - 1].move, NO_MOVE);
    UnmakeNullMove(pos.get());
    EXPECT_TRUE(SamePosition(*pos, before));
}

TEST_F(MakeMoveTest, EveryDoubleStepLeavesASquareBehind) {
    TestPosition pos(fen_opn);
    MakeMove(pos.get(), Coord("e2e4"));
    EXPECT_EQ(pos->ep_square, SquareNamed("e3"));
    MakeMove(pos.get(), Coord("a7a5"));
    EXPECT_EQ(pos->ep_square, SquareNamed("a6"));
    MakeMove(pos.get(), Coord("g1f3"));
    EXPECT_EQ(pos->ep_square, NO_SQUARE);
}

TEST_F(MakeMoveTest, CountsPliesSinceTheLastReset) {
    TestPosition pos("r3k2r/8/8/8/8/8/7P/R3K2R w KQkq -");
    MakeMove(pos.get(), Coord("a1b1"));
    EXPECT_EQ(pos->fifty, 1);
    MakeMove(pos.get(), Coord("e8e7"));
    EXPECT_EQ(pos->fifty, 2);
    MakeMove(pos.get(), Coord("e1g1"));
    EXPECT_EQ(pos->fifty, 0) << "castling resets the count";
    MakeMove(pos.get(), Coord("h8g8"));
    EXPECT_EQ(pos->fifty, 1);
    MakeMove(pos.get(), Coord("h2h3"));
    EXPECT_EQ(pos->fifty, 0);
}

struct RightsRow {
    const char* move;
    int left;
};

TEST_F(MakeMoveTest, RightsGoWithTheKingAndTheCorners) {
    constexpr RightsRow kRows[] = {
        {"a1b1", WHITE_SHORT | BLACK_SHORT | BLACK_LONG},
        {"h1g1", WHITE_LONG | BLACK_SHORT | BLACK_LONG},
        {"e1f1", BLACK_SHORT | BLACK_LONG},
        {"a1a8", WHITE_SHORT | BLACK_SHORT},
        {"h1h8", WHITE_LONG | BLACK_LONG},
        {"e1c1", BLACK_SHORT | BLACK_LONG},
    };
    for (const RightsRow& row : kRows) {
        TestPosition pos("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
        MakeMove(pos.get(), Coord(row.move));
        EXPECT_EQ(pos->castling, row.left) << row.move;
    }
}

TEST_F(MakeMoveTest, EnPassantRecordsNoCapture) {
    TestPosition pos("4k3/8/8/3pP3/8/8/8/4K3 w - d6");
    MakeMove(pos.get(), Coord("e5d6"));
    EXPECT_EQ(pos->undo[0].captured, NO_PIECE);
    EXPECT_EQ(pos->bb[BLACK][PAWN], 0U);
    UnmakeMove(pos.get());
    EXPECT_EQ(FenOf(*pos), "4k3/8/8/3pP3/8/8/8/4K3 w - d6");
    EXPECT_EQ(pos->last_move, NO_MOVE);
}

std::string RowText(const Position& pos, int side, int type) {
    std::string text;
    for (const uint8_t sq : pos.plist[static_cast<size_t>(side)][static_cast<size_t>(type)]) {
        if (sq == NO_SQUARE)
            break;
        text += {static_cast<char>('a' + sq % 8), static_cast<char>('1' + sq / 8), ' '};
    }
    return text;
}

// The order of the rows decides the order of the moves, and so what the search finds first.
TEST_F(MakeMoveTest, RowsKeepTheirOrderButForWhatMoves) {
    TestPosition pos("4k3/8/8/8/8/2p5/1N1N1N2/1N2K3 w - -");
    ASSERT_EQ(RowText(*pos, WHITE, KNIGHT), "b2 d2 f2 b1 ");
    MakeMove(pos.get(), Coord("d2c4"));
    EXPECT_EQ(RowText(*pos, WHITE, KNIGHT), "b2 c4 f2 b1 ");
    MakeMove(pos.get(), Coord("c3b2"));
    EXPECT_EQ(RowText(*pos, WHITE, KNIGHT), "c4 f2 b1 ");
    UnmakeMove(pos.get());
    EXPECT_EQ(RowText(*pos, WHITE, KNIGHT), "c4 f2 b1 b2 ") << "what was taken comes back at the end";
    UnmakeMove(pos.get());
    EXPECT_EQ(RowText(*pos, WHITE, KNIGHT), "d2 f2 b1 b2 ");
}

// A game far beyond the undo stack: the newest past is kept, and enough of it for any repetition.
TEST_F(MakeMoveTest, LongGamesKeepTheirRecentPast) {
    TestPosition pos("r3k3/8/8/8/8/8/8/4K2R w - -");
    const std::array<Move, 4> cycle = {Coord("h1h2"), Coord("a8a7"), Coord("h2h1"), Coord("a7a8")};
    std::array<uint64_t, 4> keys{};
    for (size_t i = 0; i < 3000; ++i) {
        if (i < 4)
            keys[i] = pos->hash;
        PlayGameMove(pos.get(), cycle[i % 4]);
        ASSERT_LT(pos->game_ply, UNDO_RECORDS - FRAMES);
        ASSERT_EQ(pos->ply, 1);
        for (int back = 1; back <= std::min<int>(pos->game_ply, 110); ++back)
            ASSERT_EQ(pos->undo[pos->game_ply - back].hash, keys[(i + 5 - static_cast<size_t>(back % 4)) % 4]);
    }
    EXPECT_GE(pos->game_ply, 110);
    const Position now = *pos;
    TakeBackGameMove(pos.get());
    EXPECT_EQ(pos->hash, keys[3]);
    PlayGameMove(pos.get(), cycle[3]);
    EXPECT_TRUE(SamePosition(*pos, now));
}

TEST_F(MakeMoveTest, OnlyOwnPiecesToSquaresOfNoFriendCanBeMade) {
    const TestPosition pos(fen_opn);
    EXPECT_TRUE(MoveCanBeMade(*pos, Coord("e2e4")));
    EXPECT_FALSE(MoveCanBeMade(*pos, Coord("e7e5"))) << "the other side's";
    EXPECT_FALSE(MoveCanBeMade(*pos, Coord("e3e4"))) << "nobody's";
    EXPECT_FALSE(MoveCanBeMade(*pos, Coord("a1a2"))) << "onto a friend";
    EXPECT_FALSE(MoveCanBeMade(*pos, Coord("b1c3", PROMOTE_QUEEN))) << "a knight promotes";
}

}  // namespace
}  // namespace vrel
