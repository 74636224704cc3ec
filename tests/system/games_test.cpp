#include <gtest/gtest.h>

#include "support/referee.h"

namespace vrel {

// A few whole games over pipes; the long series is the soak's.
TEST(Games, EngineAgainstItselfIsCleanWithOneAndTwoWorkers) {
    for (int workers : {1, 2}) {
        const GameRecord game = PlayGame({.program = VREL_BINARY,
                                          .folder = "games",
                                          .workers = workers,
                                          .base = 1.0,
                                          .increment = 0.02,
                                          .seed = static_cast<unsigned>(workers)});
        EXPECT_TRUE(game.faults.empty()) << game.faults.front();
        EXPECT_GT(game.plies, 20);
    }
}

TEST(Referee, SeesFaults) {
    oracle::Board board;
    ASSERT_TRUE(oracle::ReadFen("4k3/8/8/8/8/8/4P3/4K3 w - - 0 1", &board));
    EXPECT_EQ(CheckInfoLine(board, "info depth 3 time 1 score cp 12 nodes 9 nps 0 pv e2e4 e8d7"), "");
    EXPECT_NE(CheckInfoLine(board, "info depth 3 time 1 score cp 12 nodes 9 nps 0 pv e2e4 e4e5"), "");
    EXPECT_NE(CheckInfoLine(board, "info depth 3 time 1 score mate 2 nodes 9 nps 0 pv e2e4"), "");
    std::string move;
    EXPECT_EQ(CheckBestMove(board, "bestmove e2e4 ponder e8d7", &move), "");
    EXPECT_EQ(move, "e2e4");
    EXPECT_NE(CheckBestMove(board, "bestmove e2e5", &move), "");
    EXPECT_NE(CheckBestMove(board, "bestmove e2e4 ponder e4e5", &move), "");
}

}  // namespace vrel
