#include "interface/control/console.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>

#include "board/exchange.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_build.h"
#include "book/book_lookup.h"
#include "eval/personality.h"
#include "interface/board_text.h"
#include "interface/control/console_game.h"
#include "interface/control/edit.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "interface/words.h"
#include "search/search_control.h"
#include "search/selectivity.h"
#include "search/time_control.h"
#include "search/transposition.h"
#include "tools/perft.h"
#include "tools/trace.h"
#include "tools/tuner.h"

namespace vrel {

namespace {

constexpr size_t MOST_WORDS = 10;
constexpr size_t LONGEST_WORD = 127;
constexpr int MOST_SECONDS = 1000000000;
constexpr int MOST_MINUTES = MOST_SECONDS / 60;
constexpr double LONGEST_TIME = MOST_SECONDS;
constexpr double ANALYSIS_TIME = 99999.0;  // seconds
constexpr int DEEPEST_PERFT = 20;

// A line split at blanks; words that aren't there are empty.
struct Command {
    const char* line;
    std::array<std::string, MOST_WORDS> words;

    const char* Word(size_t number) const { return words[number - 1].c_str(); }
    int Integer(size_t number, int lowest, int highest) const { return ReadInteger(Word(number), lowest, highest); }
    double Real(size_t number) const { return ReadReal(Word(number), -LONGEST_TIME, LONGEST_TIME); }
};

Command Split(const char* line) {
    Command command{line, {}};
    for (std::string& word : command.words) {
        line += std::strspn(line, " ");
        const size_t length = std::strcspn(line, " ");
        word.assign(line, std::min(length, LONGEST_WORD));
        line += length;
    }
    return command;
}

void SetClocks(double seconds) {
    SearchLimits limits = LimitsInForce();
    limits.clock = {seconds, seconds};
    SetLimits(limits);
}

void NewGame(const Command&) {
    StopSearch(STOP_COMMAND);
    SetPosition(GamePosition(), fen_opn);
    ShowBoard(*GamePosition());
    computer = 2;
    SetClocks(PBlock.level_time);
}

void SetFen(const Command& command) {
    StopSearch(STOP_COMMAND);
    SetPosition(GamePosition(), std::strlen(command.line) > 4 ? command.line + 4 : "");
    ShowBoard(*GamePosition());
}

void Edit(const Command&) {
    StopSearch(STOP_COMMAND);
    EditBoard();
    ShowBoard(*GamePosition());
}

void Force(const Command&) {
    StopSearch(STOP_COMMAND);
    computer = 2;
}

void Quit(const Command&) {
    StopSearch(STOP_COMMAND);
    PBlock.quit = 1;
}

void Analyse(int depth) {
    SearchLimits limits = LimitsInForce();
    limits.level_moves = 1;
    limits.level_time = ANALYSIS_TIME;
    limits.max_depth = depth;
    if (PBlock.use_hash <= 1)
        ClearTTable();
    RequestSearch(STATE_ANALYSING, limits);
}

void AnalyseToDepth(const Command& command) {
    const int depth = command.Integer(2, -1, MAX_DEPTH);
    Analyse(depth >= 0 && depth < MAX_DEPTH ? depth : MAX_DEPTH);
}

void AnalyseWithoutLimit(const Command&) {
    Analyse(MAX_DEPTH);
    PBlock.noise = 0.0;
    computer = 2;
}

void Think(const Command&) {
    computer = GamePosition()->stm;
    RequestSearch(STATE_THINKING);
}

void PlaySelf(const Command&) {
    RequestSearch(STATE_THINKING);
    PBlock.ponder = 0;
    selfplay = 1;
}

// Time with ":" is minutes and seconds, else seconds.
double ReadLevelTime(const char* text) {
    const char* colon = std::strchr(text, ':');
    if (colon == nullptr)
        return ReadReal(text, -LONGEST_TIME, LONGEST_TIME);
    return ReadInteger(text, -MOST_MINUTES, MOST_MINUTES) * 60.0 + ReadInteger(colon + 1, -MOST_SECONDS, MOST_SECONDS);
}

void SetLevel(const Command& command) {
    SearchLimits limits = LimitsInForce();
    limits.level_moves = command.Integer(2, INT8_MIN, INT8_MAX);
    limits.level_time = ReadLevelTime(command.Word(3));
    limits.inc = command.Real(4);
    limits.clock = {limits.level_time, limits.level_time};
    SetLimits(limits);
    ShowFormatted("set level to %d moves in %0.2f seconds, inc %0.2f", limits.level_moves, limits.level_time,
                  limits.inc);
}

void SetDepth(const Command& command) { LimitDepth(command.Integer(2, 0, MAX_DEPTH)); }

void SetTime(const Command& command) {
    SearchLimits limits = LimitsInForce();
    if (computer == WHITE || computer == BLACK)
        limits.clock[computer] = command.Real(2);
    SetLimits(limits);
}

void ShowSwaps(const Command&) {
    const Position& game = *GamePosition();
    for (int sq = 0; sq < 64; ++sq) {
        const int code = game.board[sq];
        if (code == 0)
            continue;
        const int swap = swapoff1(game, SideOf(code) ^ 1, NO_SQUARE, sq, Occupied(game));
        if (swap != 0)
            Print("sq= %s, swap= %d\n", algbr(sq), swap);
    }
}

// Keeps the moves that have been taken back while a command makes moves of its own on the game record.
class MovesAhead {
public:
    explicit MovesAhead(Position* game) : next_(game->undo + game->game_ply) {
        std::copy_n(next_, records_.size(), records_.begin());
    }
    ~MovesAhead() { std::copy(records_.begin(), records_.end(), next_); }
    MovesAhead(const MovesAhead&) = delete;
    MovesAhead& operator=(const MovesAhead&) = delete;

private:
    std::array<UndoRecord, DEEPEST_PERFT> records_;
    UndoRecord* next_;
};

void RunPerft(const Command& command) {
    SearchThread* game = GetThread(0);
    const MovesAhead ahead(&game->pos);
    InitSearch(STATE_IDLE);
    GetElapsedTime(0);
    Perft(game, game->pos.stm, 1, command.Integer(2, 0, DEEPEST_PERFT));
    GetElapsedTime(1);
    const auto nodes = static_cast<double>(game->nodes);
    ShowFormatted("visited %0.0f nodes in %0.3f seconds, nps= %0.0f", nodes, PBlock.elapsed.Get(),
                  nodes / (PBlock.elapsed + 0.001));
}

void ShowBook(const Command&) {
    const MovesAhead ahead(GamePosition());
    GetCandidates(GamePosition(), true);
    ShowMessage("");
}

void SetSelectivity(const Command& command) {
    const char* name = command.Word(2);
    if (int8_t* field = FindSelectivity(&Personality, name)) {
        *field = static_cast<int8_t>(command.Integer(3, INT8_MIN, INT8_MAX));
        ShowFormatted("%s set to %d", name, *field);
    } else if (std::strcmp(name, "ss_off") == 0) {
        Personality.SE = Personality.RP_depth = Personality.CNP_depth = Personality.LMP_depth = 0;
        Personality.NMP_depth = Personality.LMR_depth = 99;
        ShowMessage("selectivity set to OFF");
    } else {
        Personality = DefaultPersonality;
        ShowMessage("selectivity set to default");
    }
}

void TuneOne(const Command& command) {
    const char* name = command.Word(2);
    if (*name == '\0' || *command.Word(3) == '\0')
        return;
    CopyText(&PBlock.epd_file, "tune.epd");
    LimitDepth(0);
    PBlock.noise = SILENT;
    if (int16_t* weight = FindWeight(&Personality, name))
        PTune(name, weight, command.Integer(3, 0, INT16_MAX));
    ShowMessage("done!\n");
}

struct Entry {
    const char* name;
    Need need;
    void (*run)(const Command&);
    Need need_in_debug;  // while the evaluation report, which is a search, takes the place of the board
};

template <typename T>
void SetField(Relaxed<T>* field, const Command& command) {
    *field = static_cast<T>(command.Integer(2, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

constexpr Entry Row(const char* name, Need need, void (*run)(const Command&)) { return {name, need, run, need}; }

// In the order in which they are tested, up to the one that is matched as a part of the word.
constexpr Entry commands[] = {
    Row("new", ENDS_SEARCH, NewGame),
    Row("fen", ENDS_SEARCH, SetFen),
    Row("force", ENDS_SEARCH, Force),
    Row("quit", ENDS_PROGRAM, Quit),
    Row("go", FREE_ENGINE, AnalyseToDepth),
    Row("an", FREE_ENGINE, AnalyseWithoutLimit),
    Row(".", AT_ONCE, [](const Command&) { StopSearch(STOP_COMMAND); }),
    Row("mv", FREE_ENGINE, Think),
    {"bd", BESIDE, [](const Command&) { ShowGame(); }, WHEN_OVER},
    Row("level", NO_TOOL, SetLevel),
    Row("depth", NO_TOOL, SetDepth),
    Row("sd", NO_TOOL, SetDepth),
    Row("time", NO_TOOL, SetTime),
    Row("ponder", NO_TOOL, [](const Command& command) { SetField(&PBlock.ponder, command); }),
    Row("self", FREE_ENGINE, PlaySelf),
    Row("get", FREE_ENGINE, [](const Command& command) { GetTestPosition(command.Word(2)); }),
    Row("noise", BESIDE, [](const Command& command) { PBlock.noise = command.Real(2); }),
    Row("hash", NO_TOOL, [](const Command& command) { SetField(&PBlock.use_hash, command); }),
    Row("tag", BESIDE, [](const Command&) { PBlock.tagged_key = GamePosition()->hash; }),
    Row("ev", WHEN_OVER, [](const Command&) { ShowEvalInfo(); }),
    Row("trace", BESIDE, [](const Command& command) { SetTrace(command.Integer(2, INT16_MIN, INT16_MAX)); }),
    Row("lmr", BESIDE, [](const Command&) { DisplayLMR(); }),
    Row("debug", BESIDE, [](const Command& command) { SetField(&PBlock.debug, command); }),
};

constexpr Entry several_lines =
    Row("multipv", NO_TOOL, [](const Command& command) { SetField(&PBlock.multipv, command); });

constexpr Entry later_commands[] = {
    {"undo", ENDS_SEARCH, [](const Command&) { UndoMove(); }, FREE_ENGINE},
    {"[", ENDS_SEARCH, [](const Command&) { UndoMove(); }, FREE_ENGINE},
    {"]", ENDS_SEARCH, [](const Command&) { RedoMove(); }, FREE_ENGINE},
    Row("load", ENDS_SEARCH, [](const Command& command) { LoadGame(command.Word(2), command.Word(3)); }),
    Row("save", NO_TOOL, [](const Command&) { SaveGame(); }),
    Row("jump", ENDS_SEARCH, [](const Command& command) { JumpToPly(command.Integer(2, 0, UNDO_RECORDS)); }),
    Row("edit", ENDS_SEARCH, Edit),
    Row("book", WHEN_OVER, ShowBook),
    Row("mkbook", FREE_ENGINE, [](const Command&) { CreateBook(); }),
    Row("set", WHEN_OVER, SetSelectivity),
    Row("tune", FREE_ENGINE, TuneOne),
    Row("perft", FREE_ENGINE, RunPerft),
    Row("swap", BESIDE, ShowSwaps),
    {"move", ENDS_SEARCH, [](const Command& command) { PlayMoveText(command.Word(2)); }, FREE_ENGINE},
};

constexpr Entry any_other = {"", ENDS_SEARCH, [](const Command& command) { PlayMoveText(command.Word(1)); },
                             FREE_ENGINE};

template <size_t N>
const Entry* Find(const Entry (&table)[N], const std::string& word) {
    for (const Entry& entry : table)
        if (word == entry.name)
            return &entry;
    return nullptr;
}

const Entry& EntryOf(const std::string& word) {
    if (const Entry* entry = Find(commands, word))
        return *entry;
    if (word.find(several_lines.name) != std::string::npos)
        return several_lines;
    const Entry* later = Find(later_commands, word);
    return later != nullptr ? *later : any_other;
}

}  // namespace

Need ConsoleNeed(const char* line) {
    const Entry& entry = EntryOf(Split(line).words[0]);
    return PBlock.debug ? entry.need_in_debug : entry.need;
}

void ConsoleCommand(const char* line) {
    const Command command = Split(line);
    if (!command.words[0].empty())
        EntryOf(command.words[0]).run(command);
}

}  // namespace vrel
