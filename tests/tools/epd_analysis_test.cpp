#include "tools/epd_analysis.h"

#include <cmath>
#include <string>

#include "board/fen.h"
#include "board/search_thread.h"
#include "support/playout.h"
#include "tools/expected_result.h"
#include "tools/tool_test.h"

namespace vrel {
namespace {

// A bare knight can't win, a side in check isn't scored without a search, and the others end at depth 1.
constexpr const char* DRAWN = "4k3/8/8/8/8/8/8/KN6 w - - bm Nc3;";
constexpr const char* IN_CHECK = "4k3/8/8/8/8/8/4r3/4K3 w - - tune 0.25;";
constexpr const char* MATE_IN_ONE = "6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Re8+; tune 0.75;";
constexpr const char* OTHER_MOVE = "6k1/5ppp/8/8/8/8/8/K3R3 w - - bm Kb1 Kb2;";
constexpr const char* MATED = "4R1k1/5ppp/8/8/8/8/8/K7 b - - tune 0.125;";
constexpr const char* STALEMATE = "k7/2Q5/8/8/8/8/8/K7 b - - bm Ka7; tune 0.75;";

class EpdAnalysisTest : public ToolTest {
protected:
    // Runs over the lines; the mean error is the result and what was shown is kept.
    double Analyse(const std::string& lines, int depth) {
        WriteFile("suite.epd", lines);
        CopyText(&PBlock.epd_file, "suite.epd");
        PBlock.max_depth = static_cast<int8_t>(depth);
        ::testing::internal::CaptureStdout();
        const double error = Analyze_EPD_File(true);
        shown_ = ::testing::internal::GetCapturedStdout();
        return error;
    }

    bool Shows(const std::string& text) const { return shown_.find(text) != std::string::npos; }

    double Figure(const std::string& name) const {
        const size_t at = shown_.find(name + "= ");
        return at == std::string::npos ? NAN : std::stod(shown_.substr(at + name.size() + 2));
    }

