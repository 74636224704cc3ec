#include "book/book_build.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "board/fen.h"
#include "board/make_move.h"
#include "book/book_keys.h"
#include "book/book_record.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "interface/words.h"
#include "platform/file.h"
#include "search/search_thread.h"

namespace vrel {

namespace {

constexpr const char* PGN = "book.pgn";
constexpr const char* BOOK = "book.opn";  // the book being built, and the result
constexpr const char* RUN = "tmp.opn";    // the games since the last merge, and the pruned copy
constexpr const char* MERGED = "tmp__0.opn";

constexpr int FLUSH = 200;   // games in the buffer
constexpr int MERGE = 5000;  // games in the run
constexpr int CAP = 60000;   // of a counter
constexpr int PLIES = 49;    // the last ply that is read on from
constexpr int LEAST_SCORE = 5;
constexpr int TEXT_LINE = 255;
constexpr size_t BUFFER = 20000;
constexpr size_t HASH_SLOTS = 32768;  // more than the buffer holds
constexpr size_t CHUNK = 1024;        // records read or written at a time

enum Winner : int { WHITE_WON = 0, BLACK_WON = 1, NOBODY_WON = 2 };

// Positions of the games since the last flush, each once: found through a hash table and put into the order of the
// file only when they are written.
struct Collector {
    std::array<BookRecord, BUFFER> records;
    std::array<uint16_t, HASH_SLOTS> slots;  // number of a record plus one, 0 for none
    size_t count = 0;
};

void ClearCollector(Collector* collector) {
    collector->slots.fill(0);
    collector->count = 0;
}

// The record of a position, new if there was none; null if the buffer is full, which it never is in time.
BookRecord* FindOrAdd(Collector* collector, uint16_t key, uint32_t hash) {
    const BookRecord wanted{key, hash, 0, 0, 0, 0};
    size_t slot = (hash ^ (static_cast<uint32_t>(key) << 4)) % HASH_SLOTS;
    for (; collector->slots[slot]; slot = (slot + 1) % HASH_SLOTS) {
        BookRecord* record = &collector->records[collector->slots[slot] - 1u];
        if (OrderOf(*record) == OrderOf(wanted))
            return record;
    }
    if (collector->count == BUFFER)
        return nullptr;
    collector->records[collector->count++] = wanted;
    collector->slots[slot] = static_cast<uint16_t>(collector->count);
    return &collector->records[collector->count - 1];
}

// Records of a file, one after the other; without a file there are none.
class RecordReader {
public:
    explicit RecordReader(File file) : file_(std::move(file)) {}
    // Null at the end.
    const BookRecord* Current() {
        if (at_ == count_) {
            count_ = file_.Read(chunk_.data(), sizeof chunk_) / sizeof(BookRecord);
            at_ = 0;
        }
        return count_ ? &chunk_[at_] : nullptr;
    }
    void Advance() { ++at_; }

private:
    File file_;
    std::array<BookRecord, CHUNK> chunk_;
    size_t at_ = 0, count_ = 0;
};

// The same for the buffer, which is in order.
class BufferReader {
public:
    explicit BufferReader(const Collector& collector) : collector_(collector) {}
    const BookRecord* Current() const { return at_ < collector_.count ? &collector_.records[at_] : nullptr; }
    void Advance() { ++at_; }

private:
    const Collector& collector_;
    size_t at_ = 0;
};

class RecordWriter {
public:
    explicit RecordWriter(File* file) : file_(file) {}
    void Write(const BookRecord& record) {
        chunk_[count_++] = record;
        if (count_ == CHUNK)
            Flush();
    }
    // True if everything has reached the file.
    bool Finish() {
        Flush();
        return file_->Close() && good_;
    }

private:
    void Flush() {
        good_ = file_->Write(chunk_.data(), count_ * sizeof(BookRecord)) && good_;
        count_ = 0;
    }

