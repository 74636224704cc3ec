#include "interface/board_text.h"

#include <gtest/gtest.h>

#include <string>

#include "interface/pblock.h"
#include "support/engine.h"

namespace vrel {
namespace {

class BoardDisplay : public EngineTest {
protected:
    static std::string Shown(const char* fen) {
        PBlock.log = 0;
        const TestPosition pos(fen);
        testing::internal::CaptureStdout();
        ShowBoard(*pos);
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(BoardDisplay, ShowsTheStartPosition) {
    EXPECT_EQ(Shown("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"),
              "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -\n"
              "  r n b q k b n r\n"
              "  o o o o o o o o\n"
              "  - + - + - + - +\n"
              "  + - + - + - + -\n"
              "  - + - + - + - +\n"
              "  + - + - + - + -\n"
              "  P P P P P P P P\n"
              "  R N B Q K B N R\n"
              "white\n\n");
}

TEST_F(BoardDisplay, ShowsTheColoursOfEmptySquares) {
    EXPECT_EQ(Shown("8/8/8/8/8/8/8/8 b - e3"),
              "8/8/8/8/8/8/8/8 b - e3\n"
              "  - + - + - + - +\n"
              "  + - + - + - + -\n"
              "  - + - + - + - +\n"
              "  + - + - + - + -\n"
              "  - + - + - + - +\n"
              "  + - + - + - + -\n"
              "  - + - + - + - +\n"
              "  + - + - + - + -\n"
              "black\n\n");
}

}  // namespace
}  // namespace vrel
