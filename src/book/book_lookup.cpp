#include "book/book_lookup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#include "board/generate.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "book/book_keys.h"
#include "book/book_record.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "platform/file.h"

namespace vrel {

namespace {

constexpr int BUFFER = 2048;    // records of the file held at a time
constexpr size_t INDEX = 1024;  // by the top ten bits of a key
constexpr double COLOUR_BIAS = 0.02;

// First record of the file with each prefix, -1 if there is none.
std::unique_ptr<int32_t[]> bktable;
std::unique_ptr<BookRecord[]> bkbuffr;
int32_t bkrecnum = 0;  // records in the file; 0 means no book

// The part of the file in the buffer: highest and lowest key, and its length. No key lies in the range at first.
struct {
    uint16_t first = 0;
    uint16_t last = 1;
    int cnt = 0;
} held;

size_t Prefix(uint16_t key) { return key >> 6; }

bool ReadRecord(File* in, BookRecord* record) { return in->Read(record, sizeof *record) == sizeof *record; }

void BuildIndex(File* in) {
    BookRecord record;
    while (ReadRecord(in, &record)) {
        int32_t& start = bktable[Prefix(record.key)];
        if (start == -1)
            start = bkrecnum;
        ++bkrecnum;
    }
}

// Loads the records from the prefix of `key` on, up to the first beyond it. The file is opened anew for each load, so
// that it may be replaced meanwhile.
bool Load(uint16_t key) {
    held = {};
    const int32_t start = bktable[Prefix(key)];
    if (PBlock.book_file[0] == '\0' || start < 0)
        return false;
    File in(PBlock.book_file.data(), "rb");
    if (!in || !in.Seek(static_cast<long>(start) * static_cast<long>(sizeof(BookRecord))))
        return false;
    int n = 0;
    while (n < BUFFER && ReadRecord(&in, &bkbuffr[static_cast<size_t>(n)])) {
        const uint16_t read = bkbuffr[static_cast<size_t>(n)].key;
        ++n;
        if (Prefix(read) < Prefix(key))
            break;
    }
    if (n == 0)
        return false;
    held = {bkbuffr[0].key, bkbuffr[static_cast<size_t>(n - 1)].key, n};
    return true;
}

// The record of the last hashes with `side` to move, null if the book hasn't the position. The copy is valid until
// the next call.
const BookRecord* FindPosition(int side) {
    static BookRecord h;
    if (bkrecnum == 0)
        return nullptr;
    const uint16_t key = BookKey(hash1, side);
    if (hash1 == 0)
        held = {};
    if ((key < held.last || key > held.first) && !Load(key))
        return nullptr;
    const uint64_t sought = static_cast<uint64_t>(key) << 32 | hash2;
    int low = 0;
    int high = held.cnt - 1;
    while (low <= high) {
        const int middle = (low + high) / 2;
        h = bkbuffr[static_cast<size_t>(middle)];
        if (sought < OrderOf(h))
            low = middle + 1;
        else if (sought > OrderOf(h))
            high = middle - 1;
        else
            return &h;
    }
    return nullptr;
}

// How well the chooser has done with a move, and how much that is worth with a random share.
struct Candidate {
    int wins, losses, draws;
    double score, value;
};

Candidate Judge(const BookRecord& child, double bias) {
    Candidate c{child.losses, child.wins, child.draws, 0.0, 0.0};
    const int random = std::rand();
    c.score = (c.wins + c.draws / 2.0) / (c.wins + c.losses + c.draws + 1);
    if (c.wins <= 1 || c.wins < c.losses / 2)
        return c;
    const int spread = PBlock.book_random;
    const double chance = spread > 0 ? (random % spread) * 0.01 : 0.0;
    const int good = c.wins + c.draws;
    c.value = 2 * c.score + bias + chance - 1.25 * std::sqrt(good) / (good + 1);
    return c;
}

}  // namespace

void InitBook() {
    InitBookKeys();
    bkbuffr.reset(new (std::nothrow) BookRecord[BUFFER]());
    bktable.reset(new (std::nothrow) int32_t[INDEX]);
    bkrecnum = 0;
    if (!bkbuffr || !bktable)
        return;
    std::fill_n(bktable.get(), INDEX, -1);
    if (PBlock.book_file[0] != '\0')
        if (File in(PBlock.book_file.data(), "rb"); in)
            BuildIndex(&in);
    hash1 = 0;
    hash2 = 0;
    FindPosition(WHITE);
}

void KillBook() {
    bkbuffr.reset();
    bktable.reset();
    bkrecnum = 0;
}

void GetCandidates(Position* pos, bool verbose) {
    PBlock.pv[1] = NO_MOVE;
    PBlock.pv[2] = NO_MOVE;
    if (bkrecnum == 0)
        return;
    GenerateAll(pos);
    UpdatePosHash(*pos);
    // The first position of a game isn't in the book, but its children may be.
    if (pos->game_ply > 0 && FindPosition(pos->stm) == nullptr)
        return;
    const double bias = pos->stm == WHITE ? -COLOUR_BIAS : COLOUR_BIAS;
    double best = 0.0;
    MoveText text;
    for (MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; ++entry) {
        PickNextMove(entry);
        const Move move = entry->move;
        if (!MoveIsLegal(*pos, pos->stm, move))
            continue;
        MakeMove(pos, move);
        UpdatePosHash(*pos);
        if (const BookRecord* child = FindPosition(pos->stm)) {
            const Candidate c = Judge(*child, bias);
            if (c.value > best) {
                PBlock.pv[1] = move;
                best = c.value;
            }
            if (verbose)
                Print("%s   %5d - %5d - %5d   %0.3f  %0.3f\n", MoveToStr(move, text.data()), c.wins, c.losses, c.draws,
                      c.score, c.value);
        }
        UnmakeMove(pos);
    }
    if (verbose && PBlock.pv[1] != NO_MOVE)
        Print("book move is %s\n", MoveToStr(PBlock.pv[1], text.data()));
}

}  // namespace vrel
