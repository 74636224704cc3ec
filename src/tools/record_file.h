#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"

namespace vrel {

// What a record holds, for those who count.
struct RecordCounts {
    int games = 0;
    int positions = 0;
};

// Writes records, games or positions, each whole or not at all: when the disk is full, what is torn is taken back, and
// one line on standard error says what has happened.
class RecordFile {
public:
    RecordFile() = default;
    // `name` is for what has to be said.
    RecordFile(File file, const char* name);
    ~RecordFile() { Close(); }
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;

    explicit operator bool() const { return static_cast<bool>(file_); }

    // Adds a record, which holds so much. Records are gathered, and written when there are enough.
    void Put(std::string_view record, const RecordCounts& counts = {});

    // Writes what has been gathered. False if something couldn't be written, now or before.
    bool Flush();
    bool Close();

    // True if something couldn't be written. What is put behind that is lost.
    bool failed() const { return failed_; }

    // What the records hold that stand in the file.
    const RecordCounts& written() const { return written_; }

private:
    struct Gathered {
        size_t end;  // of the record in `text_`
        RecordCounts counts;
    };

    void Fail();

    File file_;
    std::string name_;
    std::string text_;
    std::vector<Gathered> records_;
    int64_t size_ = 0;  // of the file, up to its last whole record
    RecordCounts written_;
    bool failed_ = false;
};

}  // namespace vrel
