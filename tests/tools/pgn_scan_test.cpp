#include "tools/pgn_scan.h"

#include <random>
#include <string>
#include <vector>

#include "board/search_thread.h"
#include "tools/expected_result.h"
#include "tools/game_comment.h"
#include "tools/scanned_game.h"
#include "tools/tool_test.h"

namespace vrel {
namespace {

constexpr int SCAN_LISTING = 1;
constexpr int SCAN_TARGETS = 2;
constexpr int SCAN_POSITIONS = 3;

class PgnScanTest : public ToolTest {
protected:
    // The output file's text; what was printed is kept.
    std::string Scan(const std::string& pgn, int kind) {
        WriteFile("in.pgn", pgn);
        ::testing::internal::CaptureStdout();
        Scan_PGN_File("in.pgn", kind);
        printed_ = ::testing::internal::GetCapturedStdout();
        return ReadFile(kind == SCAN_LISTING ? "tmp.pgn" : "tmp.epd");
    }

    std::string printed_;
};

// Knights go out and home again: 4 plies a round, and every position is legal and quiet.
constexpr const char* ROUND[] = {"Nf3", "Nf6", "Ng1", "Ng8"};

std::string Shuffle(int plies, const std::vector<std::string>& comments) {
    std::string text;
    for (int i = 0; i < plies; ++i) {
        text += std::string(ROUND[i % 4]) + " ";
        if (i < static_cast<int>(comments.size()) && !comments[static_cast<size_t>(i)].empty())
            text += "{" + comments[static_cast<size_t>(i)] + "} ";
        text += i % 4 == 3 ? "\n" : "";
    }
    return text;
}

int Score(std::string_view text, bool black) {
    GameComment comment;
    for (const char c : text)  // in parts
        AddToComment(&comment, std::string_view(&c, 1));
    return ScoreOfComment(comment, black).value_or(UNREADABLE_SCORE);
}

TEST(GameComment, ScoresInEveryForm) {
    struct Row {
        const char* comment;
        bool black;
        int score;
    };
    for (const Row& row : {Row{"+0.35/12 1.2s", false, 35},
                           Row{"+0.35/12 1.2s", true, 35},
                           Row{"-1.5/3", true, -150},
                           Row{"0.00/7", false, 0},
                           Row{"7/1", false, 700},
                           Row{"0.129/5", false, 12},
                           Row{"-0.129/5", false, -12},
                           Row{"book", true, 0},
                           Row{"out of book +3.00/2", false, 0},
                           Row{"[%eval 45,12]", false, 45},
                           Row{"[%eval -45,12]", true, 45},
                           Row{"eval -45", true, 45},
                           Row{"eval 12/3", false, 12},
                           Row{"eval ", false, UNREADABLE_SCORE},
                           Row{"eval ,3", true, UNREADABLE_SCORE},
                           Row{"eval nothing", false, 0},
                           Row{"eval  12", false, 12},
                           Row{"[%eval 0.35] [%clk 1:00,5]", false, 35},
                           Row{"[%eval 0.125]", true, -13},
                           Row{"[%eval -0.125]", false, -13},
                           Row{"[%eval +1.5.5x]", false, 150},
                           Row{"[%eval 2.]", false, 200},
                           Row{"[%eval .5]", false, 50},
                           Row{"[%eval #-3]", false, UNREADABLE_SCORE},
                           Row{"eval  #3", false, UNREADABLE_SCORE},
                           Row{"eval 5 eval 6", false, 5},
                           Row{"+M5/10", false, UNREADABLE_SCORE},
                           Row{"+-3/10", false, UNREADABLE_SCORE},
                           Row{" +0.35/12", false, UNREADABLE_SCORE},
                           Row{".5/3", false, UNREADABLE_SCORE},
                           Row{"+0.35", false, UNREADABLE_SCORE},
                           Row{"/", false, UNREADABLE_SCORE},
                           Row{"", false, UNREADABLE_SCORE},
                           Row{"a good move", false, UNREADABLE_SCORE}})
        EXPECT_EQ(Score(row.comment, row.black), row.score) << row.comment;
}

TEST(GameComment, NumbersOfAnySizeAreDefined) {
    for (const char* comment : {"99999999999999999999/3", "-1e308/3", "eval 99999999999999999999,1",
                                "eval -2147483648,1", "9223372036854775807/1"}) {
        Score(comment, true);
        Score(comment, false);
    }
    EXPECT_EQ(Score("400.00/3", false), 40000 - 65536);  // as a field of sixteen bits has it
}

TEST_F(PgnScanTest, ListsTagsAndMoves) {
    const std::string listing = Scan(
        "[Event \"x\"]\n[Round \"1\"]\n[Result \"1-0\"]\n\n1. e4 {+0.20/9} e5 {[%eval 15,3]} 2. Nf3 Nc6 {0.00/3}\n"
        "3. Bb5 {-0.10/4} a6 {book} 4. O-OO {x} 1-0\n",
        SCAN_LISTING);
    EXPECT_EQ(listing,
              "[Event \"x\"]\n[Round \"1\"]\n[Tag \"game_1\"]\n[Result \"1-0\"]\n"
              "  1.  e4      {  0.20}\n"
              "      e5      {  0.15}\n"
              "  2.  Nf3     {}\n"
              "      Nc6     {  0.00}\n"
              "  3.  Bb5     { -0.10}\n"
              "      a6      {  0.00}\n"
              "\n\n");
    EXPECT_EQ(printed_, "games= 1, positions= 0\n");
}

TEST_F(PgnScanTest, WritesMovesAsTheReaderShapesThem) {
    const std::string listing = Scan(
        "[Result \"*\"]\n1. e4 a6 2. Bc4! b6 3. Bxf7+ Kxf7 4. Ng1-f3 d6 5. O-O d5 6. exd5 c5 7. dxc6e.p. Nxc6\n"
        "[FEN \"8/P1P5/8/8/8/4k3/8/4K3 w - -\"]\n1. a7-a8N Kd3 2. c7-c8=Q+\n",
        SCAN_LISTING);
    for (const char* line : {"  2.  Bc4     {}\n", "  3.  Bxf7    {}\n", "  4.  g1f3    {}\n", "  5.  o-o     {}\n",
                             "  7.  dxc6    {}\n", "  1.  a7a8=N  {}\n", "  2.  c7c8=Q  {}\n"})
        EXPECT_NE(listing.find(line), std::string::npos) << line << listing;
}

TEST_F(PgnScanTest, CountsSidesFromTheStart) {
    const std::string listing = Scan(
        "[Event \"x\"]\r\n [FEN \"4k3/4p3/8/8/8/8/4P3/4K3 b - -\"]\r\n[Round\t\"1\"]\r\n\r\n"
        "1... e5 {+0.20/9} 2. e4 {[%eval 15,3]} 2... Kd7 {[%eval 0.05]} 3. Kd1 {0.00/1}\r\n",
        SCAN_LISTING);
    EXPECT_EQ(listing,
              "[Event \"x\"]\n [FEN \"4k3/4p3/8/8/8/8/4P3/4K3 b - -\"]\n[Round\t\"1\"]\n[Tag \"game_1\"]\n"
              "      e5      { -0.20}\n  2.  e4      {  0.15}\n      Kd7     {  0.05}\n  3.  Kd1     {  0.00}\n\n\n");
}

TEST_F(PgnScanTest, CommentsNestRunOverLinesAndLeaveAScore) {
    const std::string listing = Scan(
        "[Event \"x\"]\n1. e4 {[\n%eval\n30,9\n]} {nothing} e5 {a {+1.00/3} b} {a}\n2. Nf3 {+0.5\n/7} {+0.75/8} Nc6 } "
        "{+1.25/2}(3. a4 {+3.00/1}) {#1} 3. Bb5 {" +
            std::string(100000, 'x') + "/bo{}ok} a6 {" + std::string(70, '0') + "eval " + std::string(100000, ' ') +
            "-.5} *\n{+2.00/2}\n",
        SCAN_LISTING);
    EXPECT_EQ(listing.substr(listing.find('\n') + 1),
              "  1.  e4      {  0.30}\n      e5      {}\n  2.  Nf3     {  0.75}\n      Nc6     { -1.25}\n"
              "  3.  Bb5     {  0.00}\n      a6      { -0.50}\n\n\n");
}

TEST_F(PgnScanTest, FlagsADoubtfulMove) {
    // Index 8 (white): black's estimate goes from 10 to 60 across it and from 0 to 80 around it.
    std::vector<std::string> scores(20, "0.00/1");
    scores[5] = "0.00/1";
    scores[7] = "0.10/1";
    scores[9] = "0.60/1";
    scores[11] = "0.80/1";
    const std::string tags = "[Event \"x\"]\n[Result \"0-1\"]\n";
    const std::string listing = Scan(tags + Shuffle(20, scores), SCAN_LISTING);
    EXPECT_NE(listing.find("  5.  Nf3     {  0.00 ? rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -}\n"),
              std::string::npos)
        << listing;
    EXPECT_EQ(listing.find('?'), listing.rfind('?'));

    struct Row {
        const char* what;
        size_t index;
        const char* score;
    };
    for (const Row& row : {Row{"rises by 40 only", 9, "0.50/1"}, Row{"falls back to a rise of 50", 11, "0.50/1"},
                           Row{"was no even game", 8, "1.50/1"}, Row{"was decided before", 5, "-10.00/1"},
                           Row{"has no score behind", 11, "none"}}) {
        auto changed = scores;
        changed[row.index] = row.score;
        EXPECT_EQ(Scan(tags + Shuffle(20, changed), SCAN_LISTING).find('?'), std::string::npos) << row.what;
    }
    // The winner's moves aren't doubted; in a drawn game anybody's are. The last five and first six moves never are.
    EXPECT_EQ(Scan("[Result \"1-0\"]\n" + Shuffle(20, scores), SCAN_LISTING).find('?'), std::string::npos);
    EXPECT_NE(Scan("[Result \"1/2-1/2\"]\n" + Shuffle(20, scores), SCAN_LISTING).find('?'), std::string::npos);
    EXPECT_EQ(Scan(tags + Shuffle(13, scores), SCAN_LISTING).find('?'), std::string::npos);
    EXPECT_NE(Scan(tags + Shuffle(14, scores), SCAN_LISTING).find('?'), std::string::npos);
}

TEST_F(PgnScanTest, TargetsMixResultAndScore) {
    // Pawn moves keep the counter of quiet plies low; index 20 is the first that may be written.
    const char* moves[] = {"a3", "a6", "b3", "b6", "c3", "c6", "d3", "d6", "e3", "e6", "f3", "f6",
                           "g3", "g6", "h3", "h6", "a4", "a5", "b4", "b5", "c4", "c5", "d4", "d5"};
    const auto game = [&](const std::string& result, const std::string& score) {
        std::string pgn = "[Event \"x\"]\n[Result \"" + result + "\"]\n";
        for (const char* move : moves)
            pgn += std::string(move) + " {" + score + "/1} ";
        return pgn + "\n";
    };
    const std::string won = Scan(game("1-0", "+1.00"), SCAN_TARGETS);
    const std::string first = "rnbqkbnr/8/2pppppp/pp6/PP6/2PPPPPP/8/RNBQKBNR w KQkq - bm c4; ce 100; tune 0.912;\n";
    EXPECT_EQ(won.find(first), 0U) << won;
    // White's moves at 20 and 22 agree with the result; black's say that black stands better, and are left out.
    EXPECT_EQ(printed_, "games= 1, positions= 2\n");
    // An even score says nothing of a decided game, and all of a drawn one.
    EXPECT_EQ(Scan(game("1-0", "0.00"), SCAN_TARGETS), "\n");
    EXPECT_NE(Scan(game("1/2-1/2", "0.00"), SCAN_TARGETS).find("ce 0; tune 0.500;\n"), std::string::npos);
    EXPECT_EQ(printed_, "games= 1, positions= 4\n");
    EXPECT_NE(Scan(game("0-1", "-5.99"), SCAN_TARGETS).find("ce -599; tune 0.007;\n"), std::string::npos);
    EXPECT_EQ(Scan(game("0-1", "-6.00"), SCAN_TARGETS), "\n");
    EXPECT_EQ(Scan(game("1-0", "+M3"), SCAN_TARGETS), "\n");
}

TEST_F(PgnScanTest, TargetsLeaveOutShufflingAndTheLateGame) {
    const std::string epd =
        Scan("[Result \"1/2-1/2\"]\n" + Shuffle(40, std::vector<std::string>(40, "0.00/1")), SCAN_TARGETS);
    // From index 21 on the counter of quiet plies is above 20.
    EXPECT_EQ(epd, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm Nf3; ce 0; tune 0.500;\n\n");
}

TEST_F(PgnScanTest, PositionsEndWhereTheGameIsDecided) {
    const std::vector<std::string> scores = {"0.10/1", "5.00/1", "-5.01/1", "0.00/1"};
    const std::string epd = Scan("[Event \"x\"]\n" + Shuffle(8, scores), SCAN_POSITIONS);
    EXPECT_EQ(printed_, "games= 1, positions= 3\n");
    EXPECT_EQ(epd.find("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm Nf3; ce 10;\n"), 0U);
    EXPECT_NE(epd.find(" bm Ng1; ce -501;\n\n"), std::string::npos);
    // A game without comments gives its first position.
    Scan("[Event \"x\"]\n" + Shuffle(8, {}), SCAN_POSITIONS);
    EXPECT_EQ(printed_, "games= 1, positions= 1\n");
}

TEST_F(PgnScanTest, NothingIsWrittenInCheck) {
    const std::string epd = Scan("1. e4 {book} f6 {book} 2. d4 {book} g5 {book} 3. Qh5+ {book}\n", SCAN_POSITIONS);
    EXPECT_EQ(printed_, "games= 0, positions= 5\n");
    const std::string more = Scan("1. e4 {book} d6 {book} 2. Bb5 {book} c6 {book}\n", SCAN_POSITIONS);
    EXPECT_EQ(printed_, "games= 0, positions= 3\n");
    EXPECT_EQ(more.find("bm c6"), std::string::npos);
}

TEST_F(PgnScanTest, GamesOfThousandsOfMovesArePassedOverInPart) {
    const std::vector<std::string> scores(3000, "0.00/1");
    const std::string listing =
        Scan("[Event \"x\"]\n" + Shuffle(3000, scores) + "\n[Event \"y\"]\n1. e4 {book}\n", SCAN_LISTING);
    EXPECT_NE(listing.find("400.  Ng1     {  0.00}\n      Ng8     {  0.00}\n\n[Event \"y\"]\n"), std::string::npos);
    EXPECT_NE(listing.find("  1.  e4      {  0.00}\n"), std::string::npos);
    EXPECT_EQ(printed_, "games= 2, positions= 0\n");
}

TEST_F(PgnScanTest, FilesOfAnyBytesAreReadToTheirEnd) {
    std::mt19937 random(3);
    const std::string letters = "{}[]%\n \"/+-.0159abhNQKRxO=eval book Event Result\r";
    for (int i = 0; i < 20; ++i) {
        std::string noise;
        for (int n = 0; n < 20000; ++n)
            noise += i % 2 ? static_cast<char>(random() % 256) : letters[random() % letters.size()];
        for (const int kind : {SCAN_LISTING, SCAN_TARGETS, SCAN_POSITIONS}) {
            Scan(noise, kind);
            EXPECT_EQ(printed_.rfind("games= ", 0) == 0 || printed_.find("\ngames= ") != std::string::npos, true);
        }
    }
}

TEST_F(PgnScanTest, FilesThatCannotBeOpenedEndItSilently) {
    ::testing::internal::CaptureStdout();
    Scan_PGN_File("missing.pgn", SCAN_LISTING);
    EXPECT_FALSE(std::filesystem::exists("tmp.pgn"));
    std::filesystem::create_directory("tmp.epd");
    WriteFile("in.pgn", "1. e4\n");
    Scan_PGN_File("in.pgn", SCAN_TARGETS);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(PgnScanTest, ReadsAFileThatHasTheNameOfItsOutput) {
    WriteFile("tmp.pgn", "[Event \"x\"]\n1. e4 {+0.10/1}\n");
    ::testing::internal::CaptureStdout();
    Scan_PGN_File("tmp.pgn", SCAN_LISTING);
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(ReadFile("tmp.pgn"), "[Event \"x\"]\n  1.  e4      {  0.10}\n\n\n");
}

}  // namespace
}  // namespace vrel