    std::string shown_;
};

std::string Join(std::initializer_list<const char*> lines) {
    std::string text;
    for (const char* line : lines)
        text += std::string(line) + "\n";
    return text;
}

TEST_F(EpdAnalysisTest, AnEmptyFileCountsNothing) {
    EXPECT_EQ(Analyse("", 1), 0.0);
    EXPECT_EQ(shown_,
              "Analyzing suite.epd...\n0 / 0 correct best moves\ntotal nodes= 0\ntotal time= 0.00 seconds\n"
              "avg depth= 0.0\navg nodes= 0.0\nnode_rate= 0\navg bf= 0.00\navg error= 0.00000\n\n");
}

TEST_F(EpdAnalysisTest, AMissingFileGivesOne) {
    CopyText(&PBlock.epd_file, "missing.epd");
    EXPECT_EQ(Analyze_EPD_File(true), 1.0);
    PBlock.max_depth = 0;
    EXPECT_EQ(Analyze_EPD_File(false), 1.0);
}

TEST_F(EpdAnalysisTest, AnUnwritableListOfUnsolvedGivesOne) {
    std::filesystem::create_directory("unsolved.epd");
    EXPECT_EQ(Analyse(Join({DRAWN}), 1), 1.0);
    EXPECT_LT(Analyse(Join({DRAWN}), 0), 1.0);
}

TEST_F(EpdAnalysisTest, DepthZeroScoresWithoutASearch) {
    // A draw by material scores 0 and expects one half, a check expects nothing at all.
    const double error = Analyse(Join({DRAWN, IN_CHECK}), 0);
    EXPECT_DOUBLE_EQ(error, (0.0 + (0.25 - ExpectedResult(-10000))) / 2);
    EXPECT_TRUE(Shows("0 / 2 correct best moves\n"));
    EXPECT_TRUE(Shows("avg error= 0.12500\n\n"));
    EXPECT_EQ(Figure("avg depth"), 0.0);
    EXPECT_EQ(Figure("avg bf"), 2.0);
    EXPECT_FALSE(std::filesystem::exists("unsolved.epd"));
    EXPECT_EQ(PBlock.epd_best, 0xffff);
    EXPECT_EQ(PBlock.use_hash, 0);
}

TEST_F(EpdAnalysisTest, DepthOneFindsMatesAndCountsWhatIsUnsolved) {
    const double error = Analyse(Join({MATE_IN_ONE, MATED, OTHER_MOVE, STALEMATE}), 1);
    // Without a move expected, a position that has none counts as solved.
    EXPECT_TRUE(Shows("3 / 4 correct best moves\n")) << shown_;
    const double mate = std::fabs(0.75 - ExpectedResult(9998));
    const double mated = std::fabs(0.125 - ExpectedResult(-9999));
    const double other = std::fabs(0.5 - ExpectedResult(9998));
    const double stalemate = std::fabs(0.75 - ExpectedResult(0));
    EXPECT_DOUBLE_EQ(error, (mate + mated + other + stalemate) / 4);
    EXPECT_NEAR(Figure("avg error"), error, 0.00001);
    EXPECT_EQ(Figure("avg depth"), 1.0);
    EXPECT_NEAR(Figure("avg nodes"), Figure("total nodes") / 4, 0.05);
    EXPECT_EQ(Figure("avg bf"), 2.0);
    EXPECT_EQ(ReadFile("unsolved.epd"), std::string(OTHER_MOVE) + "\n");
}

TEST_F(EpdAnalysisTest, EveryPositionIsCountedOnce) {
    std::string lines = "# a comment that is long enough\n";
    for (const std::string& fen : RandomPositions(40, 5))
        lines += fen + " tune 0.5;\n";
    Analyse(lines, 1);
    EXPECT_TRUE(Shows(" / 40 correct best moves\n"));
    EXPECT_NEAR(Figure("avg nodes") * 40, Figure("total nodes"), 2.0);
    EXPECT_EQ(Figure("avg depth"), 1.0);
}

TEST_F(EpdAnalysisTest, KeptPositionsGiveWhatTheFileGives) {
    std::string lines;
    int i = 0;
    for (const std::string& fen : RandomPositions(300, 11))
        lines += fen + " tune 0." + std::to_string(i++ % 10) + ";\n";
    GetThread(1)->eval_cache.fill({});
    const double kept = Analyse(lines, 0);
    EXPECT_EQ(Analyse(lines, 0), kept);
    const std::string last = FenOf(*GamePosition());
    PBlock.noise = SILENT - 1;  // shows what is read, so the file serves
    GetThread(1)->eval_cache.fill({});
    EXPECT_EQ(Analyse(lines, 0), kept);
    EXPECT_EQ(FenOf(*GamePosition()), last);
    EXPECT_TRUE(Shows("pos= 300\n"));
}

TEST_F(EpdAnalysisTest, AChangedFileIsReadAgain) {
    EXPECT_EQ(Analyse(Join({DRAWN}), 0), 0.0);
    EXPECT_EQ(Analyse(Join({"4k3/8/8/8/8/8/8/KN6 w - - tune 1.0;"}), 0), 0.5);
}

TEST_F(EpdAnalysisTest, QuitEndsTheRunAfterThePositionInWork) {
    PBlock.quit = 1;
    Analyse(Join({DRAWN, DRAWN, DRAWN}), 0);
    PBlock.quit = 0;
    EXPECT_TRUE(Shows("0 / 1 correct best moves\n"));
}

TEST_F(EpdAnalysisTest, ShowsEachPositionUnlessSilent) {
    PBlock.noise = 0.0;
    Analyse(Join({MATE_IN_ONE}), 1);
    EXPECT_TRUE(Shows("pos= 1\n" + std::string(MATE_IN_ONE) + "\n"));
    EXPECT_TRUE(Shows("move= e1e8, time= 0.0"));
    EXPECT_TRUE(Shows(", score= 9998, nodes= "));
    EXPECT_TRUE(Shows("K nps\n\n"));
}

TEST_F(EpdAnalysisTest, HalfABoardIsAPositionToo) {
    const std::string lines =
        Join({"rnbqkbnr/pppp", "qqqqqqqq/qqqqqqqq/8/8/8 w", "8/8/8/8/8/8/8/8 w - -", "///////////",
              "x9x9x9x9x9x9x9 b KQkq e9 bm Kxx;", "KKKKKKKK/8/8/8/8/8/8/kkkkkkkk w KQkq e3 tune 9;"});
    for (const int depth : {0, 1, 3}) {
        const double error = Analyse(lines, depth);
        EXPECT_TRUE(std::isfinite(error));
        EXPECT_TRUE(Shows(" / 6 correct best moves\n"));
    }
}

TEST(ExpectedResult, IsTheLogisticOfTheScore) {
    EXPECT_EQ(ExpectedResult(0), 0.5);
    EXPECT_NEAR(ExpectedResult(100), 0.647, 0.0005);
    EXPECT_NEAR(ExpectedResult(115), 0.667, 0.0005);
    EXPECT_NEAR(ExpectedResult(-100) + ExpectedResult(100), 1.0, 1e-12);
    EXPECT_NEAR(ExpectedResult(30000), 1.0, 1e-12);
    EXPECT_NEAR(ExpectedResult(-30000), 0.0, 1e-12);
}

}  // namespace
}  // namespace vrel
