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
#include "search/search_control.h"

namespace vrel {

namespace {

constexpr const char* kGamesName = "book.pgn";
constexpr const char* kLockName = "book.lock";  // its holder alone builds a book in this folder

constexpr int64_t FLUSH = 200;   // games
constexpr int64_t MERGE = 5000;  // games
constexpr int BOOK_PLIES = 50;   // of each game
constexpr int LOOK = 4096;       // pieces of text between looks at the input

// The book that is being built, and the game in work.
struct Builder {
    BookBuffer buffer;
    Position* pos;
    FollowedGame followed;
    int64_t games;
};

bool FlushBuffer(Builder* builder) {
    SortBuffer(&builder->buffer);
    const bool written = WriteBook(builder->buffer.sorted.data(), builder->buffer.count);
    ClearBuffer(&builder->buffer);
    return written;
}

// False if what has been gathered so far couldn't be written.
bool CountGame(Builder* builder) {
    ++builder->games;
    if (builder->games % FLUSH == 0 && !FlushBuffer(builder))
        return false;
    return builder->games % MERGE != 0 || MergeBook();
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

// False if the games can't all be read and kept, or the program is to quit.
bool ReadGames(Builder* builder, File* file) {
    PgnReader pgn(file, kGamesName, PGN_FOR_BOOK);
    int look = LOOK;
    for (PgnItem item = pgn.Next(); item != PGN_END; item = pgn.Next()) {
        if (item == PGN_GAME) {
            if (!CountGame(builder))
                return false;
        } else if (item == PGN_START) {
            SetUpGame(builder->pos, pgn.game());
            builder->followed = {};
        } else if (item == PGN_MOVE && !ReadMove(builder, pgn.text(), pgn.game().winner)) {
            pgn.SkipGame();
        }
        if (--look > 0)
            continue;
        look = LOOK;
        poll_input();
        if (PBlock.quit)
            return false;
    }
    return !file->Failed();
}

bool BuildBook(File* games) {
    const std::unique_ptr<Builder> owner(new (std::nothrow) Builder{});
    Builder* builder = owner.get();
    if (builder == nullptr)
        return false;
    builder->pos = GamePosition();
    return ReadGames(builder, games) && FlushBuffer(builder) && MergeBook() && PruneBook();
}

}  // namespace

bool CreateBook() {
    File games = OpenOwnFile(kGamesName, "r");
    if (!games) {
        Complain("%s: %s", kGamesName, FileTrouble());
        return true;
    }
    FileLock lock;
    switch (lock.Claim(kLockName)) {
        case FileLock::IN_USE:
            Complain("%s: in use, another mkbook is at work in this folder", kLockName);
            return false;
        case FileLock::NOT_TO_BE_HAD:
            Complain("%s: %s", kLockName, FileTrouble());
            return false;
        case FileLock::CLAIMED:
            break;
    }
    PBlock.book_file[0] = 0;
    KillBook();
    // What a builder that was broken off has left belongs to no book.
    GiveUpBook();
    const bool built = BuildBook(&games);
    if (built) {
        ShowMessage("done");
    } else {
        GiveUpBook();
        Complain("mkbook: broken off, %s stays as it was", kBookName);
    }
    SetPosition(GamePosition(), fen_opn);
    DeleteFile(kLockName);
    return built;
}

}  // namespace vrel
