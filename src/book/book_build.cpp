#include "book/book_build.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "board/fen.h"
#include "board/letters.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_buffer.h"
#include "book/book_lookup.h"
#include "book/book_runs.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "interface/words.h"
#include "platform/file.h"

namespace vrel {

namespace {

constexpr int64_t FLUSH = 200;   // games
constexpr int64_t MERGE = 5000;  // games
constexpr int BOOK_PLIES = 50;   // of each game

// Characters of a line that are read at a time; a longer line counts as several.
constexpr size_t LINE_LENGTH = 254;

enum Winner : int { WHITE_WON = WHITE, BLACK_WON = BLACK, NOBODY_WON = 2 };

// Where the reader of the games stands.
struct Builder {
    BookBuffer buffer;
    Position* pos;
    int64_t games;
    int64_t comments;    // open braces
    int64_t variations;  // open parentheses
    bool skip;           // the rest of the game can't be read
    int winner;
};

void FlushBuffer(Builder* builder) {
    SortBuffer(&builder->buffer);
    WriteBook(builder->buffer.sorted.data(), builder->buffer.count);
    ClearBuffer(&builder->buffer);
}

void StartGame(Builder* builder, const char* line) {
    SetPosition(builder->pos, fen_opn);
    builder->winner = std::strstr(line, "1-0") ? WHITE_WON : std::strstr(line, "0-1") ? BLACK_WON : NOBODY_WON;
    ++builder->games;
    if (builder->games % FLUSH == 0)
        FlushBuffer(builder);
    if (builder->games % MERGE == 0)
        MergeBook();
    builder->comments = 0;
    builder->variations = 0;
    builder->skip = false;
}

// Counts the game for the position on the board.
void CountPosition(Builder* builder) {
    const int side = builder->pos->stm;
    UpdatePosHash(*builder->pos);
    BookRecord* record = FindOrInsert(&builder->buffer, BookKey(side), hash2);
    if (record == nullptr)
        return;
    uint16_t& counter = builder->winner == NOBODY_WON ? record->draws
                        : builder->winner == side     ? record->wins
                                                      : record->losses;
    ++counter;
}

// The part of a word behind a move number and other signs: from the first letter, or from the 0 of a castling. Null
// if there is none.
const char* MoveWithin(const char* word) {
    for (; *word; ++word)
        if (IsLetter(*word) || (word[0] == '0' && word[1] == '-'))
            return word;
    return nullptr;
}

void ReadMove(Builder* builder, const char* word) {
    const char* start = MoveWithin(word);
    if (start == nullptr)
        return;
    std::array<char, LINE_LENGTH + 2> text;  // reading may make it one character longer
    const size_t length = std::min(std::strlen(start), LINE_LENGTH);
    std::memcpy(text.data(), start, length);
    text[length] = 0;
    Move move;
    if (!IsValidMove(text.data(), &move)) {
        builder->skip = true;
        builder->variations = 0;
        return;
    }
    PlayGameMove(builder->pos, move);
    CountPosition(builder);
}

void ReadWord(Builder* builder, const char* word) {
    switch (word[0]) {
        case ';':
        case '$':
            return;
        case '{':
            ++builder->comments;
            return;
        case '}':
            --builder->comments;
            return;
        case '(':
            ++builder->variations;
            return;
        case ')':
            --builder->variations;
            return;
        default:
            if (builder->comments == 0 && builder->variations == 0)
                ReadMove(builder, word);
    }
}

void ReadLine(Builder* builder, const char* line) {
    if (std::strstr(line, "[Result"))
        StartGame(builder, line);
    if (builder->comments == 0 && (line[0] == '[' || line[0] == ';'))
        return;
    for (const char* word = NextWord(line); word != nullptr; word = NextWord(nullptr)) {
        if (builder->skip || builder->pos->game_ply >= BOOK_PLIES)
            return;
        ReadWord(builder, word);
    }
}

void ReadGames(Builder* builder, File* pgn) {
    std::array<char, LINE_LENGTH + 1> line;
    while (pgn->ReadLine(line.data(), static_cast<int>(line.size()))) {
        // The last character goes, which is the line end where the line has been read to its end.
        if (const size_t length = std::strlen(line.data()))
            line[length - 1] = 0;
        ReadLine(builder, line.data());
    }
}

}  // namespace

void CreateBook() {
    PBlock.book_file[0] = 0;
    KillBook();
    const std::unique_ptr<Builder> builder(new (std::nothrow) Builder{});
    if (builder == nullptr)
        return;
    builder->pos = GamePosition();
    builder->winner = NOBODY_WON;
    DeleteFile(kBookName);
    // A run left behind by a builder that was broken off belongs to no book.
    DeleteFile(kRunName);
    File pgn("book.pgn", "r");
    if (!pgn)
        return;
    ReadGames(builder.get(), &pgn);
    pgn.Close();
    FlushBuffer(builder.get());
    MergeBook();
    PruneBook();
    ShowMessage("done");
    SetPosition(builder->pos, fen_opn);
}

}  // namespace vrel
