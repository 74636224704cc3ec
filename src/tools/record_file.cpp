#include "tools/record_file.h"

#include <utility>

#include "interface/messages.h"

namespace vrel {

namespace {

constexpr size_t ENOUGH = 65536;  // bytes

}  // namespace

RecordFile::RecordFile(File file, const char* name) : file_(std::move(file)), name_(name) {
    if (!file_)
        return;
    size_ = file_.Size();
    file_.WriteThrough();
}

void RecordFile::Put(std::string_view record, const RecordCounts& counts) {
    // After a failure the rest isn't tried any more: a gap would be worse than an end.
    if (failed_ || !file_)
        return;
    text_ += record;
    records_.push_back({text_.size(), counts});
    if (text_.size() >= ENOUGH)
        Flush();
}

bool RecordFile::Flush() {
    if (!file_)
        return false;
    const size_t done = file_.Append(text_.data(), text_.size());
    if (done < text_.size())
        Fail();
    size_t whole = 0;
    for (const Gathered& record : records_) {
        if (record.end > done)
            break;
        whole = record.end;
        written_.games += record.counts.games;
        written_.positions += record.counts.positions;
    }
    size_ += static_cast<int64_t>(whole);
    // Not every system counts all bytes that a write has left behind before it failed.
    if (failed_)
        file_.CutTo(size_);
    text_.clear();
    records_.clear();
    return !failed_;
}

bool RecordFile::Close() {
    if (!file_)
        return !failed_;
    Flush();
    if (!file_.Close() && !failed_)
        Fail();
    return !failed_;
}

void RecordFile::Fail() {
    failed_ = true;
    Complain("%s: %s", name_.c_str(), FileTrouble());
}

}  // namespace vrel
