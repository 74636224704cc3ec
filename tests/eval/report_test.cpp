#include "interface/control/console_game.h"

#include "eval_support.h"

namespace vrel {
namespace {

class Report : public EngineTest {
protected:
    static std::string Text(const char* fen) {
        SetPosition(GamePosition(), fen);
        testing::internal::CaptureStdout();
        ShowEvalInfo();
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(Report, StartPosition) {
    EXPECT_EQ(Text("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"),
              "\n"
              "eval= 9, qscore= 9, stage= 0, draw_adj= 1.00\n"
              "\n"
              "           white    black     diff\n"
              "mtl=        3926     3926        0   ( :: )\n"
              "pos=        -162     -162        0\n"
              "pawns=       -20      -20        0\n"
              "knights=     -60      -60        0\n"
              "bishops=     -40      -40        0\n"
              "rooks=       -38      -38        0\n"
              "queens=      -12      -12        0\n"
              "kings=         8        8        0\n"
              "passers=       0        0        0\n"
              " r n b q k b n r      -19  -30  -20  -12    8  -20  -30  -19\n"
              " o o o o o o o o       -5    0    0   -5   -5    0    0   -5\n"
              " - + - + - + - +        -    -    -    -    -    -    -    -\n"
              " + - + - + - + -        -    -    -    -    -    -    -    -\n"
              " - + - + - + - +        -    -    -    -    -    -    -    -\n"
              " + - + - + - + -        -    -    -    -    -    -    -    -\n"
              " P P P P P P P P       -5    0    0   -5   -5    0    0   -5\n"
              " R N B Q K B N R      -19  -30  -20  -12    8  -20  -30  -19\n"
              "white\n"
              "\n");
}

TEST_F(Report, SurplusOfPieces) {
    const std::string text = Text("r3k1n1/pppp4/8/8/8/8/PPPP4/3QK3 b - -");
    EXPECT_NE(text.find("(Q :: RN)"), std::string::npos) << text;
    EXPECT_NE(text.find("black\n"), std::string::npos) << text;
}

TEST_F(Report, TacticalLines) {
    const std::string text = Text("4k3/P3r3/8/3p4/4N3/3P4/8/4K2R w - -");
    EXPECT_NE(text.find("hung pieces on:   e4  a7\n"), std::string::npos) << text;
    EXPECT_NE(text.find("pinned pieces on :  e4\n"), std::string::npos) << text;
    EXPECT_NE(text.find("free pawn ranks are W: 6, B: 0\n"), std::string::npos) << text;
}

TEST_F(Report, ASideInCheckShowsNothing) {
    const std::string text = Text("4k3/8/8/8/8/8/4r3/4K3 w - -");
    EXPECT_NE(text.find("eval= -10000, qscore= -10000, stage= 0, draw_adj= 1.00\n"), std::string::npos) << text;
    EXPECT_NE(text.find("mtl=           0        0        0"), std::string::npos) << text;
}

TEST_F(Report, TheDepthLimitIsKept) {
    PBlock.max_depth = 12;
    Text("4k3/8/8/8/8/8/P7/4K3 w - -");
    EXPECT_EQ(PBlock.max_depth, 12);
    PBlock.max_depth = MAX_DEPTH;
}

}  // namespace
}  // namespace vrel