    File* file_;
    std::array<BookRecord, CHUNK> chunk_;
    size_t count_ = 0;
    bool good_ = true;
};

uint16_t CappedSum(int a, int b) { return static_cast<uint16_t>(std::min(a + b, CAP)); }

BookRecord Summed(const BookRecord& a, const BookRecord& b) {
    return {a.key,     a.hash2, CappedSum(a.wins, b.wins), CappedSum(a.losses, b.losses), CappedSum(a.draws, b.draws),
            a.reserved};
}

// Merges two inputs in descending order; equal positions become one record.
template <typename First, typename Second>
void MergeRecords(First* first, Second* second, RecordWriter* out) {
    while (true) {
        const BookRecord* a = first->Current();
        const BookRecord* b = second->Current();
        if (a == nullptr && b == nullptr)
            return;
        const bool equal = a != nullptr && b != nullptr && OrderOf(*a) == OrderOf(*b);
        const bool take_first = b == nullptr || (a != nullptr && OrderOf(*a) >= OrderOf(*b));
        out->Write(equal ? Summed(*a, *b) : take_first ? *a : *b);
        if (take_first)
            first->Advance();
        if (equal || !take_first)
            second->Advance();
    }
}

// Gives a finished file its name. A file that could not be written whole never takes the place of another.
bool Replace(const char* target, bool written) {
    if (!written) {
        DeleteFile(MERGED);
        return false;
    }
    DeleteFile(target);
    return RenameFile(MERGED, target);
}

// The buffer into the run.
bool WriteBook(Collector* collector) {
    std::sort(collector->records.begin(), collector->records.begin() + static_cast<ptrdiff_t>(collector->count),
              [](const BookRecord& a, const BookRecord& b) { return OrderOf(a) > OrderOf(b); });
    RecordReader run(File(RUN, "rb"));
    BufferReader buffer(*collector);
    File out(MERGED, "wb");
    if (!out)
        return false;
    RecordWriter writer(&out);
    MergeRecords(&run, &buffer, &writer);
    const bool replaced = Replace(RUN, writer.Finish());
    if (replaced)
        Print(".");
    ClearCollector(collector);
    return replaced;
}

// The run into the book.
bool MergeBook() {
    ShowMessage("\nmerging...");
    File run_file(RUN, "rb");
    if (!run_file)
        return true;
    File out(MERGED, "wb");
    if (!out)
        return false;
    RecordReader book(File(BOOK, "rb"));
    RecordReader run(std::move(run_file));
    RecordWriter writer(&out);
    MergeRecords(&book, &run, &writer);
    if (!Replace(BOOK, writer.Finish()))
        return false;
    DeleteFile(RUN);
    Print("\n");
    return true;
}

// Positions that hardly ever did the side to move good are left out.
void PruneBook() {
    File in(BOOK, "rb");
    File out(RUN, "wb");
    if (!in || !out)
        return;
    ShowMessage("pruning...");
    RecordReader book(std::move(in));
    RecordWriter writer(&out);
    for (; const BookRecord* record = book.Current(); book.Advance())
        if (2 * record->wins + record->draws > LEAST_SCORE)
            writer.Write(*record);
    if (!writer.Finish()) {
        DeleteFile(RUN);
        return;
    }
    DeleteFile(BOOK);
    RenameFile(RUN, BOOK);
    Print("\n");
}

// Where the reader of the PGN stands.
struct Reader {
    Collector* collector;
    Position* game;
    int winner = NOBODY_WON;
    int games = 0;
    int comment_depth = 0;
    int variation_depth = 0;
    bool skip = false;    // the rest of the game is unreadable
    bool failed = false;  // the disk is full, or a file can't be replaced
};

void StartGame(Reader* reader, const char* line) {
    SetPosition(reader->game, fen_opn);
    reader->winner = std::strstr(line, "1-0") ? WHITE_WON : std::strstr(line, "0-1") ? BLACK_WON : NOBODY_WON;
    ++reader->games;
    if (reader->games % FLUSH == 0)
        reader->failed = !WriteBook(reader->collector) || reader->failed;
    if (reader->games % MERGE == 0)
        reader->failed = !MergeBook() || reader->failed;
    reader->comment_depth = 0;
    reader->variation_depth = 0;
    reader->skip = false;
}

void CountPosition(Reader* reader) {
    const int side = reader->game->stm;
    UpdatePosHash(*reader->game);
    BookRecord* record = FindOrAdd(reader->collector, BookKey(hash1, side), hash2);
    if (record == nullptr)
        return;
    if (reader->winner == NOBODY_WON)
        record->draws = static_cast<uint16_t>(record->draws + 1);
    else if (reader->winner == side)
        record->wins = static_cast<uint16_t>(record->wins + 1);
    else
        record->losses = static_cast<uint16_t>(record->losses + 1);
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The move in a word that may begin with a number and dots; null if there is none.
const char* FindMove(const char* word) {
    for (; *word != '\0'; ++word)
        if (IsLetter(*word) || (word[0] == '0' && word[1] == '-'))
            return word;
    return nullptr;
}

void ReadMove(Reader* reader, const char* text) {
    std::array<char, 260> buffer{};  // room for the one character by which reading may lengthen the text
    std::strncpy(buffer.data(), text, buffer.size() - 2);
    Move move = NO_MOVE;
    if (!IsValidMove(buffer.data(), &move)) {
        reader->skip = true;
        reader->variation_depth = 0;
        return;
    }
    PlayGameMove(reader->game, move);
    CountPosition(reader);
}

void ReadWord(Reader* reader, const char* word) {
    switch (*word) {
        case ';':
        case '$':
            return;
        case '{':
            ++reader->comment_depth;
            return;
        case '}':
            --reader->comment_depth;
            return;
        case '(':
            ++reader->variation_depth;
            return;
        case ')':
            --reader->variation_depth;
            return;
        default:
            break;
    }
    if (reader->comment_depth != 0 || reader->variation_depth != 0)
        return;
    if (const char* move = FindMove(word))
        ReadMove(reader, move);
}

void ReadMoveLine(Reader* reader, const char* line) {
    if (reader->comment_depth == 0 && (line[0] == '[' || line[0] == ';'))
        return;
    for (const char* word = NextWord(line); word != nullptr; word = NextWord(nullptr)) {
        if (reader->skip || reader->game->game_ply > PLIES)
            return;
        ReadWord(reader, word);
    }
}

// The last character of each line is cut off: its end.
void ReadGames(File* in, Reader* reader) {
    std::array<char, TEXT_LINE> line;
    while (!reader->failed && in->ReadLine(line.data(), TEXT_LINE)) {
        const size_t length = std::strlen(line.data());
        if (length > 0)
            line[length - 1] = '\0';
        if (std::strstr(line.data(), "[Result"))
            StartGame(reader, line.data());
        ReadMoveLine(reader, line.data());
    }
}

}  // namespace

void CreateBook() {
    PBlock.book_file[0] = '\0';
    const std::unique_ptr<Collector> collector(new (std::nothrow) Collector);
    if (!collector)
        return;
    ClearCollector(collector.get());
    DeleteFile(BOOK);
    File in(PGN, "r");
    if (!in)
        return;
    DeleteFile(RUN);  // of a run that was cut short
    Reader reader{collector.get(), GamePosition()};
    ReadGames(&in, &reader);
    if (!reader.failed && WriteBook(collector.get()) && MergeBook())
        PruneBook();
    ShowMessage("done");
    SetPosition(GamePosition(), fen_opn);
}

}  // namespace vrel
