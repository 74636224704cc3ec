// Counts of whole move trees against known figures.
#include "tools/perft.h"

#include <cstdlib>
#include <fstream>

#include "board/fen.h"
#include "support/engine.h"

namespace vrel {
namespace {

using PerftTest = EngineTest;
using PerftDeep = EngineTest;

uint64_t Leaves(const TestPosition& pos, int depth) {
    pos.thread()->nodes = 0;
    Perft(pos.thread(), pos->stm, pos->ply, depth);
    return pos.thread()->nodes;
}

// Checks each line "fen ;D1 20 ;D2 400 ..." down to `depth`, trees of over `most` leaves left out.
void CheckFile(int depth, uint64_t most) {
    std::ifstream file(TEST_DATA "/perft.epd");
    ASSERT_TRUE(file);
    TestPosition pos(fen_opn);
    std::string line;
    int lines = 0;
    while (std::getline(file, line)) {
        const std::string fen = line.substr(0, line.find(" ;"));
        pos.Set(fen);
        for (size_t at = line.find(";D"); at != std::string::npos; at = line.find(";D", at + 1)) {
            const int ply = line[at + 2] - '0';
            const uint64_t expected = std::strtoull(line.c_str() + at + 4, nullptr, 10);
            if (ply <= depth && expected <= most) {
                EXPECT_EQ(Leaves(pos, ply), expected) << fen << " depth " << ply;
            }
        }
        ++lines;
    }
    EXPECT_GT(lines, 100);
}

TEST_F(PerftTest, SmallTreesOfManyPositions) { CheckFile(5, 100000); }

TEST_F(PerftDeep, AllPositionsToDepthFive) { CheckFile(5, ~0ULL); }

TEST_F(PerftTest, NoDepthCountsNothing) {
    const TestPosition pos(fen_opn);
    EXPECT_EQ(Leaves(pos, 0), 0U);
    EXPECT_EQ(Leaves(pos, -1), 0U);
    EXPECT_EQ(Leaves(pos, 1), 20U);
    EXPECT_EQ(FenOf(*pos), fen_opn);
}

struct Total {
    const char* fen;
    int depth;
    uint64_t leaves;
};

TEST_F(PerftDeep, GreatTotals) {
    constexpr Total kTotals[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 6, 119060324},
        {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 5, 193690690},
        {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 7, 178633661},
        {"r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -", 5, 15833292},
        {"rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -", 5, 89941194},
        {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - -", 5, 164075551},
    };
    for (const Total& row : kTotals)
        EXPECT_EQ(Leaves(TestPosition(row.fen), row.depth), row.leaves) << row.fen;
}

}  // namespace
}  // namespace vrel
