#include "board/fen.h"

#include "board/keys.h"
#include "support/engine.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using FenTest = EngineTest;

TEST_F(FenTest, StartPosition) {
    const TestPosition pos(fen_opn);
    EXPECT_EQ(FenOf(*pos), fen_opn);
    for (size_t side = 0; side < 2; ++side) {
        EXPECT_EQ(pos->npv[side], 32);
        EXPECT_EQ(pos->msig[side], 0x12228U);
    }
    EXPECT_EQ(pos->ep_square, NO_SQUARE);
    EXPECT_EQ(pos->castling, 15);
    EXPECT_EQ(pos->fifty, 0);
    EXPECT_EQ(pos->game_ply, 0);
    EXPECT_EQ(pos->ply, 1);
    EXPECT_TRUE(PositionIsConsistent(*pos));
}

TEST_F(FenTest, EmptyBoard) {
    const TestPosition pos("8/8/8/8/8/8/8/8 w - -");
    EXPECT_EQ(Occupied(*pos), 0U);
    EXPECT_EQ(pos->hash, 0U);
    EXPECT_EQ(pos->pawn_hash, 0U);
    EXPECT_EQ(FenOf(*pos), "8/8/8/8/8/8/8/8 w - -");
}

struct Reading {
    const char* name;
    const char* text;
    const char* meaning;
};

// Read after a position with black to move.
constexpr Reading kReadings[] = {
    {"counters are left alone", "4k3/8/8/8/8/8/8/4K3 w - - 37 60", "4k3/8/8/8/8/8/8/4K3 w - -"},
    {"operations are left alone", "4k3/8/8/8/8/8/8/4K2R w K - bm Rh8; id \"x\";", "4k3/8/8/8/8/8/8/4K2R w K -"},
    {"other sides keep the side to move", "4k3/8/8/8/8/8/8/4K3 x - -", "4k3/8/8/8/8/8/8/4K3 b - -"},
    {"blanks between fields", "4k3/8/8/8/8/8/8/4K3 w    KQ     e3", "4k3/8/8/8/8/8/8/4K3 w KQ e3"},
    {"rights in any order", "4k3/8/8/8/8/8/8/4K3 w q-Kx -", "4k3/8/8/8/8/8/8/4K3 w Kq -"},
    {"ranks needn't be complete", "4k/1p//3P/8/8/8/4K w - -", "4k3/1p6/8/3P4/8/8/8/4K3 w - -"},
    {"a digit stops on the h-file", "6k1/9p/44p/8/8/8/8/4K3 w - -", "6k1/7p/7p/8/8/8/8/4K3 w - -"},
    {"digit 0 moves nothing", "0k000p5/8/8/8/8/8/8/4K3 w - -", "kp6/8/8/8/8/8/8/4K3 w - -"},
    {"other characters are empty squares", "x?k.*p/8/8/8/8/8/8/4K3 w - -", "2k2p2/8/8/8/8/8/8/4K3 w - -"},
    {"a ninth piece finds its square taken", "rnbqkbnrQ/8/8/8/8/8/8/4K3 w - -", "rnbqkbnr/8/8/8/8/8/8/4K3 w - -"},
    {"a ninth rank is passed over", "4k3/8/8/8/8/8/8/4K3/QQQQQQQQ w - -", "4k3/8/8/8/8/8/8/4K3 w - -"},
    {"far too many ranks", "////////////////////Q///////// w - -", "8/8/8/8/8/8/8/8 w - -"},
    {"en passant file without a rank", "4k3/8/8/8/8/8/8/4K3 w - d", "4k3/8/8/8/8/8/8/4K3 w - d1"},
    {"the last en passant letter counts", "4k3/8/8/8/8/8/8/4K3 w - ad6", "4k3/8/8/8/8/8/8/4K3 w - d6"},
    {"board only", "4k3/8/8/8/8/8/8/4K3", "4k3/8/8/8/8/8/8/4K3 b - -"},
};

TEST_F(FenTest, TextIsTakenAsFarAsItGoes) {
    TestPosition pos(fen_opn);
    for (const Reading& row : kReadings) {
        pos.Set("8/8/8/8/8/8/8/8 b - -");
        pos.Set(row.text);
        EXPECT_EQ(FenOf(*pos), row.meaning) << row.name;
        EXPECT_EQ(pos->fifty, 0) << row.name;
        EXPECT_TRUE(PositionIsConsistent(*pos)) << row.name;
    }
}

