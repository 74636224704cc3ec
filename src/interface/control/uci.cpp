#include "interface/control/uci.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "board/fen.h"
#include "board/letters.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/control/front_end.h"
#include "interface/control/game_loop.h"
#include "interface/control/options.h"
#include "interface/control/tuning_options.h"
#include "interface/messages.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "interface/words.h"
#include "search/search_control.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr long long LONGEST_TIME = 1000000000000;  // milliseconds that a clock may show
constexpr double NO_TIME_LIMIT = 10000000.0;       // seconds

// From here on an interface is in charge: log and book are off, as their options declare, whatever the command line
// has said, and the console is left for good.
void Introduce() {
    ShowFormatted("id name %s", version);
    ShowMessage("id author Orin Tavelk");
    DeclareOptions();
    PBlock.log = 0;
    PBlock.use_book = 0;
    selfplay = 0;
    ShowMessage("uciok");
    PBlock.mode = MODE_UCI;
}

// The command word, and what follows it and one separator.
struct Command {
    std::string word;
    const char* rest;
};

Command Split(const char* line) {
    // `position` may be followed by a tab.
    constexpr const char* position = "position\t";
    if (std::strncmp(line, position, std::strlen(position)) == 0)
        return {"position", line + std::strlen(position)};
    const std::string word = GetWord(line);
    const char* rest = SkipBlanks(line) + word.size();
    return {word, *rest != '\0' ? rest + 1 : rest};
}

// An option and the text of its value. "name" and "value" are looked for anywhere; inner blanks belong to a name.
struct OptionChange {
    const UciOption* option;  // null if no option is named
    std::string value;
};

// The names of weights hold the word "value": the place behind such a name, null if the text doesn't begin with one.
const char* BehindTuningName(const char* text) {
    const size_t length = std::strcspn(text, " ");
    for (const UciOption& option : TuningOptions())
        if (std::string_view(text, length) == option.name)
            return text + length;
    return nullptr;
}

OptionChange ReadOptionLine(const char* rest) {
    // Both words may stand anywhere, so that interfaces with manners of their own are understood.
    const char* name = std::strstr(rest, "name");
    if (name == nullptr)
        return {nullptr, ""};
    const char* name_text = SkipBlanks(name + 4);
    const char* behind = BehindTuningName(name_text);
    const char* value = std::strstr(behind != nullptr ? behind : rest, "value");
    if (value != nullptr && value < name)
        return {nullptr, ""};
    // Without a value only a button can be meant; any other option keeps what it has.
    if (value == nullptr) {
        const UciOption* option = FindOption(Trimmed(name_text));
        return {option != nullptr && option->type == BUTTON ? option : nullptr, ""};
    }
    const char* name_end = std::max(value, name_text);
    return {FindOption(Trimmed(std::string(name_text, name_end))), GetWord(value + 5)};
}

// An unknown option is passed over in silence: interfaces try what other engines have.
void ChangeOption(const char* rest) {
    const OptionChange change = ReadOptionLine(rest);
    if (change.option != nullptr)
        SetOption(*change.option, ReadOption(*change.option, change.value.c_str()));
}

// The times stand until `go` brings others. The position stays as well, but its past is gone.
void NewGame() {
    StopSearch(STOP_COMMAND);
    SearchLimits limits = LimitsInForce();
    limits.level_moves = 0;
    limits.level_time = 60.0;
    limits.clock = {60.0, 60.0};
    limits.inc = 0.0;
    SetLimits(limits);
    GamePosition()->game_ply = 0;
    if (PBlock.use_hash)
        ClearTTable();
}

// Other characters, capitals among them, are passed over: the move is one without a promotion.
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
    const Square from = ReadSquare(text.c_str());
    const Square to = ReadSquare(text.c_str() + 2);
    if (from == NO_SQUARE || to == NO_SQUARE)
        return NO_MOVE;
    return MakeMoveValue(from, to) | (text.size() > 4 ? PromotionBit(text[4]) : NO_MOVE);
}

// A move is trusted to be chess: false for one that the board can't make at all.
bool PlayTrusted(Position* game, const std::string& text) {
    const Move move = ReadCoordinates(text);
    if (move == NO_MOVE || !MoveCanBeMade(*game, move))
        return false;
    PlayGameMove(game, move);
    return true;
}

// What is below 0, as a clock that has run out, counts as 0.
double Seconds(const char* milliseconds) {
    return static_cast<double>(ReadLongInteger(milliseconds, 0, LONGEST_TIME)) / 1000;
}

// So much for one move, whatever the clocks show.
void LimitToTime(SearchLimits* limits, double seconds) {
    limits->level_moves = 1;
    limits->level_time = seconds;
}

