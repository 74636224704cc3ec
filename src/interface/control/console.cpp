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
#include "interface/control/requests.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "interface/words.h"
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
    PBlock.clock[WHITE] = seconds;
    PBlock.clock[BLACK] = seconds;
}

// Games and positions
// --------------------------------------------------------------------------------------------------

void NewGame(const Command&) {
    PBlock.stop = STOP_COMMAND;
    SetPosition(GamePosition(), fen_opn);
    ShowBoard(*GamePosition());
    computer = 2;
    SetClocks(PBlock.level_time);
}

void SetFen(const Command& command) {
    PBlock.stop = STOP_COMMAND;
    SetPosition(GamePosition(), std::strlen(command.line) > 4 ? command.line + 4 : "");
    ShowBoard(*GamePosition());
}

void Edit(const Command&) {
    PBlock.stop = STOP_COMMAND;
    EditBoard();
    ShowBoard(*GamePosition());
}

// Searches
// -------------------------------------------------------------------------------------------------------------

void Analyse(int depth) {
    PBlock.level_moves = 1;
    PBlock.level_time = ANALYSIS_TIME;
    PBlock.max_depth = static_cast<int8_t>(depth);
    if (PBlock.use_hash <= 1)
        ClearTTable();
    PBlock.request = STATE_ANALYSING;
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
    PBlock.request = STATE_THINKING;
}

void PlaySelf(const Command&) {
    PBlock.request = STATE_THINKING;
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
    const double time = ReadLevelTime(command.Word(3));
    PBlock.level_moves = static_cast<int8_t>(command.Integer(2, INT8_MIN, INT8_MAX));
    PBlock.level_time = time;
    PBlock.inc = command.Real(4);
    SetClocks(time);
    ShowFormatted("set level to %d moves in %0.2f seconds, inc %0.2f", PBlock.level_moves.Get(), time,
                  PBlock.inc.Get());
}

void SetDepth(const Command& command) { PBlock.max_depth = static_cast<int8_t>(command.Integer(2, 0, MAX_DEPTH)); }

void SetTime(const Command& command) {
    if (computer == WHITE || computer == BLACK)
        PBlock.clock[static_cast<size_t>(computer)] = command.Real(2);
}

// Looking inside
// -------------------------------------------------------------------------------------------------------

void ShowSwaps(const Command&) {
    const Position& game = *GamePosition();
    for (int sq = 0; sq < 64; ++sq) {
        const int code = game.board[static_cast<size_t>(sq)];
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
    InitSearch();
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

// Parameters
// -----------------------------------------------------------------------------------------------------------

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
    PBlock.max_depth = 0;
    PBlock.noise = SILENT;
    if (int16_t* weight = FindWeight(&Personality, name))
        PTune(name, weight, command.Integer(3, 0, INT16_MAX));
    ShowMessage("done!\n");
}

// Dispatch
// -------------------------------------------------------------------------------------------------------------

// What a command needs of a search that runs.
enum Need : int {
    AT_ONCE,     // nothing: it doesn't touch what the workers use
    FREE,        // a free engine: it runs a search, or changes what workers and reports use
    FREE_DEBUG,  // a free engine if the evaluation report takes the place of the board
};

struct Entry {
    const char* name;
    Need need;
    void (*run)(const Command&);
};

template <typename T>
void SetField(Relaxed<T>* field, const Command& command) {
    *field = static_cast<T>(command.Integer(2, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

// In the order in which they are tested, up to the one that is matched as a part of the word.
constexpr Entry commands[] = {
    {"new", AT_ONCE, NewGame},
    {"fen", AT_ONCE, SetFen},
    {"force", AT_ONCE,
     [](const Command&) {
         PBlock.stop = STOP_COMMAND;
         computer = 2;
     }},
    {"quit", AT_ONCE,
     [](const Command&) {
         PBlock.stop = STOP_COMMAND;
         PBlock.quit = 1;
     }},
    {"go", FREE, AnalyseToDepth},
    {"an", FREE, AnalyseWithoutLimit},
    {".", AT_ONCE, [](const Command&) { PBlock.stop = STOP_COMMAND; }},
    {"mv", FREE, Think},
    {"bd", FREE_DEBUG, [](const Command&) { ShowGame(); }},
    {"level", AT_ONCE, SetLevel},
    {"depth", AT_ONCE, SetDepth},
    {"sd", AT_ONCE, SetDepth},
    {"time", AT_ONCE, SetTime},
    {"ponder", AT_ONCE, [](const Command& command) { SetField(&PBlock.ponder, command); }},
    {"self", FREE, PlaySelf},
    {"get", FREE, [](const Command& command) { GetTestPosition(command.Word(2)); }},
    {"noise", AT_ONCE, [](const Command& command) { PBlock.noise = command.Real(2); }},
    {"hash", AT_ONCE, [](const Command& command) { SetField(&PBlock.use_hash, command); }},
    {"tag", AT_ONCE, [](const Command&) { PBlock.tagged_key = GamePosition()->hash; }},
    {"ev", FREE, [](const Command&) { ShowEvalInfo(); }},
    {"trace", AT_ONCE, [](const Command& command) { SetTrace(command.Integer(2, INT16_MIN, INT16_MAX)); }},
    {"lmr", AT_ONCE, [](const Command&) { DisplayLMR(); }},
    {"debug", AT_ONCE, [](const Command& command) { SetField(&PBlock.debug, command); }},
};

constexpr Entry later_commands[] = {
    {"undo", FREE_DEBUG, [](const Command&) { UndoMove(); }},
    {"[", FREE_DEBUG, [](const Command&) { UndoMove(); }},
    {"]", FREE_DEBUG, [](const Command&) { RedoMove(); }},
    {"load", AT_ONCE, [](const Command& command) { LoadGame(command.Word(2), command.Word(3)); }},
    {"save", AT_ONCE, [](const Command&) { SaveGame(); }},
    {"jump", AT_ONCE, [](const Command& command) { JumpToPly(command.Integer(2, 0, UNDO_RECORDS)); }},
    {"edit", AT_ONCE, Edit},
    {"book", FREE, ShowBook},
    {"mkbook", FREE, [](const Command&) { CreateBook(); }},
    {"set", FREE, SetSelectivity},
    {"tune", FREE, TuneOne},
    {"perft", FREE, RunPerft},
    {"swap", AT_ONCE, ShowSwaps},
    {"move", AT_ONCE, [](const Command& command) { PlayMoveText(command.Word(2)); }},
};

bool NeedsFreeEngine(Need need) { return need == FREE || (need == FREE_DEBUG && PBlock.debug); }

void Run(const Entry& entry, const Command& command) {
    if (NeedsFreeEngine(entry.need) && MustWait())
        return;
    entry.run(command);
}

template <size_t N>
const Entry* Find(const Entry (&table)[N], const std::string& word) {
    for (const Entry& entry : table)
        if (word == entry.name)
            return &entry;
    return nullptr;
}

constexpr Entry any_other = {"", AT_ONCE, [](const Command& command) { PlayMoveText(command.Word(1)); }};

}  // namespace

void ConsoleCommand(const char* line) {
    const Command command = Split(line);
    const std::string& word = command.words[0];
    if (word.empty())
        return;
    if (const Entry* entry = Find(commands, word))
        Run(*entry, command);
    else if (word.find("multipv") != std::string::npos)
        SetField(&PBlock.multipv, command);
    else if (const Entry* later = Find(later_commands, word))
        Run(*later, command);
    else
        Run(any_other, command);
}

}  // namespace vrel
