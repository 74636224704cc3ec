#include "book/book_runs.h"

#include <algorithm>
#include <cstdint>

#include "interface/messages.h"
#include "interface/pblock.h"
#include "search/search_control.h"

namespace vrel {

namespace {

// Points that keep a position in the book must be more than this: a win counts two, a draw one.
constexpr int PRUNE_POINTS = 5;

uint16_t AddCapped(uint16_t a, uint16_t b) { return static_cast<uint16_t>(std::min(a + b, CAP)); }

BookRecord Sum(const BookRecord& a, const BookRecord& b) {
    BookRecord sum = a;
    sum.wins = AddCapped(a.wins, b.wins);
    sum.losses = AddCapped(a.losses, b.losses);
    sum.draws = AddCapped(a.draws, b.draws);
    return sum;
}

// Two sorted sources into one; records of one position become one.
void Merge(RecordSource* a, RecordSource* b, RecordSink* out) {
    const BookRecord* x = a->Current();
    const BookRecord* y = b->Current();
    while (x != nullptr || y != nullptr) {
        // An exhausted source comes last; no record's order is negative.
        const int64_t x_order = x ? static_cast<int64_t>(BookOrder(*x)) : -1;
        const int64_t y_order = y ? static_cast<int64_t>(BookOrder(*y)) : -1;
        out->Put(x_order == y_order ? Sum(*x, *y) : x_order > y_order ? *x : *y);
        if (x_order >= y_order) {
            a->Advance();
            x = a->Current();
        }
        if (y_order >= x_order) {
            b->Advance();
            y = b->Current();
        }
    }
}

// A word about what has just failed.
bool Fail(const char* name) {
    Complain("%s: %s", name, FileTrouble());
    return false;
}

bool MergeToDisk(RecordSource* a, RecordSource* b) {
    RecordSink out(kMergeName);
    if (!out.sound() || !a->sound() || !b->sound())
        return false;
    Merge(a, b, &out);
    return out.Close() && a->sound() && b->sound();
}

// Gives a finished file its name. It takes the place of the old file at once, so that there is always a whole one.
bool Replace(const char* finished, const char* name) { return RenameFile(finished, name) || Fail(name); }

}  // namespace

RecordSource::RecordSource(const char* name) : name_(name), file_(OpenOwnFile(name, "rb")) {
    const int64_t size = file_.Size();
    if (size >= 0)
        left_ = size / sizeof(BookRecord);
    else
        sound_ = !FileExists(name) || Fail(name);
}

bool RecordSource::Refill() {
    const size_t wanted = std::min(left_, CHUNK_RECORDS);
    if (wanted == 0) {
        // Another file can take the place of a closed one everywhere.
        file_.Close();
        return false;
    }
    const size_t count = file_.Read(chunk_.data(), wanted * sizeof(BookRecord)) / sizeof(BookRecord);
    sound_ = count == wanted;
    if (!sound_)
        Complain("%s: %s", name_, file_.Failed() ? FileTrouble() : "has become shorter");
    left_ = sound_ ? left_ - count : 0;
    at_ = chunk_.data();
    end_ = at_ + count;
    return count != 0;
}

RecordSink::RecordSink(const char* name) : name_(name), file_(OpenOwnFile(name, "wb")), sound_(file_ || Fail(name)) {}

bool RecordSink::Close() {
    Write();
    sound_ = sound_ && (file_.Close() || Fail(name_));
    return sound_;
}

void RecordSink::WriteChunk() {
    poll_input();
    sound_ = sound_ && !PBlock.quit;
    Write();
}

void RecordSink::Write() {
    // After a failure the rest isn't tried any more.
    sound_ = sound_ && (file_.Write(chunk_.data(), count_ * sizeof(BookRecord)) || Fail(name_));
    count_ = 0;
}

bool WriteBook(const BookRecord* records, size_t count) {
    RecordSource run(kRunName);
    RecordSource buffer(records, count);
    if (!MergeToDisk(&run, &buffer) || !Replace(kMergeName, kRunName))
        return false;
    Print(".");
    return true;
}

bool MergeBook() {
    ShowMessage("\nmerging...");
    RecordSource grown(kGrowingName);
    RecordSource run(kRunName);
    if (!MergeToDisk(&grown, &run) || !Replace(kMergeName, kGrowingName))
        return false;
    DeleteFile(kRunName);
    Print("\n");
    return true;
}

bool PruneBook() {
    RecordSource grown(kGrowingName);
    RecordSink out(kMergeName);
    if (!grown.sound() || !out.sound())
        return false;
    ShowMessage("pruning...");
    while (const BookRecord* record = grown.Current()) {
        if (2 * record->wins + record->draws > PRUNE_POINTS)
            out.Put(*record);
        grown.Advance();
    }
    if (!out.Close() || !grown.sound() || !Replace(kMergeName, kBookName))
        return false;
    DeleteFile(kGrowingName);
    Print("\n");
    return true;
}

void GiveUpBook() {
    for (const char* name : {kGrowingName, kRunName, kMergeName})
        DeleteFile(name);
}

}  // namespace vrel
