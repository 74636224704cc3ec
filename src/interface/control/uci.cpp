#include "interface/control/uci.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/control/requests.h"
#include "interface/messages.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "interface/words.h"
#include "search/thread_pool.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr long long LONGEST_TIME = 1000000000000;  // milliseconds that a clock may show
constexpr double NO_TIME_LIMIT = 10000000.0;       // seconds

void Introduce() {
    ShowFormatted("id name %s", version);
    ShowMessage("id author Orin Tavelk");
    ShowMessage("option name Hash type spin default 64 min 0 max 8192");
    ShowMessage("option name Threads type spin default 1 min 1 max 64");
    ShowMessage("option name Ponder type check default true");
    ShowMessage("option name MultiPV type spin default 1 min 1 max 20");
    ShowMessage("option name Clear Hash type button");
    ShowMessage("option name Communication Overhead type spin default 25 min 0 max 5000");
    ShowMessage("option name OwnBook type check default false");
    ShowMessage("option name Log type check default false");
    PBlock.log = 0;
    PBlock.use_book = 0;
    ShowMessage("uciok");
    PBlock.mode = MODE_UCI;
}

// Options ------------------------------------------------------------------------------------------------------------

const char* SkipBlanks(const char* text) {
    while (*text == ' ')
        ++text;
    return text;
}

