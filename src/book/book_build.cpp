#include "book/book_build.h"

#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_buffer.h"
#include "book/book_lookup.h"
#include "book/book_runs.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "interface/pgn_text.h"
#include "platform/file.h"

namespace vrel {

namespace {

constexpr const char* kGamesName = "book.pgn";

constexpr int64_t FLUSH = 200;   // games
constexpr int64_t MERGE = 5000;  // games
constexpr int BOOK_PLIES = 50;   // of each game

// The book that is being built, and the game in work.
struct Builder {
    BookBuffer buffer;
    Position* pos;
    FollowedGame followed;
    int64_t games;
};

void FlushBuffer(Builder* builder) {
    SortBuffer(&builder->buffer);
    WriteBook(builder->buffer.sorted.data(), builder->buffer.count);
    ClearBuffer(&builder->buffer);
}

void CountGame(Builder* builder) {
    ++builder->games;
    if (builder->games % FLUSH == 0)
        FlushBuffer(builder);
    if (builder->games % MERGE == 0)
        MergeBook();
}

// Counts the game for the position on the board.
void CountPosition(Builder* builder, int winner) {
    const int side = builder->pos->stm;
    FollowPosHash(&builder->followed, *builder->pos);
    BookRecord* record = FindOrInsert(&builder->buffer, BookKey(side), hash2);
    if (record == nullptr)
        return;
    uint16_t& counter = winner == NOBODY_WON ? record->draws : winner == side ? record->wins : record->losses;
    ++counter;
}

// False if the game is over for the book: the text can't be read, or it was the last one that counts.
bool ReadMove(Builder* builder, std::string_view text, int winner) {
    MoveAsRead read;
    Move move;
    if (!ReadMoveText(text, &move, &read))
        return false;
    PlayGameMove(builder->pos, move);
    CountPosition(builder, winner);
    return builder->pos->game_ply < BOOK_PLIES;
}

void ReadGames(Builder* builder, File* file) {
    PgnReader pgn(file, kGamesName, PGN_FOR_BOOK);
    for (PgnItem item = pgn.Next(); item != PGN_END; item = pgn.Next()) {
        if (item == PGN_GAME) {
            CountGame(builder);
        } else if (item == PGN_START) {
            SetUpGame(builder->pos, pgn.game());
            builder->followed = {};
        } else if (item == PGN_MOVE && !ReadMove(builder, pgn.text(), pgn.game().winner)) {
            pgn.SkipGame();
        }
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
    DeleteFile(kBookName);
    // A run left behind by a builder that was broken off belongs to no book.
    DeleteFile(kRunName);
    File pgn(kGamesName, "r");
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
