#include "tools/perft.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

uint64_t Leaves(const TestPosition& position, int depth) {
    SearchThread* thread = position.thread();
    thread->nodes = 0;
    Perft(thread, position->stm, 1, depth);
    return thread->nodes;
}

struct Count {
    int depth;
    uint64_t leaves;
};

// A line of the data file: a position and the counts of some depths.
struct CountedPosition {
    std::string fen;
    std::vector<Count> counts;
};

std::vector<CountedPosition> ReadCounted() {
    std::vector<CountedPosition> positions;
    std::ifstream file(TEST_DATA "/perft.epd");
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        CountedPosition position;
        std::getline(fields, position.fen, ';');
        char letter;
        Count count;
        while (fields >> letter >> count.depth >> count.leaves) {
            position.counts.push_back(count);
            fields >> letter;  // the next ";"
        }
        positions.push_back(position);
    }
    return positions;
}

class PerftTest : public EngineTest {
protected:
    static void CheckData(int deepest) {
        const std::vector<CountedPosition> positions = ReadCounted();
        ASSERT_GT(positions.size(), 100u);
        for (const CountedPosition& counted : positions) {
            const TestPosition position(counted.fen);
            ASSERT_FALSE(counted.counts.empty()) << counted.fen;
            for (const Count& count : counted.counts) {
                if (count.depth > deepest)
                    continue;
                EXPECT_EQ(Leaves(position, count.depth), count.leaves) << counted.fen << " depth " << count.depth;
            }
        }
    }
};

TEST_F(PerftTest, CountsKnownTotals) { CheckData(4); }

TEST_F(PerftTest, CountsWhatTheRulesAllow) {
    for (const NamedPosition& named : kTrickyPositions) {
        const TestPosition position(named.fen);
        EXPECT_EQ(Leaves(position, 2), oracle::CountLeaves(OracleBoard(*position), 2)) << named.name;
    }
}

TEST_F(PerftTest, CountsNothingWithoutADepth) {
    const TestPosition position(kTrickyPositions[0].fen);
    for (const int depth : {0, -1, -1000})
        EXPECT_EQ(Leaves(position, depth), 0u);
}

TEST_F(PerftTest, AddsToTheNodesThatAreThere) {
    const TestPosition position(kTrickyPositions[0].fen);
    position.thread()->nodes = 7;
    Perft(position.thread(), WHITE, 1, 2);
    EXPECT_EQ(position.thread()->nodes, 407u);
}

TEST_F(PerftTest, LeavesThePositionAsItWas) {
    for (const NamedPosition& named : kTrickyPositions) {
        const TestPosition position(named.fen);
        const Position before = *position;
        Leaves(position, 3);
        EXPECT_TRUE(SamePosition(*position, before)) << named.name;
    }
}

TEST_F(PerftTest, SurvivesBoardsThatNoGameReaches) {
    for (const NamedPosition& named : kAbsurdPositions) {
        const TestPosition position(named.fen);
        const Position before = *position;
        Leaves(position, 3);
        EXPECT_TRUE(SamePosition(*position, before)) << named.name;
    }
}

using PerftDeep = PerftTest;

TEST_F(PerftDeep, CountsKnownTotals) { CheckData(5); }

struct BigTotal {
    const char* fen;
    int depth;
    uint64_t leaves;
};

constexpr BigTotal kBigTotals[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 6, 119060324},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 5, 193690690},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 7, 178633661},
    {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 5, 15833292},
    {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 5, 89941194},
    {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - -", 5, 164075551},
};

TEST_F(PerftDeep, CountsBigTotals) {
    for (const BigTotal& total : kBigTotals)
        EXPECT_EQ(Leaves(TestPosition(total.fen), total.depth), total.leaves) << total.fen;
}

}  // namespace
}  // namespace vrel