std::string WithoutTrailingBlanks(std::string text) {
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

void SetHashSize(const char* value) {
    PBlock.hash_mb = static_cast<int16_t>(ReadInteger(value, 0, 8192));
    if (InitTTable() != 0)
        std::_Exit(-1);
    ShowFormatted("info string Hash size set to %dM bytes", PBlock.hash_mb.Get());
}

void SetThreads(const char* value) {
    const int n = ReadInteger(value, 1, MAX_THREADS);
    if (n != PBlock.nthreads) {
        KillThreadPool(PBlock.nthreads);
        PBlock.nthreads = static_cast<int8_t>(n);
        if (CreateThreadPool(n) != 0)
            std::_Exit(-1);
    }
    ShowFormatted("info string Threads set to %d", n);
}

void SetOption(const std::string& name, const char* value) {
    const bool on = std::strcmp(value, "true") == 0;
    if (name == "Hash") {
        if (!MustWait())
            SetHashSize(value);
    } else if (name == "Threads") {
        if (!MustWait())
            SetThreads(value);
    } else if (name == "Communication Overhead") {
        const int overhead = ReadInteger(value, 0, 5000);
        PBlock.overhead = overhead / 1000.0;
        ShowFormatted("info string Communication Overhead set to %d", overhead);
    } else if (name == "Ponder") {
        PBlock.ponder = on;
    } else if (name == "MultiPV") {
        PBlock.multipv = static_cast<int16_t>(ReadInteger(value, 1, 20));
        ShowFormatted("info string MultiPV set to %d", PBlock.multipv.Get());
    } else if (name == "OwnBook") {
        PBlock.use_book = on;
        ShowFormatted("info string OwnBook set to %d", on);
    } else if (name == "Log") {
        PBlock.log = std::strstr(value, "true") != nullptr;
        ShowFormatted("info string Log set to %d", PBlock.log.Get());
    }
}

void ClearHash() {
    if (!PBlock.use_hash || MustWait())
        return;
    ClearTTable();
    ShowMessage("Hash table cleared");
}

// "name" and "value" are looked for anywhere; inner blanks belong to a name.
void SetOptionLine(const char* rest) {
    const char* name = std::strstr(rest, "name");
    const char* value = std::strstr(rest, "value");
    if (name == nullptr)
        return;
    const char* name_text = SkipBlanks(name + 4);
    if (value == nullptr) {
        if (WithoutTrailingBlanks(name_text) == "Clear Hash")
            ClearHash();
        return;
    }
    if (value < name)
        return;
    const char* name_end = value < name_text ? name_text : value;
    const std::string option = WithoutTrailingBlanks(std::string(name_text, name_end));
    if (option == "Clear Hash")
        ClearHash();
    else
        SetOption(option, GetWord(value + 5));
}

// Games --------------------------------------------------------------------------------------------------------------

void NewGame() {
    // The table may be cleared once the workers are idle; a pondering search keeps its result for later.
    if (MustWaitForWorkers())
        return;
    PBlock.stop = STOP_COMMAND;
    PBlock.level_moves = 0;
    PBlock.level_time = 60.0;
    PBlock.clock[WHITE] = 60.0;
    PBlock.clock[BLACK] = 60.0;
    PBlock.inc = 0.0;
    GamePosition()->game_ply = 0;
    if (PBlock.use_hash)
        ClearTTable();
}

// A square of two characters, NO_SQUARE if they name none.
int ReadSquare(const char* text) {
    if (text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8')
        return NO_SQUARE;
    return (text[0] - 'a') + 8 * (text[1] - '1');
}

Move PromotionBit(char letter) {
    switch (letter) {
        case 'q':
            return PROMOTE_QUEEN;
        case 'n':
            return PROMOTE_KNIGHT;
        case 'b':
            return PROMOTE_BISHOP;
        case 'r':
            return PROMOTE_ROOK;
        default:
            return NO_MOVE;
    }
}

// A move in coordinates, 0 if the text names none.
Move ReadCoordinates(const std::string& text) {
    if (text.size() < 4)
        return NO_MOVE;
    const int from = ReadSquare(text.c_str());
    const int to = ReadSquare(text.c_str() + 2);
    if (from == NO_SQUARE || to == NO_SQUARE)
        return NO_MOVE;
    return MakeMoveValue(from, to) | (text.size() > 4 ? PromotionBit(text[4]) : NO_MOVE);
}

// The moves are trusted to be chess; the list ends with the first that the board can't make at all.
void PlayMoves(Position* game, const char* text) {
    while (true) {
        text = SkipBlanks(text);
        const size_t length = std::strcspn(text, " ");
        if (length == 0)
            return;
        const Move move = ReadCoordinates(std::string(text, length));
        if (move == NO_MOVE || !MoveCanBeMade(*game, move))
            return;
        PlayGameMove(game, move);
        text += length;
    }
}

void SetGame(const char* rest) {
    const char* moves = std::strstr(rest, "moves");
    const auto length = moves == nullptr ? std::strlen(rest) : static_cast<size_t>(moves - rest);
    const std::string text(rest, moves != nullptr && length > 0 ? length - 1 : length);
    Position* game = GamePosition();
    if (text.find("startpos") != std::string::npos)
        SetPosition(game, fen_opn);
    else if (text.find("fen") != std::string::npos)
        SetPosition(game, text.size() > 4 ? text.c_str() + 4 : "");
    else
        return;
    if (moves != nullptr)
        PlayMoves(game, moves + 5);
    game->undo[game->game_ply].move = NO_MOVE;
}

// Searches -----------------------------------------------------------------------------------------------------------

double Seconds(const char* milliseconds) {
    return static_cast<double>(ReadLongInteger(milliseconds, 0, LONGEST_TIME)) / 1000;
}

void LimitToTime(double seconds) {
    PBlock.level_moves = 1;
    PBlock.level_time = seconds;
}

// The tokens are looked for in a fixed order, so that a later one wins over an earlier one.
void SetLimits(const char* rest, int side) {
    const auto value_of = [rest](const char* token) -> const char* {
        const char* found = std::strstr(rest, token);
        return found == nullptr ? nullptr : GetWord(found + std::strlen(token));
    };
    if (const char* value = value_of("wtime"))
        PBlock.clock[WHITE] = Seconds(value);
    if (const char* value = value_of("btime"))
        PBlock.clock[BLACK] = Seconds(value);
    if (const char* value = value_of("winc"); value && side == WHITE)
        PBlock.inc = Seconds(value);
    if (const char* value = value_of("binc"); value && side == BLACK)
        PBlock.inc = Seconds(value);
    if (const char* value = value_of("movestogo")) {
        PBlock.level_moves = 40;
        PBlock.moves_to_go = static_cast<int16_t>(ReadInteger(value, 0, INT16_MAX));
        PBlock.max_depth = MAX_DEPTH;
        PBlock.max_nodes = 0;
    }
    if (const char* value = value_of("depth")) {
        LimitToTime(600.0);
        PBlock.max_depth = static_cast<int8_t>(ReadInteger(value, 0, MAX_DEPTH));
    }
    if (const char* value = value_of("nodes")) {
        LimitToTime(NO_TIME_LIMIT);
        PBlock.max_nodes = ReadLongInteger(value, 0, INT64_MAX);
    }
    if (const char* value = value_of("movetime")) {
        LimitToTime(Seconds(value));
        PBlock.inc = 0.0;
    }
    if (std::strstr(rest, "infinite")) {
        LimitToTime(NO_TIME_LIMIT);
        PBlock.inc = 0.0;
        PBlock.max_depth = MAX_DEPTH;
        PBlock.max_nodes = 0;
    }
}

void Go(const char* rest) {
    const int side = GamePosition()->stm;
    PBlock.stop = STOP_COMMAND;
    PBlock.level_moves = 0;
    computer = side;
    PBlock.request = std::strstr(rest, "ponder") ? STATE_PONDERING : STATE_THINKING;
    SetLimits(rest, side);
}

void Stop() {
    PBlock.stop = STOP_TIME;
    computer = 2;
    PBlock.state = STATE_THINKING;
}

}  // namespace

void UciCommand(const char* line, bool echo) {
    if (*line == '\0')
        return;
    if (echo && PBlock.log)
        ShowFormatted("CMD: %s", line);
    const std::string word = GetWord(line);
    const char* rest = SkipBlanks(line) + word.size();
    if (*rest != '\0')
        ++rest;
    if (word == "uci") {
        Introduce();
    } else if (word == "isready") {
        OweReadyOk();
    } else if (word == "setoption") {
        SetOptionLine(rest);
    } else if (word == "ucinewgame") {
        NewGame();
    } else if (word == "position") {
        SetGame(rest);
    } else if (word == "go") {
        Go(rest);
    } else if (word == "ponderhit") {
        if (PBlock.state == STATE_PONDERING)
            PBlock.state = STATE_THINKING;
    } else if (word == "stop") {
        Stop();
    } else if (word == "quit") {
        PBlock.stop = STOP_COMMAND;
        PBlock.quit = 1;
    }
}

}  // namespace vrel
