#include "book/book_runs.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <random>

#include "book/book_buffer.h"
#include "book/book_folder.h"
#include "support/playout.h"

namespace vrel {
namespace {

class BookRunsTest : public BookTest {};

BookRecord Record(int key, uint32_t second, int wins, int losses, int draws) {
    return {static_cast<uint16_t>(key),
            static_cast<uint16_t>(second % 65536),
            static_cast<uint16_t>(second / 65536),
            static_cast<uint16_t>(wins),
            static_cast<uint16_t>(losses),
            static_cast<uint16_t>(draws),
            0};
}

void Write(const std::vector<BookRecord>& records) { WriteBook(records.data(), records.size()); }

// Few different positions, so that runs have many in common.
std::vector<BookRecord> RandomRun(std::mt19937* random, size_t size) {
    std::map<uint64_t, BookRecord> run;
    for (size_t i = 0; i < size; ++i) {
        const BookRecord r = Record(static_cast<int>(RandomBelow(random, 64) * 1024), (*random)() & 0xc000007fU,
                                    static_cast<int>(RandomBelow(random, 40000)), 1, 2);
        run[BookOrder(r)] = r;
    }
    std::vector<BookRecord> records;
    for (auto it = run.rbegin(); it != run.rend(); ++it)
        records.push_back(it->second);
    return records;
}

TEST_F(BookRunsTest, MergingAddsUpEqualPositionsAndKeepsTheOrder) {
    Write({Record(9, 5, 1, 2, 3), Record(9, 4, 1, 1, 1), Record(2, 7, 4, 0, 0)});
    Write({Record(10, 0, 8, 8, 8), Record(9, 4, 10, 20, 30), Record(2, 6, 5, 0, 0), Record(1, 0, 6, 0, 0)});
    EXPECT_EQ(PlainAll(ReadRecords("tmp.opn")),
              PlainAll({Record(10, 0, 8, 8, 8), Record(9, 5, 1, 2, 3), Record(9, 4, 11, 21, 31), Record(2, 7, 4, 0, 0),
                        Record(2, 6, 5, 0, 0), Record(1, 0, 6, 0, 0)}));
    EXPECT_FALSE(std::filesystem::exists("tmp__0.opn"));
}

TEST_F(BookRunsTest, CountersAreCappedWhenTheyAreAddedUp) {
    Write({Record(3, 0, 40000, 60000, 30000)});
    Write({Record(3, 0, 30000, 60000, 30001)});
    EXPECT_EQ(PlainAll(ReadRecords("tmp.opn")), PlainAll({Record(3, 0, 60000, 60000, 60000)}));
    Write({Record(3, 0, 1, 0, 0)});
    EXPECT_EQ(PlainAll(ReadRecords("tmp.opn")), PlainAll({Record(3, 0, 60000, 60000, 60000)}));
}

TEST_F(BookRunsTest, LongRunsMergeLikeAMapOfSums) {
    std::mt19937 random(8);
    std::map<uint64_t, PlainRecord> sums;
    for (const size_t size : {0U, 1U, 2047U, 2048U, 2049U, 7000U, 3U}) {
        const std::vector<BookRecord> run = RandomRun(&random, size);
        for (const BookRecord& record : run) {
            const auto [place, is_new] = sums.try_emplace(~BookOrder(record), Plain(record));
            if (is_new)
                continue;
            PlainRecord& sum = place->second;
            sum.wins = std::min(sum.wins + record.wins, 60000);
            sum.losses += record.losses;
            sum.draws += record.draws;
        }
        Write(run);
        if (size == 2048)
            MergeBook();
    }
    MergeBook();
    std::vector<PlainRecord> expected;
    for (const auto& [order, record] : sums)
        expected.push_back(record);
    EXPECT_EQ(PlainAll(ReadRecords("book.opn")), expected);
    EXPECT_FALSE(std::filesystem::exists("tmp.opn"));
}

TEST_F(BookRunsTest, MergeBookWithoutARunDoesNothing) {
    WriteRecords("book.opn", {Record(3, 0, 1, 2, 3)});
    const std::string before = ReadBytes("book.opn");
    MergeBook();
    EXPECT_EQ(ReadBytes("book.opn"), before);
}

TEST_F(BookRunsTest, PruningKeepsPositionsWithMoreThanFivePoints) {
    const BookRecord wins = Record(9, 0, 3, 0, 0);
    const BookRecord mixed = Record(7, 0, 2, 0, 2);
    const BookRecord draws = Record(5, 0, 0, 9, 6);
    WriteRecords("book.opn", {wins, Record(8, 0, 2, 0, 1), mixed, Record(6, 0, 0, 60000, 5), draws});
    PruneBook();
    EXPECT_EQ(PlainAll(ReadRecords("book.opn")), PlainAll({wins, mixed, draws}));
    EXPECT_FALSE(std::filesystem::exists("tmp.opn"));
}

TEST_F(BookRunsTest, OnAFullDiskTheOldFilesStayWhole) {
    std::mt19937 random(2);
    const std::vector<BookRecord> book = RandomRun(&random, 3000);
    const std::vector<BookRecord> run = RandomRun(&random, 3000);
    WriteRecords("book.opn", book);
    WriteRecords("tmp.opn", run);
    for (const size_t room : {0U, 1U, 14U, 5000U, 14U * 2048U, 14U * 2100U}) {
        const FullDisk disk(room);
        WriteBook(book.data(), book.size());
        MergeBook();
        EXPECT_EQ(PlainAll(ReadRecords("book.opn")), PlainAll(book)) << room;
        EXPECT_EQ(PlainAll(ReadRecords("tmp.opn")), PlainAll(run)) << room;
        EXPECT_FALSE(std::filesystem::exists("tmp__0.opn")) << room;
    }
    for (const size_t room : {0U, 1U, 5000U}) {
        const FullDisk disk(room);
        PruneBook();
        EXPECT_EQ(PlainAll(ReadRecords("book.opn")), PlainAll(book)) << room;
    }
}

TEST_F(BookRunsTest, WhereNoFileCanBeMadeNothingHappens) {
    WriteRecords("tmp.opn", {Record(3, 0, 1, 2, 3)});
    std::filesystem::create_directory("tmp__0.opn");
    Write({Record(3, 0, 1, 2, 3)});
    MergeBook();
    EXPECT_EQ(PlainAll(ReadRecords("tmp.opn")), PlainAll({Record(3, 0, 1, 2, 3)}));
    EXPECT_FALSE(std::filesystem::exists("book.opn"));
}

TEST(BookBuffer, SortsWhatItCollects) {
    std::mt19937 random(1);
    const auto buffer = std::make_unique<BookBuffer>();
    ClearBuffer(buffer.get());
    std::map<uint64_t, int> counts;
    for (int i = 0; i < 30000; ++i) {
        const auto key = static_cast<uint16_t>(random() % 7 * 9000);
        const auto second = static_cast<uint32_t>(random() % 1500 * 2863311U);
        BookRecord* record = FindOrInsert(buffer.get(), key, second);
        ASSERT_NE(record, nullptr);
        ++record->wins;
        ++counts[~BookOrder(key, second)];
    }
    SortBuffer(buffer.get());
    ASSERT_EQ(buffer->count, counts.size());
    size_t i = 0;
    for (const auto& [order, count] : counts) {
        EXPECT_EQ(BookOrder(buffer->sorted[i]), ~order);
        EXPECT_EQ(buffer->sorted[i++].wins, count);
    }
    ClearBuffer(buffer.get());
    EXPECT_EQ(FindOrInsert(buffer.get(), 1, 2)->wins, 0);
}

TEST(BookBuffer, WhenFullItOnlyFindsWhatItHas) {
    const auto buffer = std::make_unique<BookBuffer>();
    ClearBuffer(buffer.get());
    for (uint32_t i = 0; i < BOOK_BUFFER_RECORDS; ++i)
        ASSERT_NE(FindOrInsert(buffer.get(), 0, i), nullptr);
    EXPECT_EQ(FindOrInsert(buffer.get(), 1, 0), nullptr);
    EXPECT_NE(FindOrInsert(buffer.get(), 0, 19999), nullptr);
}

}  // namespace
}  // namespace vrel