// The tokens are looked for in a fixed order, so that a later one wins over an earlier one. What none names stays.
SearchLimits ReadLimits(const char* rest, Side side) {
    const auto value_of = [rest](const char* token) -> const char* {
        const char* found = std::strstr(rest, token);
        return found == nullptr ? nullptr : GetWord(found + std::strlen(token));
    };
    SearchLimits limits = LimitsInForce();
    // Two clocks and no moves to go are sudden death. The increment of the other side can't be used.
    limits.level_moves = 0;
    if (const char* value = value_of("wtime"))
        limits.clock[WHITE] = Seconds(value);
    if (const char* value = value_of("btime"))
        limits.clock[BLACK] = Seconds(value);
    if (const char* value = value_of("winc"); value && side == WHITE)
        limits.inc = Seconds(value);
    if (const char* value = value_of("binc"); value && side == BLACK)
        limits.inc = Seconds(value);
    // A control of 40 moves, of which so many are left; a depth or nodes asked for earlier end with it.
    if (const char* value = value_of("movestogo")) {
        limits.level_moves = 40;
        limits.moves_to_go = ReadInteger(value, 0, INT16_MAX);
        limits.max_depth = MAX_DEPTH;
        limits.max_nodes = 0;
    }
    // Depth and nodes are limits of their own; the time that goes with them is for what doesn't get there.
    if (const char* value = value_of("depth")) {
        LimitToTime(&limits, 600.0);
        limits.max_depth = ReadInteger(value, 0, MAX_DEPTH);
    }
    if (const char* value = value_of("nodes")) {
        LimitToTime(&limits, NO_TIME_LIMIT);
        limits.max_nodes = ReadLongInteger(value, 0, INT64_MAX);
    }
    if (const char* value = value_of("movetime")) {
        LimitToTime(&limits, Seconds(value));
        limits.inc = 0.0;
    }
    if (std::strstr(rest, "infinite")) {
        LimitToTime(&limits, NO_TIME_LIMIT);
        limits.inc = 0.0;
        limits.max_depth = MAX_DEPTH;
        limits.max_nodes = 0;
    }
    return limits;
}

// A search that runs ends, and its reply is sent before the new one starts.
void Go(const char* rest) {
    const Side side = GamePosition()->stm;
    StopSearch(STOP_COMMAND);
    computer = side;
    RequestSearch(std::strstr(rest, "ponder") ? STATE_PONDERING : STATE_THINKING, ReadLimits(rest, side));
}

// While idle, too, it is answered: with the line that stands.
void Stop() {
    computer = 2;
    StopAndReport();
}

// What a command needs of a running search, and what it does with the rest of its line.
struct Entry {
    const char* name;
    Need need;
    void (*run)(const char* rest);
};

constexpr Entry commands[] = {
    {"uci", BESIDE, [](const char*) { Introduce(); }},
    {"isready", AT_ONCE, [](const char*) { OweReadyOk(); }},
    {"setoption", BESIDE, ChangeOption},  // what the option needs
    {"ucinewgame", IDLE_WORKERS, [](const char*) { NewGame(); }},
    {"position", NO_TOOL, [](const char* rest) { SetGame(rest, PlayTrusted); }},
    {"legal", NO_TOOL, [](const char*) { ShowLegalMoves(); }},
    {"go", NO_TOOL, Go},
    {"ponderhit", AT_ONCE, [](const char*) { PonderHit(); }},
    {"stop", AT_ONCE, [](const char*) { Stop(); }},
    {"quit", ENDS_PROGRAM, [](const char*) { EndProgram(); }},
};

}  // namespace

// "startpos" goes before "fen"; without either the position stays as it is. The end of the game is marked, so that
// nothing of an earlier one stands ahead of it.
void SetGame(const char* rest, bool (*play)(Position*, const std::string&)) {
    rest += std::strspn(rest, " \t");
    const char* moves = std::strstr(rest, "moves");
    // The moves begin one character behind the text of the position.
    const char* end = moves == nullptr ? rest + std::strlen(rest) : std::max(rest, moves - 1);
    const std::string text(rest, end);
    Position* game = GamePosition();
    if (text.find("startpos") != std::string::npos)
        SetPosition(game, fen_opn);
    else if (text.find("fen") != std::string::npos)
        SetPosition(game, text.size() > 4 ? text.c_str() + 4 + std::strspn(text.c_str() + 4, " \t") : "");
    else
        return;
    for (const char* word = SkipBlanks(moves != nullptr ? moves + 5 : ""); *word != '\0'; word = SkipBlanks(word)) {
        const size_t length = std::strcspn(word, " ");
        if (!play(game, std::string(word, length)))
            break;
        word += length;
    }
    game->undo[game->game_ply].move = NO_MOVE;
}

// A line without a command is dropped in its turn.
Need UciNeed(const char* line) {
    const Command command = Split(line);
    const Entry* entry = FindRow(commands, command.word);
    if (entry == nullptr)
        return BESIDE;
    if (entry->run != ChangeOption)
        return entry->need;
    const OptionChange change = ReadOptionLine(command.rest);
    return change.option != nullptr ? change.option->need() : BESIDE;
}

void EchoUciLine(const char* line) {
    if (PBlock.log)
        ShowFormatted("CMD: %s", line);
}

void UciCommand(const char* line) {
    const Command command = Split(line);
    if (const Entry* entry = FindRow(commands, command.word))
        entry->run(command.rest);
}

}  // namespace vrel
