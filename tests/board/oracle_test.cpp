// The judge of the other tests is itself held against known counts.
#include "support/oracle.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

struct Count {
    const char* fen;
    int depth;
    uint64_t leaves;
};

constexpr Count kCounts[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 3, 8902},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 3, 97862},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 4, 43238},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 3, 9467},
    {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 3, 62379},
};

TEST(Oracle, CountsKnownTrees) {
    for (const Count& row : kCounts) {
        oracle::Board board;
        ASSERT_TRUE(oracle::ReadFen(row.fen, &board));
        EXPECT_EQ(oracle::CountLeaves(board, row.depth), row.leaves) << row.fen;
    }
}

TEST(Oracle, WritesWhatItReads) {
    for (const std::string& fen : ManyPositions(200, 200)) {
        oracle::Board board;
        ASSERT_TRUE(oracle::ReadFen(fen, &board)) << fen;
        EXPECT_EQ(oracle::WriteFen(board), fen);
        EXPECT_EQ(oracle::Mirrored(oracle::Mirrored(board)), board) << fen;
    }
}

TEST(Oracle, RefusesWhatIsNoFen) {
    for (const char* text : {"", "8/8/8/8/8/8/8/8", "8/8/8/8/8/8/8 w - -", "9/8/8/8/8/8/8/8 w - -",
                             "8/8/8/8/8/8/8/8 x - -", "8/8/8/8/8/8/8/7x w - -", "8/8/8/8/8/8/8/8 w A -",
                             "8/8/8/8/8/8/8/8 w - e", "ppppppppp/8/8/8/8/8/8/8 w - -"}) {
        oracle::Board board;
        EXPECT_FALSE(oracle::ReadFen(text, &board)) << text;
    }
}

TEST(Oracle, TrickyPositionsAreLegal) {
    for (const NamedPosition& row : kTrickyPositions) {
        oracle::Board board;
        ASSERT_TRUE(oracle::ReadFen(row.fen, &board)) << row.name;
        EXPECT_FALSE(oracle::InCheck(board, !board.white_to_move)) << row.name;
        for (const char king : {'K', 'k'})
            EXPECT_EQ(std::count(board.squares.begin(), board.squares.end(), king), 1) << row.name;
    }
}

}  // namespace
}  // namespace vrel
