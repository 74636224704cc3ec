#pragma once

#include <array>
#include <cstddef>

#include "book/book_keys.h"
#include "platform/file.h"

// Sorted runs of book records, in memory and on disk, and their merging. Whatever the size of the files, only small
// parts of them are in memory, and a file takes a name only when it is whole.
namespace vrel {

inline constexpr const char* kBookName = "book.opn";     // the book
inline constexpr const char* kRunName = "tmp.opn";       // the games since the last MergeBook
inline constexpr const char* kMergeName = "tmp__0.opn";  // output of a merge, until it is whole

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

    // False if there is a file that can't be opened, or that ended before its time.
    bool sound() const { return sound_; }

private:
    bool Refill();

    const BookRecord* at_ = nullptr;
    const BookRecord* end_ = nullptr;
    File file_;
    size_t left_ = 0;  // records of the file that haven't been read
    bool sound_ = true;
    RecordChunk chunk_;
};

// Writes a file of records.
class RecordSink {
public:
    explicit RecordSink(const char* name) : file_(name, "wb"), sound_(static_cast<bool>(file_)) {}

    void Put(const BookRecord& record) {
        if (count_ == CHUNK_RECORDS)
            Flush();
        chunk_[count_++] = record;
    }
    // True if all records have been written.
    bool Close();

    bool sound() const { return sound_; }

private:
    void Flush();

    File file_;
    bool sound_;
    size_t count_ = 0;
    RecordChunk chunk_;
};

// Merges sorted records into the run on disk. On failure the run stays as it was.
void WriteBook(const BookRecord* records, size_t count);

// Merges the run into the book, after which there is no run. On failure both stay as they were.
void MergeBook();

// Drops the positions of the book with little success. On failure the book stays as it was.
void PruneBook();

}  // namespace vrel
