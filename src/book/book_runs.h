#pragma once

#include <array>
#include <cstddef>

#include "book/book_keys.h"
#include "platform/file.h"

// Sorted runs of book records, in memory and on disk, and their merging. Whatever the size of the files, only small
// parts of them are in memory, and a file takes a name only when it is whole. What goes wrong is told on standard error
// where it happens.
namespace vrel {

inline constexpr const char* kBookName = "book.opn";       // the book
inline constexpr const char* kGrowingName = "tmp__1.opn";  // all games up to the last MergeBook
inline constexpr const char* kRunName = "tmp.opn";         // those since then
inline constexpr const char* kMergeName = "tmp__0.opn";    // output of a merge, until it is whole

// Counters stay within their 16 bits when records are added up.
inline constexpr int CAP = 60000;

inline constexpr size_t CHUNK_RECORDS = 2048;
using RecordChunk = std::array<BookRecord, CHUNK_RECORDS>;

// Reads records one after the other, from memory or from a file. A few bytes behind the last whole record are ignored.
class RecordSource {
public:
    RecordSource(const BookRecord* records, size_t count) : at_(records), end_(records + count) {}
    explicit RecordSource(const char* name);

    // The current record; null at the end.
    const BookRecord* Current() { return at_ != end_ || Refill() ? at_ : nullptr; }
    void Advance() { ++at_; }

    // False if there is a file that can't be opened, or that couldn't be read to its end.
    bool sound() const { return sound_; }

private:
    bool Refill();

    const BookRecord* at_ = nullptr;
    const BookRecord* end_ = nullptr;
    const char* name_ = nullptr;
    File file_;
    size_t left_ = 0;  // records of the file that haven't been read
    bool sound_ = true;
    RecordChunk chunk_;
};

// Writes a file of records. While a long one is written the input is looked at, and after `quit` nothing more is.
class RecordSink {
public:
    explicit RecordSink(const char* name);

    void Put(const BookRecord& record) {
        if (count_ == CHUNK_RECORDS)
            WriteChunk();
        chunk_[count_++] = record;
    }
    // True if all records have been written.
    bool Close();

    bool sound() const { return sound_; }

private:
    void WriteChunk();
    void Write();

    const char* name_;
    File file_;
    bool sound_;
    size_t count_ = 0;
    RecordChunk chunk_;
};

// The steps of a book in work. Each is false if it couldn't be done to its end, and the book is then given up.

// Merges sorted records into the run on disk.
bool WriteBook(const BookRecord* records, size_t count);

// Merges the run into the growing book, after which there is no run.
bool MergeBook();

// Makes the book of what has grown, without the positions of little success. Until it is whole, the old book stays.
bool PruneBook();

// Deletes the files of a book in work.
void GiveUpBook();

}  // namespace vrel
