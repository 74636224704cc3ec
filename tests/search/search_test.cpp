#include "search/search.h"

#include <string>
#include <vector>

#include "board/fen.h"
#include "board/make_move.h"
#include "eval/personality.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "search/root.h"
#include "search/search_control.h"
#include "search/search_report.h"
#include "search/selectivity.h"
#include "search/time_control.h"
#include "search/transposition.h"
#include "support/engine.h"

namespace vrel {

namespace {

class SearchTest : public EngineTest {
protected:
    void TearDown() override {
        PBlock.multipv = 1;
        PBlock.max_nodes = 0;
        PBlock.noise = 0.0;
    }
};

// Searches the game position on this thread as worker 1.
const SearchThread& SearchGame(int depth) {
    PBlock.noise = SILENT;
    PBlock.max_depth = static_cast<int8_t>(depth);
    PBlock.request = STATE_THINKING;
    PBlock.use_hash = 1;
    ClearTTable();
    InitSearch(STATE_IDLE);
    SearchIterations(1);
    PBlock.request = 0;
    PBlock.state = STATE_IDLE;
    return *GetThread(1);
}

const SearchThread& SearchFen(const std::string& fen, int depth) {
    SetPosition(GamePosition(), fen.c_str());
    return SearchGame(depth);
}

void Play(const char* text) {
    const int from = (text[0] - 'a') + 8 * (text[1] - '1');
    const int to = (text[2] - 'a') + 8 * (text[3] - '1');
    PlayGameMove(GamePosition(), MakeMoveValue(from, to));
}

std::string Published() {
    MoveText text;
    return MoveToStr(PBlock.pv[1], text.data());
}

}  // namespace

TEST_F(SearchTest, FindsMatesAndReportsTheirDistance) {
    SearchFen("6k1/5ppp/8/8/8/8/8/R3K3 w Q -", 5);
    EXPECT_EQ(Published(), "a1a8");
    EXPECT_EQ(PBlock.score, 9998);
    SearchFen("7k/8/8/8/8/8/R7/1R2K3 w - -", 6);
    EXPECT_EQ(PBlock.score, 9996);
    // At depth 1 the widened bound can't move any further; the search ends all the same.
    SearchFen("6k1/5ppp/8/8/8/8/8/R3K3 w Q -", 1);
    EXPECT_EQ(PBlock.score, 9998);
    EXPECT_EQ(PBlock.stop, STOP_TIME);
}

TEST_F(SearchTest, RootWithoutAMove) {
    EXPECT_EQ(SearchFen("7k/5Q2/6K1/8/8/8/8/8 b - -", 4).score, 0);
    EXPECT_EQ(PBlock.stop, STOP_NO_MOVE);
    EXPECT_EQ(PBlock.pv[1], NO_MOVE);
    EXPECT_EQ(SearchFen("7k/6Q1/6K1/8/8/8/8/8 b - -", 4).score, -9999);
}

TEST_F(SearchTest, DepthZeroIsAQuiescenceSearch) {
    // The queen hangs: standing pat is not the whole truth.
    const SearchThread& thread = SearchFen("4k3/8/8/3q4/8/4N3/8/4K3 w - -", 0);
    EXPECT_GT(thread.score, thread.root_eval + 500);
    EXPECT_EQ(PBlock.depth, 0);
    EXPECT_EQ(SearchFen("4k3/8/8/8/8/8/4r3/4K3 w - -", 0).score, NO_SCORE);
}

TEST_F(SearchTest, LosingSideTakesTheThirdRepetition) {
    SetPosition(GamePosition(), "6k1/5ppp/8/8/8/8/5PPP/3Q2K1 w - -");
    for (const char* move : {"d1d2", "g8h8", "d2d1", "h8g8", "d1d2", "g8h8", "d2d1"})
        Play(move);
    SearchGame(4);
    EXPECT_EQ(Published(), "h8g8");
    EXPECT_EQ(PBlock.score, 0);
}

TEST_F(SearchTest, MateCountsOnTheMoveThatEndsTheFifty) {
    SetPosition(GamePosition(), "6k1/5ppp/8/8/8/8/8/RN2K3 w - -");
    GamePosition()->fifty = 100;
    SearchGame(3);
    EXPECT_EQ(Published(), "a1a8");
    EXPECT_EQ(PBlock.score, 9998);
}

TEST_F(SearchTest, NodeLimitEndsTheSearch) {
    PBlock.max_nodes = 2000;
    SearchFen(fen_opn, 30);
    EXPECT_GT(GetThread(1)->nodes, 2000u);
    EXPECT_LT(GetThread(1)->nodes, 100000u);
    EXPECT_NE(PBlock.pv[1], NO_MOVE);
}

TEST_F(SearchTest, SeveralLinesStandInOrder) {
    PBlock.multipv = 3;
    SearchFen("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", 7);
    // The root list begins with the lines, each move once.
    const MoveEntry* list = GetThread(1)->frames[1].first;
    EXPECT_EQ(list[0].move, PBlock.pv[1]);
    EXPECT_NE(list[0].move, list[1].move);
    EXPECT_NE(list[1].move, list[2].move);
}

TEST_F(SearchTest, TheSameSearchTwiceIsTheSame) {
    const uint64_t first = SearchFen("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 9).nodes;
    EXPECT_EQ(SearchFen("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -", 9).nodes, first);
}

TEST_F(SearchTest, RootOrderIsLogarithmic) {
    EXPECT_EQ(RootSortValue(0), 120);
    EXPECT_EQ(RootSortValue(1), 120);
    EXPECT_EQ(RootSortValue(100), 189);
    EXPECT_EQ(RootSortValue(-100), 51);
    EXPECT_EQ(RootSortValue(1000), 223);
    EXPECT_EQ(RootSortValue(-1000), 17);
    EXPECT_EQ(RootSortValue(9998), 249);
    EXPECT_EQ(RootSortValue(-9999), 3);
    EXPECT_EQ(RootSortValue(-11007), 1);
    EXPECT_EQ(AspirationWidth(0, 1), 60);
    EXPECT_EQ(AspirationWidth(-170, 10), 34);
}

TEST_F(SearchTest, ReductionTables) {
    const auto row = [](const auto& table, size_t depth) {
        std::string text;
        for (int value : table[depth])
            text += static_cast<char>('0' + value);
        return text;
    };
    EXPECT_EQ(row(Personality.LMR_table1, 4), "00000000011111111111111111111111");
    EXPECT_EQ(row(Personality.LMR_table1, 12), "00111111111111111112222222222222");
    EXPECT_EQ(row(Personality.LMR_table2, 3), "01111111111111111111111111111111");
    EXPECT_EQ(row(Personality.LMR_table2, 6), "01111222222222222223333333333333");
    EXPECT_EQ(row(Personality.LMR_table2, 40), "01233333333333333333333333333333");
}

TEST_F(SearchTest, LineIsCopiedUpToItsEnd) {
    PvLine pv{}, child{};
    child[3] = 33;
    child[4] = 44;
    child[6] = 66;  // behind the end
    UpdatePV(pv.data(), child.data(), 22, 2);
    EXPECT_EQ(pv[2], 22);
    EXPECT_EQ(pv[4], 44);
    EXPECT_EQ(pv[5], NO_MOVE);
    EXPECT_EQ(pv[6], NO_MOVE);
}

// The static evaluation lies beyond every bound, so that the first window is empty.
TEST_F(SearchTest, HugeEvaluationAtDepthOneEnds) {
    EXPECT_LT(SearchFen("5k2/4pppp/8/8/3Q4/QQ1Q4/QQQQQQ2/KQQ2R2 b - -", 1).root_eval, -9999);
    EXPECT_NE(PBlock.pv[1], NO_MOVE);
}

// Boards that no game leads to: the search takes them as they come.
TEST_F(SearchTest, OddBoardsAreSearched) {
    for (const char* fen : {
             "QQQQQQQQ/QQQQQQQQ/8/8/8/8/8/k6K w - -",
             "NNNNNNNN/NN6/8/8/8/8/nnnnnnnn/k5nK w - -",
             "PPPPPPPP/8/8/8/8/7k/8/pppppppK w - -",
             "R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - -",  // 218 moves
             "4k3/8/8/8/8/8/8/4K3 w KQkq e3",
             "rrrrrrrr/rrrrrrrk/8/8/8/8/PPPPPPPP/K6R w K a6",
         })
        EXPECT_NE(SearchFen(fen, 4).nodes, 0u) << fen;
}

}  // namespace vrel
