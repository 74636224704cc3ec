#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"

namespace vrel {

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

    // Adds a record that counts so much. Records are gathered, and written when there are enough.
    void Put(std::string_view record, int count = 1);

    // Writes what has been gathered. False if something couldn't be written, now or before.
    bool Flush();
    bool Close();

    // What the records count that stand in the file.
    int64_t written() const { return written_; }

private:
    struct Gathered {
        size_t end;  // of the record in `text_`
        int count;
    };

    File file_;
    std::string name_;
    std::string text_;
    std::vector<Gathered> records_;
    int64_t size_ = 0;  // of the file, up to its last whole record
    int64_t written_ = 0;
    bool failed_ = false;
};

}  // namespace vrel
