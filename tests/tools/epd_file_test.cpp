#include "tools/epd_file.h"

#include <string>
#include <vector>

#include "board/fen.h"
#include "board/search_thread.h"
#include "tools/tool_test.h"

namespace vrel {
namespace {

using EpdFileTest = ToolTest;

std::vector<std::string> Lines(const std::string& name) {
    std::vector<std::string> lines;
    EpdFile file(name.c_str());
    char line[EPD_LINE];
    while (file.Next(line))
        lines.emplace_back(line);
    return lines;
}

TEST_F(EpdFileTest, PassesOverWhatHoldsNoPosition) {
    WriteFile("a.epd", "12345678\n123456789\n #2345678901\n#12345678901\n;12345678901\n\n 12345678901\n1234567890");
    // Nine characters count with their line end, and the last line needs none.
    EXPECT_EQ(Lines("a.epd"), (std::vector<std::string>{"123456789", "1234567890"}));
}

TEST_F(EpdFileTest, ALongLineIsOnePosition) {
    WriteFile("a.epd", std::string(40000, 'x') + "\nsecond line\n" + std::string(253, 'y') + "\n" +
                           std::string(252, 'z') + "\nthe last line");
    const auto lines = Lines("a.epd");
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0], std::string(253, 'x'));
    EXPECT_EQ(lines[1], "second line");
    EXPECT_EQ(lines[2], std::string(253, 'y'));
    EXPECT_EQ(lines[3], std::string(252, 'z'));
    EXPECT_EQ(lines[4], "the last line");
}

TEST_F(EpdFileTest, TakesOtherLineEndsAndNulCharacters) {
    using namespace std::string_literals;
    WriteFile("a.epd", "1k6/8 bm a1\0; id x\r\n4k3/8/8/8\r\n"s);
    EXPECT_EQ(Lines("a.epd"), (std::vector<std::string>{"1k6/8 bm a1 ; id x", "4k3/8/8/8"}));
}

TEST_F(EpdFileTest, AMissingFileAndAFolderAreNoFile) {
    std::filesystem::create_directory("folder");
    EXPECT_FALSE(EpdFile("missing.epd"));
    EXPECT_FALSE(EpdFile("folder"));
    WriteFile("empty.epd", "");
    EXPECT_TRUE(EpdFile("empty.epd"));
    EXPECT_TRUE(Lines("empty.epd").empty());
}

TEST_F(EpdFileTest, ReadsTargets) {
    struct Row {
        const char* line;
        double target;
    };
    for (const Row& row : {Row{"8/8 w - - tune 0.25;", 0.25}, Row{"8/8 w - - bm e4; ce 3; tune 1.000;", 1.0},
                           Row{"8/8 w - - bm e4;", 0.5}, Row{"8/8 w - - tune none;", 0.0},
                           Row{"8/8 w - - tune nan;", 0.0}, Row{"8/8 w - - tune 1e999;", 0.0},
                           Row{"8/8 w - - tune 1e308;", 1e9}, Row{"8/8 w - - tune 0.1234567;", 0.12345},
                           Row{"8/8 w - - tune", 0.5}, Row{"8/8 w - - id \"fortune 7\";", 0.5}})
        EXPECT_DOUBLE_EQ(ReadTarget(row.line), row.target) << row.line;
}

TEST_F(EpdFileTest, ReadsBestMovesInEveryForm) {
    struct Row {
        const char* line;
        const char* move;  // empty for none
    };
    constexpr const char* position = "r3k2r/1P4pp/8/8/3n4/4P3/8/RN2K2R w KQkq - ";
    for (const Row& row : {Row{"bm exd4;", "e3d4"},
                           Row{"bm e3d4;", "e3d4"},
                           Row{"bm ed;", "e3d4"},
                           Row{"bm O-O;", "e1g1"},
                           Row{"bm 0-0-0;", ""},
                           Row{"bm b7b8q;", "b7b8q"},
                           Row{"bm b8=Q+;", "b7b8q"},
                           Row{"bm bxa8=N;", "b7a8n"},
                           Row{"bm Nc3 ;", "b1c3"},
                           Row{"bm   Nc3;", "b1c3"},
                           Row{"bm Nc3", "b1c3"},
                           Row{"bm Nc3!?;", "b1c3"},
                           Row{"bm b8=Q+#;", "b7b8q"},
                           Row{"bm Nb1-c3;", "b1c3"},
                           Row{"bm b7:a8!;", "b7a8q"},
                           Row{"bm !;", ""},
                           Row{"bm Nc3 exd4;", ""},
                           Row{"bm b8=Q+ Nc3;", ""},
                           Row{"bm ;", ""},
                           Row{"bm", ""},
                           Row{"bm nonsense;", ""},
                           Row{"am Nc3;", ""},
                           Row{"id \"bm\"; bm Nc3;", "b1c3"},
                           Row{"id submit ; bm Nc3;", "b1c3"},
                           Row{"bm Kd2; id \"e4\";", "e1d2"}}) {
        const std::string line = std::string(position) + row.line;
        SetPosition(GamePosition(), line.c_str());
        const Move move = ReadBestMove(line.c_str());
        const std::string text = move == NO_MOVE ? "" : oracle::MoveText(OracleMove(move));
        EXPECT_EQ(text, row.move) << line;
    }
}

TEST_F(EpdFileTest, AnInputOfTheSameNameKeepsItsContents) {
    WriteFile("unsolved.epd", "4k3/8/8/8\n1k6/8/8/8\n");
    EpdFile in("unsolved.epd");
    File out = CreateOutput("unsolved.epd", "./unsolved.epd");
    ASSERT_TRUE(out);
    char line[EPD_LINE];
    EXPECT_TRUE(in.Next(line));
    EXPECT_TRUE(out.Print("%s\n", line));
    EXPECT_TRUE(in.Next(line));
    out.Close();
    EXPECT_EQ(ReadFile("unsolved.epd"), "4k3/8/8/8\n");
}

}  // namespace
}  // namespace vrel
