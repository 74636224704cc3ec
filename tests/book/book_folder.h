#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "book/book_keys.h"
#include "support/engine.h"

// Book files for tests, with hashes computed apart from the engine.
namespace vrel {

// A position of a book and its counters, seen from the side to move.
struct BookEntry {
    std::string fen;
    int wins, losses, draws;
};

// The record of an entry, from the text of the position alone.
BookRecord RecordOf(const BookEntry& entry);

// Position and counters of records, in the order of the file, for comparisons.
struct PlainRecord {
    uint16_t key;
    uint32_t second;
    int wins, losses, draws, reserved;
    bool operator==(const PlainRecord&) const = default;
};
std::ostream& operator<<(std::ostream& out, const PlainRecord& record);
PlainRecord Plain(const BookRecord& record);
std::vector<PlainRecord> PlainAll(const std::vector<BookRecord>& records);

// The records as a book file has them: sorted by falling key and second hash.
std::vector<BookRecord> SortedRecords(std::vector<BookRecord> records);
std::vector<BookRecord> RecordsOf(const std::vector<BookEntry>& entries);

// Whole files; a missing one reads as empty.
std::string ReadBytes(const std::string& name);
void WriteBytes(const std::string& name, const std::string& bytes);
std::vector<BookRecord> ReadRecords(const std::string& name);
void WriteRecords(const std::string& name, const std::vector<BookRecord>& records);

// Makes every file that is written longer than so many bytes fail, like a full disk, for the life of the object.
class FullDisk {
public:
    explicit FullDisk(size_t bytes);
    ~FullDisk();
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    uint64_t limit_ = 0;
};

// Runs each test in an empty folder, without a book at first.
class BookTest : public EngineTest {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    std::string home_, folder_;
};

}  // namespace vrel
