#include "book/book_runs.h"

#include <algorithm>
#include <cstdint>

#include "interface/messages.h"

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

// Merges into the output file. False, and no output file, if not everything could be read and written.
bool MergeToDisk(RecordSource* a, RecordSource* b) {
    RecordSink out(kMergeName);
    if (!out.sound())
        return false;
    Merge(a, b, &out);
    if (out.Close() && a->sound() && b->sound())
        return true;
    DeleteFile(kMergeName);
    return false;
}

// Gives a finished file its name. It takes the place of the old file at once, so that there is always a whole one.
bool Replace(const char* finished, const char* name) {
    if (RenameFile(finished, name))
        return true;
    DeleteFile(finished);
    return false;
}

}  // namespace

RecordSource::RecordSource(const char* name) : file_(name, "rb") {
    const int64_t size = file_.Size();
    if (size >= 0)
        left_ = size / sizeof(BookRecord);
    else
        sound_ = !FileExists(name);
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
    left_ = sound_ ? left_ - count : 0;
    at_ = chunk_.data();
    end_ = at_ + count;
    return count != 0;
}

bool RecordSink::Close() {
    Flush();
    const bool closed = file_.Close();
    return closed && sound_;
}

void RecordSink::Flush() {
    // After a failure the rest isn't tried any more.
    sound_ = sound_ && file_.Write(chunk_.data(), count_ * sizeof(BookRecord));
    count_ = 0;
}

void WriteBook(const BookRecord* records, size_t count) {
    RecordSource run(kRunName);
    RecordSource buffer(records, count);
    if (run.sound() && MergeToDisk(&run, &buffer) && Replace(kMergeName, kRunName))
        Print(".");
}

void MergeBook() {
    ShowMessage("\nmerging...");
    if (!FileExists(kRunName))
        return;
    RecordSource book(kBookName);
    RecordSource run(kRunName);
    if (!book.sound() || !run.sound())
        return;
    if (MergeToDisk(&book, &run) && Replace(kMergeName, kBookName))
        DeleteFile(kRunName);
    Print("\n");
}

void PruneBook() {
    RecordSource book(kBookName);
    if (!FileExists(kBookName) || !book.sound())
        return;
    RecordSink out(kRunName);
    if (!out.sound())
        return;
    ShowMessage("pruning...");
    while (const BookRecord* record = book.Current()) {
        if (2 * record->wins + record->draws > PRUNE_POINTS)
            out.Put(*record);
        book.Advance();
    }
    if (out.Close() && book.sound())
        Replace(kRunName, kBookName);
    else
        DeleteFile(kRunName);
    Print("\n");
}

}  // namespace vrel
