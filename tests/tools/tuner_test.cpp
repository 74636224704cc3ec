#include "tools/tuner.h"

#include <cmath>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/search_thread.h"
#include "eval/eval_tables.h"
#include "search/search.h"
#include "search/search_control.h"
#include "search/time_control.h"
#include "support/playout.h"
#include "tools/epd_analysis.h"
#include "tools/expected_result.h"
#include "tools/tool_test.h"

namespace vrel {
namespace {

class TunerTest : public ToolTest {
protected:
    // Positions whose targets are what the present weights expect: with these the error is nearly 0.
    static void WriteTargets(const std::string& name, size_t count) {
        PBlock.max_depth = 0;
        InitEval();
        std::string lines;
        for (const std::string& fen : RandomPositions(count, 21)) {
            SetPosition(GamePosition(), fen.c_str());
            InitSearch(STATE_IDLE);
            SearchIterations(1);
            char target[16];
            std::snprintf(target, sizeof target, "%0.5f", ExpectedResult(GetThread(1)->score));
            lines += fen + " tune " + target + ";\n";
        }
        WriteFile(name, lines);
        CopyText(&PBlock.epd_file, name.c_str());
    }

    static std::vector<double> Errors(const std::string& log) {
        std::vector<double> errors;
        for (size_t at = log.find("\nerr= "); at != std::string::npos; at = log.find("\nerr= ", at + 1))
            errors.push_back(std::stod(log.substr(at + 6)));
        return errors;
    }
};

TEST_F(TunerTest, TheErrorFalls) {
    WriteTargets("train.epd", 60);
    Personality.queen_value_op = 800;
    Personality.knight_value_op = 250;
    Personality.pawn_value_en = 130;
    ::testing::internal::CaptureStdout();
    Tune();
    const std::string shown = ::testing::internal::GetCapturedStdout();
    const std::string log = ReadFile("tune.log");
    const auto errors = Errors(log);
    ASSERT_EQ(errors.size(), 31U);  // before the first pass and after each
    EXPECT_LT(errors.back(), errors.front() * 0.7);
    EXPECT_EQ(Errors(shown), errors);
    // The log ends with the weights in force.
    for (int i = 0; i < TUNED_WEIGHTS; ++i) {
        const std::string line = "** param_" + std::to_string(i) + ", value= ";
        EXPECT_EQ(std::stoi(log.substr(log.rfind(line) + line.size())), *TunedWeight(&Personality, i)) << line;
    }
}

TEST_F(TunerTest, NoWeightMovesMoreThanItsStepInAPass) {
    WriteTargets("train.epd", 20);
    Personality.PST_R_en = 0;
    ::testing::internal::CaptureStdout();
    Tune();
    const std::string shown = ::testing::internal::GetCapturedStdout();
    // A weight of 1000 is tried at 1021, one of 0 at 1.
    EXPECT_NE(shown.find("p0=1000, p1=1021, "), std::string::npos);
    EXPECT_NE(shown.find("p0=0, p1=1, "), std::string::npos);
    EXPECT_EQ(shown.rfind("pass= 29, k0= 4.000e+03\n"), shown.rfind("pass= "));
}

TEST_F(TunerTest, AMissingFileChangesNothing) {
    CopyText(&PBlock.epd_file, "missing.epd");
    WriteFile("tune.log", "an older log\n");
    EXPECT_FALSE(Tune());
    EXPECT_EQ(ReadFile("tune.log"), "an older log\n");
}

TEST_F(TunerTest, WithoutALogNothingIsDone) {
    std::filesystem::create_directory("tune.log");
    ::testing::internal::CaptureStdout();
    Tune();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(TunerTest, QuitEndsAtTheTopOfAPass) {
    WriteTargets("train.epd", 5);
    PBlock.quit = 1;
    ::testing::internal::CaptureStdout();
    Tune();
    const std::string shown = ::testing::internal::GetCapturedStdout();
    PBlock.quit = 0;
    EXPECT_EQ(shown, "");
    EXPECT_EQ(ReadFile("tune.log"), "pass 0 broken off\n");
}

TEST_F(TunerTest, BracketingFindsAWeightAndRestoresIt) {
    Personality.pawn_value_op = 95;
    WriteTargets("train.epd", 80);
    Personality.pawn_value_op = 80;
    InitEval();
    ::testing::internal::CaptureStdout();
    const int best = PTune("pawn_value_op", &Personality.pawn_value_op, 40);
    const std::string shown = ::testing::internal::GetCapturedStdout();
    EXPECT_NEAR(best, 95, 4);
    EXPECT_EQ(Personality.pawn_value_op, 80);
    EXPECT_EQ(MtlPawnOp[1], 80);
    EXPECT_EQ(shown.find("best= 80, err= "), 0U);
    EXPECT_NE(shown.find(", min= 40, max= 120\n\n"), std::string::npos);
    EXPECT_NE(shown.find("pawn_value_op= 100, err= "), std::string::npos);
}

TEST_F(TunerTest, BracketingTakesAnyRange) {
    WriteTargets("train.epd", 3);
    for (const int range : {0, 1, 12, -5, -2147483647 - 1, 2147483647, 40000}) {
        ::testing::internal::CaptureStdout();
        PTune("tune", &Personality.tune, range);
        ::testing::internal::GetCapturedStdout();
        EXPECT_EQ(Personality.tune, 8) << range;
    }
}

}  // namespace
}  // namespace vrel
