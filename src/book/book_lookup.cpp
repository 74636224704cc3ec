#include "book/book_lookup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "board/generate.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "platform/file.h"
#include "search/search_control.h"

namespace vrel {

namespace {

constexpr size_t BUFFER_RECORDS = 2048;
constexpr int PREFIX_SHIFT = 6;  // the index goes by the top ten bits of a key
constexpr int NOT_IN_BOOK = -1;

// By the top ten bits of the key: number of the first record of the file that begins so.
std::array<int32_t, 1024> bktable;

// The part of the file last read, and how many records that is.
std::array<BookRecord, BUFFER_RECORDS> bkbuffr;
size_t cnt = 0;

// Number of records in the file, 0 for no book.
int32_t bkrecnum = 0;

// Highest and lowest key in the buffer. Before the first load no key lies between them.
int first = 0;
int last = 1;

constexpr int PrefixOf(int key) { return key >> PREFIX_SHIFT; }

void ForgetBuffer() {
    first = 0;
    last = 1;
    cnt = 0;
}

// Reads the records from the first one with the prefix of `key` up to one with a lower prefix, which stays in the
// buffer. False, with the buffer as it was, if the book has no such prefix or can't be opened.
bool LoadBuffer(int key) {
    if (PBlock.book_file[0] == 0)
        return false;
    File file = OpenOwnFile(PBlock.book_file.data(), "rb");
    const int32_t start = bktable[PrefixOf(key)];
    if (!file || start == NOT_IN_BOOK)
        return false;
    ForgetBuffer();
    if (!file.Seek(start * int64_t{sizeof(BookRecord)}))
        return false;
    while (cnt < BUFFER_RECORDS && file.Read(&bkbuffr[cnt], sizeof(BookRecord)) == sizeof(BookRecord))
        if (PrefixOf(bkbuffr[cnt++].key) < PrefixOf(key))
            break;
    // The file may have become shorter since it was indexed.
    if (cnt == 0)
        return false;
    first = bkbuffr[0].key;
    last = bkbuffr[cnt - 1].key;
    return true;
}

// Counts the records and notes where each prefix begins. The buffer holds the part of the file in work.
void IndexBook() {
    bktable.fill(NOT_IN_BOOK);
    if (PBlock.book_file[0] == 0)
        return;
    const char* name = PBlock.book_file.data();
    File file = OpenOwnFile(name, "rb");
    if (!file && FileExists(name))
        Complain("%s: %s", name, FileTrouble());
    size_t count;
    do {
        count = file.Read(bkbuffr.data(), sizeof bkbuffr) / sizeof(BookRecord);
        for (size_t i = 0; i < count && bkrecnum < std::numeric_limits<int32_t>::max(); ++i, ++bkrecnum) {
            int32_t& start = bktable[PrefixOf(bkbuffr[i].key)];
            if (start == NOT_IN_BOOK)
                start = bkrecnum;
        }
    } while (count == BUFFER_RECORDS && bkrecnum < std::numeric_limits<int32_t>::max());
}

// Binary search in the buffer, whose order falls; null if it isn't there. Ends in a buffer without order as well.
const BookRecord* SearchBuffer(uint64_t order) {
    size_t low = 0;
    size_t high = cnt;  // one behind the range
    while (low < high) {
        const size_t middle = (low + high - 1) / 2;
        const uint64_t found = BookOrder(bkbuffr[middle]);
        if (order == found)
            return &bkbuffr[middle];
        if (order < found)
            low = middle + 1;
        else
            high = middle;
    }
    return nullptr;
}

// The share of the points that the chooser got, the games counted with one loss more.
double BookScore(int w, int l, int d) { return (w + d / 2.0) / (w + l + d + 1); }

// A little chance, so that games differ. The draw happens for every child found, whether it is used or not.
double RandomTerm() {
    const int r = std::rand();
    const int range = PBlock.book_random;
    return range == 0 ? 0.0 : (r % range) * 0.01;
}

// What a move is worth by the games behind it; 0 if there are too few wins to play it.
double BookValue(int w, int l, int d, double bias, double random) {
    if (w <= 1 || w < l / 2)
        return 0.0;
    // The last term holds against moves with few games.
    return 2 * BookScore(w, l, d) + bias + random - 1.25 * std::sqrt(w + d) / (w + d + 1);
}

// The record of the position behind a legal move; null if the book doesn't hold it.
const BookRecord* FindChild(Position* pos, Move move) {
    MakeMove(pos, move);
    UpdatePosHash(*pos);
    const BookRecord* child = FindPosition(pos->stm);
    UnmakeMove(pos);
    return child;
}

}  // namespace

void InitBook() {
    KillBook();
    IndexBook();
    hash1 = 0;
    hash2 = 0;
    FindPosition(WHITE);
}

void KillBook() {
    bkrecnum = 0;
    ForgetBuffer();
}

bool BookIsThere() { return bkrecnum > 0; }

const BookRecord* FindPosition(Side side) {
    static BookRecord h;
    if (bkrecnum == 0)
        return nullptr;
    const int key = BookKey(side);
    if (hash1 == 0)
        ForgetBuffer();
    if ((key < last || key > first) && !LoadBuffer(key))
        return nullptr;
    const BookRecord* found = SearchBuffer(BookOrder(static_cast<uint16_t>(key), hash2));
    if (found == nullptr)
        return nullptr;
    h = *found;
    return &h;
}

void GetCandidates(Position* pos, bool verbose) {
    PublishMove(NO_MOVE);
    if (bkrecnum == 0)
        return;
    GenerateAll(pos);
    UpdatePosHash(*pos);
    // A game that has left the book stays outside. A position that was set up may come back to it by its children.
    if (pos->game_ply > 0 && FindPosition(pos->stm) == nullptr)
        return;
    const double bias = pos->stm == WHITE ? -0.02 : 0.02;
    double best = 0.0;
    Move chosen = NO_MOVE;
    MoveText text;
    for (MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; ++entry) {
        PickNextMove(entry);
        const Move move = entry->move;
        if (!MoveIsLegal(*pos, pos->stm, move))
            continue;
        const BookRecord* child = FindChild(pos, move);
        if (child == nullptr)
            continue;
        const int w = child->losses;
        const int l = child->wins;
        const int d = child->draws;
        const double value = BookValue(w, l, d, bias, RandomTerm());
        if (value > best) {
            best = value;
            chosen = move;
        }
        if (verbose)
            Print("%s   %5d - %5d - %5d   %0.3f  %0.3f\n", MoveToStr(move, text.data()), w, l, d, BookScore(w, l, d),
                  value);
    }
    PublishMove(chosen);
    if (verbose && chosen != NO_MOVE)
        Print("book move is %s\n", MoveToStr(chosen, text.data()));
}

}  // namespace vrel
