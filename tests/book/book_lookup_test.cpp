#include "book/book_lookup.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>

#include "board/fen.h"
#include "board/make_move.h"
#include "book/book_folder.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "support/playout.h"

namespace vrel {
namespace {

constexpr const char* kBook = "vrel.opn";
constexpr const char* kAfterE4 = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3";
constexpr const char* kAfterD4 = "rnbqkbnr/pppppppp/8/8/3P4/8/PPP1PPPP/RNBQKBNR b KQkq d3";
constexpr const char* kAfterE4E5 = "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6";

class BookLookupTest : public BookTest {
protected:
    void SetUp() override {
        BookTest::SetUp();
        PBlock.book_random = 1;  // no chance
    }
    static void UseBook(const std::vector<BookRecord>& records) {
        WriteRecords(kBook, records);
        InitBook();
    }
    static void UseBook(const std::vector<BookEntry>& entries) { UseBook(RecordsOf(entries)); }

    static const BookRecord* Find(const std::string& fen) {
        const TestPosition pos(fen);
        UpdatePosHash(*pos);
        return FindPosition(pos->stm);
    }
    // The book move of the game record's position, and what is printed on the way to it.
    static std::string Choose() {
        GetCandidates(GamePosition(), false);
        MoveText text;
        return MoveToStr(PBlock.pv[1], text.data());
    }
    static std::string Consider() {
        testing::internal::CaptureStdout();
        GetCandidates(GamePosition(), true);
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(BookLookupTest, FindsEveryRecord) {
    std::vector<BookEntry> entries;
    for (const std::string& fen : RandomPositions(3000, 4))
        entries.push_back({fen, 1, 2, 3});
    std::vector<BookRecord> records = RecordsOf(entries);
    records.erase(std::unique(records.begin(), records.end(),
                              [](const BookRecord& a, const BookRecord& b) { return BookOrder(a) == BookOrder(b); }),
                  records.end());
    UseBook(records);
    for (size_t i = 0; i < entries.size(); i += 7) {
        KillBook();  // each look-up loads its part anew
        InitBook();
        const BookRecord* found = Find(entries[i].fen);
        ASSERT_NE(found, nullptr) << entries[i].fen;
        EXPECT_EQ(Plain(*found), Plain(RecordOf(entries[i])));
    }
    EXPECT_EQ(Find("8/8/8/8/8/8/8/k1K5 w - -"), nullptr);
}

TEST_F(BookLookupTest, KeepsTheSidesApart) {
    UseBook({{"4k3/8/8/8/8/8/8/4K3 w - -", 9, 0, 0}});
    EXPECT_NE(Find("4k3/8/8/8/8/8/8/4K3 w - -"), nullptr);
    EXPECT_EQ(Find("4k3/8/8/8/8/8/8/4K3 b - -"), nullptr);
}

TEST_F(BookLookupTest, OfALargeGroupOnlyTheFirst2048AreSeen) {
    // All keys alike, second hashes falling; the position sought is moved through the file.
    const BookRecord sought = RecordOf({kAfterE4, 1, 2, 3});
    for (const int above : {0, 2046, 2047, 2048, 3000}) {
        std::vector<BookRecord> records;
        for (int i = 0; i < above; ++i) {
            BookRecord record = sought;
            record.hash2_high = static_cast<uint16_t>(0xffff - i);
            records.push_back(record);
        }
        records.push_back(sought);
        UseBook(records);
        EXPECT_EQ(Find(kAfterE4) != nullptr, above < 2048) << above;
    }
}

TEST_F(BookLookupTest, WithoutABookThereIsNoMove) {
    const BookRecord record = RecordOf({kAfterE4, 0, 10, 0});
    const std::string bytes(reinterpret_cast<const char*>(&record), sizeof record);
    PBlock.pv[1] = 1;
    PBlock.pv[2] = 1;
    InitBook();  // no file
    EXPECT_EQ(Choose(), "null");
    EXPECT_EQ(PBlock.pv[2], NO_MOVE);
    WriteBytes(kBook, "");
    InitBook();
    EXPECT_EQ(Choose(), "null");
    WriteBytes(kBook, bytes.substr(0, 13));  // cut in its only record
    InitBook();
    EXPECT_EQ(Choose(), "null");
    WriteBytes(kBook, bytes + bytes.substr(0, 13));  // the tail is ignored
    InitBook();
    EXPECT_EQ(Choose(), "e2e4");
    PBlock.book_file[0] = 0;  // a book without a name
    InitBook();
    EXPECT_EQ(Choose(), "null");
    std::filesystem::remove(kBook);
    std::filesystem::create_directory(kBook);
    PBlock.book_file = {'v', 'r', 'e', 'l', '.', 'o', 'p', 'n'};
    InitBook();
    EXPECT_EQ(Choose(), "null");
}

TEST_F(BookLookupTest, ShowsWhatItConsiders) {
    // The chooser's wins are the child's losses.
    UseBook({{kAfterE4, 5, 10, 5}, {kAfterD4, 0, 1, 0}});
    EXPECT_EQ(Consider(),
              "d2d4       1 -     0 -     0   0.500  0.000\n"
              "e2e4      10 -     5 -     5   0.595  0.868\n"
              "book move is e2e4\n");
    EXPECT_EQ(Choose(), "e2e4");
}

TEST_F(BookLookupTest, ChoosesForBlackWithItsOwnBias) {
    UseBook({{kAfterE4, 3, 3, 3}, {kAfterE4E5, 5, 10, 5}});
    PlayGameMove(GamePosition(), MakeMoveValue(12, 28));
    EXPECT_EQ(Consider(),
              "e7e5      10 -     5 -     5   0.595  0.908\n"
              "book move is e7e5\n");
}

TEST_F(BookLookupTest, WinsDecideWhetherAMoveIsPlayed) {
    const struct {
        int wins, losses, draws;  // of the side that chooses
        bool played;
    } rows[] = {
        {0, 0, 60000, false}, {1, 0, 0, false}, {1, 0, 1000, false}, {2, 0, 0, true},         {5, 12, 0, false},
        {6, 12, 0, true},     {6, 13, 0, true}, {6, 14, 0, false},   {60000, 60000, 0, true}, {2, 5, 0, false},
    };
    for (const auto& row : rows) {
        UseBook({{kAfterE4, row.losses, row.wins, row.draws}});
        EXPECT_EQ(Choose(), row.played ? "e2e4" : "null") << row.wins << "-" << row.losses << "-" << row.draws;
    }
}

TEST_F(BookLookupTest, TheFirstOfEqualMovesStays) {
    UseBook({{kAfterE4, 5, 10, 5}, {kAfterD4, 5, 10, 5}});
    std::string first;
    for (const MoveEntry& entry : AllMoves(GamePosition())) {
        MoveText text;
        const std::string move = MoveToStr(entry.move, text.data());
        if (first.empty() && (move == "e2e4" || move == "d2d4"))
            first = move;
    }
    EXPECT_EQ(Choose(), first);
}

TEST_F(BookLookupTest, AGameThatHasLeftTheBookStaysOutside) {
    UseBook({{kAfterE4E5, 0, 10, 0}});
    SetPosition(GamePosition(), kAfterE4);
    EXPECT_EQ(Choose(), "e7e5");  // set up: its children count
    SetPosition(GamePosition(), fen_opn);
    PlayGameMove(GamePosition(), MakeMoveValue(12, 28));
    EXPECT_EQ(Choose(), "null");  // played: the position itself isn't in the book
    EXPECT_EQ(Consider(), "");
    UseBook({{kAfterE4, 0, 0, 0}, {kAfterE4E5, 0, 10, 0}});
    EXPECT_EQ(Choose(), "e7e5");
}

TEST_F(BookLookupTest, ChanceIsAtMostBookRandomLessOneHundredths) {
    UseBook({{kAfterE4, 5, 10, 5}});
    for (const int range : {0, 1, 20, 100}) {
        PBlock.book_random = static_cast<int16_t>(range);
        for (int i = 0; i < 50; ++i) {
            const std::string shown = Consider();
            double value = 0.0;
            ASSERT_EQ(std::sscanf(shown.c_str(), "e2e4 10 - 5 - 5 0.595 %lf", &value), 1) << shown;
            EXPECT_GE(value, 0.867);
            EXPECT_LE(value, 0.869 + 0.01 * std::max(range - 1, 0));
        }
    }
}

TEST_F(BookLookupTest, LeavesThePositionAlone) {
    UseBook({{kAfterE4, 0, 10, 0}});
    const Position before = *GamePosition();
    Choose();
    EXPECT_TRUE(SamePosition(*GamePosition(), before));
}

TEST_F(BookLookupTest, TheFileMayChangeOrGo) {
    std::vector<BookEntry> entries;
    for (const std::string& fen : RandomPositions(2000, 11))
        entries.push_back({fen, 10, 10, 10});
    const std::vector<BookRecord> records = RecordsOf(entries);
    const auto look = [&] {
        for (const BookEntry& entry : entries)
            Find(entry.fen);
    };
    UseBook(records);
    WriteRecords(kBook, {records.begin(), records.begin() + 10});  // shorter
    look();
    WriteBytes(kBook, "");
    look();
    WriteBytes(kBook, std::string(50000, '\xff'));
    look();
    std::filesystem::remove(kBook);
    look();
    EXPECT_EQ(Find("8/8/8/8/8/8/8/k1K5 w - -"), nullptr);
}

TEST_F(BookLookupTest, RandomBytesAndUnsortedRecordsDoNoHarm) {
    std::mt19937 random(3);
    for (int turn = 0; turn < 20; ++turn) {
        std::string bytes;
        for (size_t i = RandomBelow(&random, 100000); i > 0; --i)
            bytes += static_cast<char>(turn % 2 ? random() % 4 : random());
        WriteBytes(kBook, bytes);
        InitBook();
        for (const std::string& fen : RandomPositions(40, static_cast<uint32_t>(turn))) {
            SetPosition(GamePosition(), fen.c_str());
            const std::string move = Choose();
            oracle::Move found;
            EXPECT_TRUE(move == "null" || oracle::FindLegalMove(OracleBoard(*GamePosition()), move, &found));
        }
    }
    std::vector<BookRecord> records = RecordsOf({{kAfterE4, 0, 10, 0}, {kAfterD4, 0, 10, 0}, {kAfterE4E5, 0, 9, 0}});
    std::reverse(records.begin(), records.end());
    UseBook(records);
    SetPosition(GamePosition(), fen_opn);
    Choose();
}

}  // namespace
}  // namespace vrel
