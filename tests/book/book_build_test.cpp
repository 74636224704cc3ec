#include "book/book_build.h"

#include <algorithm>
#include <filesystem>
#include <random>

#include "board/fen.h"
#include "book/book_folder.h"
#include "book/book_lookup.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "support/playout.h"

namespace vrel {
namespace {

// The positions after each ply of 1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. O-O.
constexpr const char* kLine[] = {
    "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3",
    "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6",
    "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -",
    "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -",
    "r1bqkbnr/pppp1ppp/2n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R b KQkq -",
    "r1bqkbnr/1ppp1ppp/p1n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R w KQkq -",
    "r1bqkbnr/1ppp1ppp/p1n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQ1RK1 b kq -",
};
constexpr const char* kAfterD4 = "rnbqkbnr/pppppppp/8/8/3P4/8/PPP1PPPP/RNBQKBNR b KQkq d3";

class BookBuildTest : public BookTest {
protected:
    static std::vector<BookRecord> Build(const std::string& pgn) {
        WriteBytes("book.pgn", pgn);
        CreateBook();
        return ReadRecords("book.opn");
    }
};

std::string Game(const std::string& result, const std::string& moves) {
    return "[Event \"?\"]\n[Result \"" + result + "\"]\n\n" + moves + "\n\n";
}

std::string Repeat(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

// The records of six drawn games that follow the line for so many plies.
std::vector<PlainRecord> SixDraws(size_t plies) {
    std::vector<BookEntry> entries;
    for (size_t i = 0; i < plies; ++i)
        entries.push_back({kLine[i], 0, 0, 6});
    return PlainAll(RecordsOf(entries));
}

TEST_F(BookBuildTest, CountsResultsFromTheSideToMove) {
    // Nine games, as they stand: white wins 4, black wins 3, two without a winner.
    const std::string pgn = Repeat(3, Game("1-0", "1. e4 e5 2. Nf3 Nc6")) + Game("1-0", "1. d4") +
                            Repeat(2, Game("0-1", "1. e4 e5 2. Nf3")) + Game("0-1", "1. e4") +
                            Game("1/2-1/2", "1. e4 e5") + Game("*", "1. d4");
    // Points, twice the wins and the draws, of the positions, where more than 5 are needed to stay:
    //   e4   black to move: 3 wins (0-1), 3 losses, 1 draw: 7
    //   e5   white to move: 3 wins, 2 losses, 1 draw:       7
    //   Nf3  black to move: 2 wins, 3 losses:               4
    //   Nc6  white to move: 3 wins:                         6
    //   d4   black to move: 1 loss, 1 draw:                 1
    EXPECT_EQ(PlainAll(Build(pgn)),
              PlainAll(RecordsOf({{kLine[0], 3, 3, 1}, {kLine[1], 3, 2, 1}, {kLine[3], 3, 0, 0}})));
}

TEST_F(BookBuildTest, FiveDrawsGoAndSixStay) {
    EXPECT_TRUE(Build(Repeat(5, Game("1/2-1/2", "1. e4"))).empty());
    EXPECT_TRUE(std::filesystem::exists("book.opn"));
    EXPECT_EQ(PlainAll(Build(Repeat(6, Game("1/2-1/2", "1. e4")))), SixDraws(1));
    EXPECT_TRUE(Build(Repeat(50, Game("1-0", "1. e4"))).empty());  // only ever lost by the side to move
}

TEST_F(BookBuildTest, OnlyTheFirstFiftyPliesOfAGameCount) {
    // The knights go out and home: each of the four positions comes up every fourth ply.
    const std::string moves = Repeat(1000, "Nf3 Nf6 Ng1 Ng8\n");
    EXPECT_EQ(PlainAll(Build(Game("*", moves))),
              PlainAll(RecordsOf({{"rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b KQkq -", 0, 0, 13},
                                  {"rnbqkb1r/pppppppp/5n2/8/8/5N2/PPPPPPPP/RNBQKB1R w KQkq -", 0, 0, 13},
                                  {"rnbqkb1r/pppppppp/5n2/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -", 0, 0, 12},
                                  {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", 0, 0, 12}})));
}

TEST_F(BookBuildTest, EveryTwoHundredGamesGoToDisk) {
    testing::internal::CaptureStdout();
    const std::vector<BookRecord> book =
        Build(Repeat(199, Game("1-0", "1. e4 e5")) + Repeat(251, Game("0-1", "1. e4")) + Game("*", "1. d4"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "...\nmerging...\n\npruning...\n\ndone\n");
    EXPECT_EQ(PlainAll(book), PlainAll(RecordsOf({{kLine[0], 251, 199, 0}, {kLine[1], 199, 0, 0}})));
    EXPECT_FALSE(std::filesystem::exists("tmp.opn"));
    EXPECT_FALSE(std::filesystem::exists("tmp__0.opn"));
}

TEST_F(BookBuildTest, CountersStopAtSixtyThousand) {
    // More than twelve merges into the book, each of 5000 games.
    testing::internal::CaptureStdout();
    const std::vector<BookRecord> book =
        Build(Repeat(61000, "[Result \"1-0\"]\n1. e4 e5\n") + Repeat(7, "[Result \"0-1\"]\n1. e4\n"));
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_EQ(PlainAll(book), PlainAll(RecordsOf({{kLine[0], 7, 60000, 0}, {kLine[1], 60000, 0, 0}})));
    EXPECT_EQ(shown.substr(0, 25 + 14), std::string(25, '.') + "\nmerging...\n\n.");
}

TEST_F(BookBuildTest, SpecialMoves) {
    // En passant, castling on both wings with letters, an under-promotion with capture; each position 6 times.
    const std::string moves = "1. e4 a6 2. e5 d5 3. exd6 Nc6 4. Be2 Bg4 5. Nf3 Qd7 6. O-O O-O-O 7. dxc7 Nf6 8. cxd8=N";
    const std::vector<PlainRecord> book = PlainAll(Build(Repeat(6, Game("1/2-1/2", moves))));
    EXPECT_EQ(book.size(), 15U);
    for (const char* fen : {"rnbqkbnr/1pp1pppp/p2P4/8/8/8/PPPP1PPP/RNBQKBNR b KQkq -",
                            "r3kbnr/1ppqpppp/p1nP4/8/6b1/5N2/PPPPBPPP/RNBQ1RK1 b kq -",
                            "2kr1bnr/1ppqpppp/p1nP4/8/6b1/5N2/PPPPBPPP/RNBQ1RK1 w - -",
                            "2kN1b1r/1p1qpppp/p1n2n2/8/6b1/5N2/PPPPBPPP/RNBQ1RK1 b - -"})
        EXPECT_EQ(std::count(book.begin(), book.end(), Plain(RecordOf({fen, 0, 0, 6}))), 1) << fen;
}

TEST_F(BookBuildTest, WithoutGamesTheOldBookGoes) {
    WriteRecords("book.opn", RecordsOf({{kLine[0], 9, 9, 9}}));
    testing::internal::CaptureStdout();
    CreateBook();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_FALSE(std::filesystem::exists("book.opn"));
    EXPECT_EQ(PBlock.book_file[0], 0);
    EXPECT_TRUE(Build("").empty());
    EXPECT_TRUE(std::filesystem::exists("book.opn"));
}

TEST_F(BookBuildTest, ARunLeftByABrokenBuildIsForgotten) {
    WriteRecords("tmp.opn", RecordsOf({{kAfterD4, 9, 9, 9}}));
    EXPECT_EQ(PlainAll(Build(Repeat(6, Game("*", "1. e4")))), SixDraws(1));
}

TEST_F(BookBuildTest, EndsTheUseOfTheBookAndOfTheGame) {
    WriteRecords("vrel.opn", RecordsOf({{kLine[0], 0, 10, 0}}));
    InitBook();
    GetCandidates(GamePosition(), false);
    EXPECT_NE(PBlock.pv[1], NO_MOVE);
    SetPosition(GamePosition(), kLine[3]);
    Build(Game("1-0", "1. e4"));
    EXPECT_EQ(FenOf(*GamePosition()), fen_opn);
    GetCandidates(GamePosition(), false);
    EXPECT_EQ(PBlock.pv[1], NO_MOVE);
}

TEST_F(BookBuildTest, TheBookThatWasBuiltIsPlayed) {
    Build(Repeat(10, Game("1-0", "1. e4 e5 2. Nf3 Nc6")) + Repeat(10, Game("0-1", "1. e4 e5")));
    std::filesystem::rename("book.opn", "vrel.opn");
    SetDefaults();
    PBlock.book_random = 1;
    InitBook();
    GetCandidates(GamePosition(), false);
    EXPECT_EQ(PBlock.pv[1], MakeMoveValue(12, 28));
}

TEST_F(BookBuildTest, ForeignBytesEndTheCommandLikeAnyOther) {
    std::mt19937 random(12);
    const std::string good = Repeat(6, Game("1/2-1/2", "1. e4 e5"));
    std::string noise;
    for (int i = 0; i < 300000; ++i)
        noise += static_cast<char>(random());
    EXPECT_EQ(PlainAll(Build(good + noise)), SixDraws(2));
    for (const std::string& part : {std::string(300000, '('), std::string(300000, '{'), std::string(300000, ')'),
                                    std::string(300000, 'e'), std::string(300000, '\0'), std::string(300000, '\n'),
                                    Repeat(50000, "({"), Repeat(50000, "[Result "), Repeat(100000, "e4 ")})
        EXPECT_EQ(PlainAll(Build(good + part + "\n" + Repeat(3, Game("*", "1. d4")))), SixDraws(2))
            << part.substr(0, 10);
}

TEST_F(BookBuildTest, AFullDiskLeavesNoHalfWrittenBook) {
    std::string pgn;
    for (int i = 0; i < 260; ++i)
        pgn += Game("1/2-1/2", i % 2 ? "1. e4 e5 2. Nf3 Nc6 3. Bb5" : "1. d4 d5 2. c4 e6 3. Nc3");
    for (const size_t room : {0U, 1U, 14U, 69U, 70U, 100U, 139U}) {
        WriteBytes("book.pgn", pgn);
        const FullDisk disk(room);
        CreateBook();
        EXPECT_FALSE(std::filesystem::exists("tmp__0.opn")) << room;
        for (const BookRecord& record : ReadRecords("book.opn"))  // a whole number of records
            EXPECT_GE(record.draws, 6) << room;
    }
    EXPECT_EQ(Build(pgn).size(), 10U);
}

}  // namespace
}  // namespace vrel