TEST_F(FenTest, WritesWhatItReads) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(300, 300)) {
        pos.Set(fen);
        ASSERT_EQ(FenOf(*pos), fen);
        ASSERT_EQ(oracle::WriteFen(OracleBoard(*pos)), fen);
        ASSERT_TRUE(PositionIsConsistent(*pos)) << fen;
    }
}

TEST_F(FenTest, AnyBytesGiveABoardThatReadsBack) {
    TestPosition pos(fen_opn);
    std::mt19937 random(4711);
    constexpr char kLikely[] = "/12345678pnbrqkPNBRQKwb-  KQkqabcdefgh36\t\x7f\xff.";
    for (int round = 0; round < 3000; ++round) {
        std::string text(RandomBelow(&random, 120), ' ');
        for (char& c : text)
            c = kLikely[RandomBelow(&random, sizeof kLikely - 1)];
        pos.Set(text);
        ASSERT_TRUE(PositionIsConsistent(*pos)) << text;
        const Position read = *pos;
        pos.Set(FenOf(read));
        ASSERT_EQ(pos->board, read.board) << text;
        ASSERT_TRUE(SamePosition(*pos, read)) << text << '\n' << FenOf(read);
    }
}

TEST_F(FenTest, EveryBeginningOfATextIsRead) {
    TestPosition pos(fen_opn);
    for (const NamedPosition& row : kTrickyPositions) {
        const std::string fen = row.fen;
        for (size_t length = 0; length < fen.size(); ++length) {
            pos.Set(fen.substr(0, length));
            ASSERT_TRUE(PositionIsConsistent(*pos)) << fen.substr(0, length);
        }
    }
}

TEST_F(FenTest, RowsHoldAsManyPiecesAsFit) {
    TestPosition pos("QQQQQQQQ/QQQQQQQQ/QQQQQQQQ/3k4/8/4K3/8/8 w - -");
    EXPECT_TRUE(PositionIsConsistent(*pos));
    EXPECT_EQ(CountOf(*pos, WHITE, QUEEN), MAX_ROW);
    EXPECT_EQ(CountBits(pos->bb[WHITE][QUEEN]), MAX_ROW);
}

TEST_F(FenTest, KeysComeFromTheBoardAlone) {
    TestPosition pos("8/8/8/8/8/8/8/8 w - -");
    for (const char* fen : {"r3k2r/8/8/8/4P3/8/8/R3K2R b KQkq e3", "r3k2r/8/8/8/4P3/8/8/R3K2R w - -"}) {
        pos.Set(fen);
        uint64_t hash = 0;
        for (size_t sq = 0; sq < 64; ++sq)
            if (pos->board[sq])
                hash ^= rtable[static_cast<size_t>(pos->board[sq]) * 64 + sq];
        EXPECT_EQ(pos->hash, hash);
        EXPECT_EQ(pos->pawn_hash, rtable[1 * 64 + 28]);
    }
}

TEST_F(FenTest, FullKeyTellsSideRightsAndEnPassantApart) {
    TestPosition pos("r3k2r/8/8/8/4P3/8/8/R3K2R w KQkq -");
    const uint64_t white = GetFullHash(*pos);
    pos.Set("r3k2r/8/8/8/4P3/8/8/R3K2R b KQkq -");
    const uint64_t black = GetFullHash(*pos);
    EXPECT_EQ(white, ~black);
    pos.Set("r3k2r/8/8/8/4P3/8/8/R3K2R b KQk -");
    const uint64_t fewer_rights = GetFullHash(*pos);
    pos.Set("r3k2r/8/8/8/4P3/8/8/R3K2R b KQkq e3");
    const uint64_t passed = GetFullHash(*pos);
    EXPECT_NE(fewer_rights, black);
    EXPECT_NE(passed, black);
    EXPECT_NE(passed, fewer_rights);
}

TEST_F(FenTest, KeysAreFarApartAndDrawnAnew) {
    const auto earlier = rtable;
    FillKeyTables();
    EXPECT_NE(rtable, earlier);
    for (size_t i = 0; i < rtable.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const uint64_t x = rtable[i] ^ rtable[j];
            ASSERT_GT(CountBits(x & 0xffffffffU), 4) << i << ' ' << j;
            ASSERT_GT(CountBits(x >> 32), 4) << i << ' ' << j;
        }
    }
}

}  // namespace
}  // namespace vrel
