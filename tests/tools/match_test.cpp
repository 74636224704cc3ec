#include <string>

#include "board/search_thread.h"
#include "eval/personality.h"
#include "tools/match.h"
#include "tools/match_record.h"
#include "tools/player_file.h"
#include "tools/tool_test.h"

namespace vrel {
namespace {

using MatchTest = ToolTest;

TEST_F(MatchTest, WritesGamesTwoMovesALine) {
    MatchGame game;
    game.number = 7;
    game.white = 1;
    game.result = BLACK_WINS;
    RecordMove(&game, MakeMoveValue(12, 28), 35, 7);
    RecordMove(&game, MakeMoveValue(52, 36), -4, 6);
    RecordMove(&game, NO_MOVE, -950, 0);
    EXPECT_EQ(GameText(game),
              "[Event selfplay]\n[Game 7]\n[White \"Player2\"]\n[Black \"Player1\"]\n[Result \"0-1\"]\n"
              "e2e4 {0.35/7}   e7e5 {-0.04/6}\na1a1 {-9.50/0}\n\n");
}

TEST_F(MatchTest, CountsForTheFirstPlayerByColour) {
    struct Row {
        int white;
        MatchResult result;
        int wins, losses, draws;
    };
    for (const Row& row : {Row{0, WHITE_WINS, 1, 0, 0}, Row{0, BLACK_WINS, 0, 1, 0}, Row{1, WHITE_WINS, 0, 1, 0},
                           Row{1, BLACK_WINS, 1, 0, 0}, Row{0, DRAWN, 0, 0, 1}, Row{1, DRAWN, 0, 0, 1}}) {
        MatchGame game;
        game.white = row.white;
        game.result = row.result;
        MatchScore score;
        CountResult(game, &score);
        EXPECT_EQ(score.wins, row.wins);
        EXPECT_EQ(score.losses, row.losses);
        EXPECT_EQ(score.draws, row.draws);
    }
}

TEST_F(MatchTest, MarksARateBeyondTheMargin) {
    EXPECT_NEAR(MatchMargin(205), 0.1068, 0.0001);
    EXPECT_EQ(MatchMark(0.60, 205), ' ');
    EXPECT_EQ(MatchMark(0.62, 205), '*');
    EXPECT_EQ(MatchMark(0.38, 205), '*');
    EXPECT_EQ(MatchMark(0.90, 200), ' ');
    EXPECT_DOUBLE_EQ(MatchRate({3, 2, 5}, 10), 0.55);
}

class PlayerFileTest : public ToolTest {
protected:
    bool Read(const std::string& text) {
        WriteFile("player2.par", text);
        ::testing::internal::CaptureStdout();
        const bool read = ReadPlayerFile("player2.par", &record_);
        shown_ = ::testing::internal::GetCapturedStdout();
        return read;
    }

    PersonalityRecord record_ = DefaultPersonality;
    std::string shown_;
};

TEST_F(PlayerFileTest, ChangesAndShowsFields) {
    EXPECT_TRUE(Read("# a try\n\nknight_value_op 350 # more\r\n  hung\t-20\nrook_rank7 15\nPST_R_en 5\nLMR_depth 4"));
    EXPECT_EQ(record_.knight_value_op, 350);
    EXPECT_EQ(record_.hung, -20);
    EXPECT_EQ(record_.PST_R_en, 5);
    EXPECT_EQ(record_.LMR_depth, 4);
    EXPECT_EQ(shown_,
              "Player2: knight_value_op 335 -> 350\nPlayer2: hung -17 -> -20\nPlayer2: PST_R_en 0 -> 5\n"
              "Player2: LMR_depth 3 -> 4\n");
}

TEST_F(PlayerFileTest, NoFileChangesNothing) {
    EXPECT_TRUE(ReadPlayerFile("player2.par", &record_));
    EXPECT_EQ(record_.knight_value_op, DefaultPersonality.knight_value_op);
}

TEST_F(PlayerFileTest, NamesTheLineAtFault) {
    for (const char* line : {"knight_value 3", "hung", "hung x", "hung 3x", "hung 3 4", "hung 40000", "hung -32769",
                             "LMR_depth 128", "hung 99999999999999999999", "hung 1.5", "HUNG 3", "\x01\x02"}) {
        EXPECT_FALSE(Read("# first\nhung -18\n" + std::string(line) + "\n")) << line;
        EXPECT_NE(shown_.find("player2.par, line 3: "), std::string::npos) << shown_;
    }
}

TEST_F(PlayerFileTest, AFolderInItsPlaceIsNoFile) {
    std::filesystem::create_directory("player2.par");
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(ReadPlayerFile("player2.par", &record_));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "can't open player2.par\n");
}

TEST_F(MatchTest, AFaultInThePlayerFileStopsBeforeTheFirstGame) {
    WriteFile("player2.par", "nonsense 3\n");
    WriteFile("match.pgn", "old games\n");
    CopyText(&PBlock.match_file, "match.pgn");
    ::testing::internal::CaptureStdout();
    PlayMatch();
    EXPECT_NE(::testing::internal::GetCapturedStdout().find("line 1"), std::string::npos);
    EXPECT_EQ(ReadFile("match.pgn"), "old games\n");
}

TEST_F(MatchTest, TellsOfAFileThatCannotBeWritten) {
    CopyText(&PBlock.match_file, "missing/match.pgn");
    ::testing::internal::CaptureStdout();
    PlayMatch();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "can't open missing/match.pgn\n");
}

TEST_F(MatchTest, QuitEndsItWithoutTheGameInWork) {
    CopyText(&PBlock.match_file, "match.pgn");
    PBlock.quit = 1;
    ::testing::internal::CaptureStdout();
    PlayMatch();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Starting match...\n");
    PBlock.quit = 0;
    EXPECT_EQ(ReadFile("match.pgn"), "");
    EXPECT_GE(PBlock.max_nodes, 250 * 95);
    EXPECT_LE(PBlock.max_nodes, 250 * 105);
}

}  // namespace
}  // namespace vrel
