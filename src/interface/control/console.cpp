#include "interface/control/console.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>

#include "board/exchange.h"
#include "board/fen.h"
#include "board/letters.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_build.h"
#include "book/book_lookup.h"
#include "eval/personality.h"
#include "interface/board_text.h"
#include "interface/control/console_game.h"
#include "interface/control/edit.h"
#include "interface/control/front_end.h"
#include "interface/control/game_loop.h"
#include "interface/control/uci.h"
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

// No command has more than four words; what is beyond these counts is dropped without a word.
constexpr size_t MOST_WORDS = 10;
constexpr size_t LONGEST_WORD = 127;
// Times are kept within what sums and products of them can hold.
constexpr int MOST_SECONDS = 1000000000;
constexpr int MOST_MINUTES = MOST_SECONDS / 60;
constexpr double LONGEST_TIME = MOST_SECONDS;
constexpr double ANALYSIS_TIME = 99999.0;  // seconds: more than a day
constexpr int DEEPEST_PERFT = 20;          // plies

// A line split at blanks; words that aren't there are empty.
struct Command {
    const char* line;
    std::array<std::string, MOST_WORDS> words;
    bool cut = false;  // a word is longer than what is kept of it

    // Words are counted from 1, the name of the command. A number that isn't there, or is none, is 0.
    const char* Word(size_t number) const { return words[number - 1].c_str(); }
    int Integer(size_t number, int lowest, int highest) const { return ReadInteger(Word(number), lowest, highest); }
    double Real(size_t number) const { return ReadReal(Word(number), -LONGEST_TIME, LONGEST_TIME); }
};

Command Split(const char* line) {
    Command command{line, {}};
    for (std::string& word : command.words) {
        line = SkipBlanks(line);
        const size_t length = std::strcspn(line, " ");
        word.assign(line, std::min(length, LONGEST_WORD));
        command.cut = command.cut || length > LONGEST_WORD;
        line += length;
    }
    return command;
}

// The engine plays no side until it is told to think again.
void NewGame(const Command&) {
    StopSearch(STOP_COMMAND);
    SetPosition(GamePosition(), fen_opn);
    ShowBoard(*GamePosition());
    computer = 2;
    ResetClocks();
}

// The text begins at the fifth character, where a further blank would end the board before it has begun.
void SetFen(const Command& command) {
    StopSearch(STOP_COMMAND);
    SetPosition(GamePosition(), std::strlen(command.line) > 4 ? command.line + 4 : "");
    ShowBoard(*GamePosition());
}

// As in UCI, but a move may have any form that games have, and has to be legal.
void SetUpGameText(const Command& command) {
    constexpr size_t name = 8;  // characters of "position"
    StopSearch(STOP_COMMAND);
    SetGame(std::strlen(command.line) > name ? command.line + name : "", PlayMoveOfGame);
}

// Of a name that has been cut another file might be read.
bool NameIsCut(const Command& command) {
    if (command.cut)
        Complain("%s: longer than %d characters", command.Word(1), static_cast<int>(LONGEST_WORD));
    return command.cut;
}

void ShowGamesOrGame(const Command& command) {
    if (*command.Word(3) == '\0')
        return ShowGames(command.Word(2));
    StopSearch(STOP_COMMAND);
    ShowGameOfFile(command.Word(2), command.Integer(3, 0, INT32_MAX));
}

// The dialogue takes its lines itself, and the board is shown as it leaves it.
void Edit(const Command&) {
    StopSearch(STOP_COMMAND);
    EditBoard();
    ShowBoard(*GamePosition());
}

// The search still ends with a report, but `time` has no clock to set any more.
void Force(const Command&) {
    StopSearch(STOP_COMMAND);
    computer = 2;
}

// Searches for the sake of the score. What an earlier analysis has left in the table would show in this one's lines, so
// the table starts empty, unless it is to be kept.
void Analyse(Depth depth) {
    SearchLimits limits = LimitsInForce();
    limits.level_moves = 1;
    limits.level_time = ANALYSIS_TIME;
    limits.max_depth = depth;
    if (PBlock.use_hash <= 1)
        ClearTTable();
    RequestSearch(STATE_ANALYSING, limits);
}

// Without a depth it is 0, where nothing but captures is looked at; one that makes no sense is no limit.
void AnalyseToDepth(const Command& command) {
    const Depth depth = command.Integer(2, -1, MAX_DEPTH);
    Analyse(depth >= 0 && depth < MAX_DEPTH ? depth : MAX_DEPTH);
}

void AnalyseWithoutLimit(const Command&) {
    Analyse(MAX_DEPTH);
    PBlock.noise = 0.0;
    computer = 2;
}

// Searches as in a game, within the level's time. The move is told and not played.
void Think(const Command&) {
    computer = GamePosition()->stm;
    RequestSearch(STATE_THINKING);
}

// Each report plays its move and asks for the next search, until the game is over.
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

// A level of 40 moves in 300 seconds gives both sides all of that time at once.
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

// The clock of the side that the engine was last told to think for, if there is one.
void SetTime(const Command& command) {
    SearchLimits limits = LimitsInForce();
    if (computer == WHITE || computer == BLACK)
        limits.clock[computer] = command.Real(2);
    SetLimits(limits);
}

// What an exchange on each occupied square would bring the side that doesn't own the piece there. Where nobody gains
// anything nothing is shown.
void ShowSwaps(const Command&) {
    const Position& game = *GamePosition();
    for (Square sq = 0; sq < 64; ++sq) {
        const int code = game.board[sq];
        if (code == 0)
            continue;
        const int swap = swapoff1(game, SideOf(code) ^ 1, NO_SQUARE, sq, Occupied(game));
        if (swap != 0)
            Print("sq= %s, swap= %d\n", algbr(sq), swap);
    }
}

// Keeps the moves that have been taken back while a command makes moves of its own on the game record. Behind them `]`
// would otherwise find moves that were never played. No such command goes deeper than perft.
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

// The leaves are counted on the game record, whose counter InitSearch clears.
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

// The look-up makes every move of the position to see what the book says of it.
void ShowBook(const Command&) {
    const MovesAhead ahead(GamePosition());
    GetCandidates(GamePosition(), true);
    ShowMessage("");
}

// A name that isn't known, or none, sets everything back, the weights of the evaluation as well.
void SetSelectivity(const Command& command) {
    const char* name = command.Word(2);
    if (int8_t* field = FindSelectivity(&Personality, name)) {
        *field = static_cast<int8_t>(command.Integer(3, INT8_MIN, INT8_MAX));
        ShowFormatted("%s set to %d", name, *field);
    } else if (std::strcmp(name, "ss_off") == 0) {
        // Some prune up to a depth, which is none at 0; others from one on, which 99 puts out of reach.
        Personality.SE = Personality.RP_depth = Personality.CNP_depth = Personality.LMP_depth = 0;
        Personality.NMP_depth = Personality.LMR_depth = 99;
        ShowMessage("selectivity set to OFF");
    } else {
        Personality = DefaultPersonality;
        ShowMessage("selectivity set to default");
    }
}

// Depth and noise stay as the tuner needs them, for further weights. An unknown name is done at once.
void TuneOne(const Command& command) {
    const char* name = command.Word(2);
    if (*name == '\0' || *command.Word(3) == '\0')
        return;
    CopyText(&PBlock.epd_file, "tune.epd");
    LimitDepth(0);
    PBlock.noise = SILENT;
    if (int16_t* weight = FindKeyword(&Personality, name))
        PTune(name, weight, command.Integer(3, 0, INT16_MAX));
    ShowMessage("done!\n");
}

// Sets a plain field of the control record to the second word, within what the field holds.
template <typename T>
void SetField(Relaxed<T>* field, const Command& command) {
    *field = static_cast<T>(command.Integer(2, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

void MakeBook(const Command&) {
    if (!CreateBook())
        PBlock.failed = 1;
}

void ShowHelp(const Command&);

// A command: its name, its line of the help page, what it needs of a running search, and what it does.
struct Entry {
    const char* name;
    const char* help;  // how it is written, a tab, what it does; null for another name of the command before
    Need need;
    void (*run)(const Command&);
    bool shows_board = false;  // in whose place `debug` puts the evaluation report, which needs a free engine
    size_t move_word = 0;      // which word has to name a move, without which nothing is done; 0 for none
};

// In the order in which they are tested, up to the one that is matched as a part of the word.
constexpr Entry commands[] = {
    {"new", "new\tstart position", ENDS_SEARCH, NewGame},
    {"fen", "fen TEXT\tset up a position", ENDS_SEARCH, SetFen},
    {"position", "position TEXT\tset up a position, play moves, as in UCI: fen TEXT moves MOVES", ENDS_SEARCH,
     SetUpGameText},
    {"legal", "legal\tshow the legal moves and what each leads to", NO_TOOL, [](const Command&) { ShowLegalMoves(); }},
    {"force", "force\tend a search, play no side", ENDS_SEARCH, Force},
    {"quit", "quit\tend the program", ENDS_PROGRAM, [](const Command&) { EndProgram(); }},
    {"go", "go DEPTH\tanalyse to a depth", FREE_ENGINE, AnalyseToDepth},
    {"an", "an\tanalyse without a limit", FREE_ENGINE, AnalyseWithoutLimit},
    {".", ".\tend the search", AT_ONCE, [](const Command&) { StopSearch(STOP_COMMAND); }},
    {"mv", "mv\tthink about a move", FREE_ENGINE, Think},
    {"bd", "bd\tshow the board", BESIDE, [](const Command&) { ShowGame(); }, true},
    {"level", "level MOVES TIME INC\ttime control: 40 5:00 0", NO_TOOL, SetLevel},
    {"depth", "depth N\tlast depth of searches", NO_TOOL, SetDepth},
    {"sd", nullptr, NO_TOOL, SetDepth},
    {"time", "time SECONDS\tclock of the side that thinks", NO_TOOL, SetTime},
    {"ponder", "ponder N\t1 if the interface lets the engine ponder", NO_TOOL,
     [](const Command& command) { SetField(&PBlock.ponder, command); }},
    {"self", "self\tplay both sides", FREE_ENGINE, PlaySelf},
    {"get", "get ID\tposition from test.epd", FREE_ENGINE,
     [](const Command& command) { GetTestPosition(command.Word(2)); }},
    {"noise", "noise SECONDS\tno search output before so many seconds, 9999 for none", BESIDE,
     [](const Command& command) { PBlock.noise = command.Real(2); }},
    {"hash", "hash N\t0 no table, 1 cleared for each analysis, 2 kept", NO_TOOL,
     [](const Command& command) { SetField(&PBlock.use_hash, command); }},
    {"tag", "tag\tnote the key of the position", BESIDE,
     [](const Command&) { PBlock.tagged_key = GamePosition()->hash; }},
    {"ev", "ev\tshow the evaluation term by term", WHEN_OVER, [](const Command&) { ShowEvalInfo(); }},
    {"trace", "trace N\twrite N plies of the search tree to trace.txt", BESIDE,
     [](const Command& command) { SetTrace(command.Integer(2, INT16_MIN, INT16_MAX)); }},
    {"lmr", "lmr\tshow the reduction tables", BESIDE, [](const Command&) { DisplayLMR(); }},
    {"debug", "debug N\t1 shows the evaluation in place of the board", BESIDE,
     [](const Command& command) { SetField(&PBlock.debug, command); }},
};

// Whatever holds the name is this command, so it can't be looked up with the others.
constexpr Entry several_lines = {"multipv", "multipv N\tnumber of lines shown", NO_TOOL,
                                 [](const Command& command) { SetField(&PBlock.multipv, command); }};

constexpr Entry later_commands[] = {
    {"undo", "undo, [\ttake a move back", ENDS_SEARCH, [](const Command&) { UndoMove(); }, true},
    {"[", nullptr, ENDS_SEARCH, [](const Command&) { UndoMove(); }, true},
    {"]", "]\tplay it again", ENDS_SEARCH, [](const Command&) { RedoMove(); }, true},
    {"load", "load FILE GAME\tread a game of a PGN file, by number or text", ENDS_SEARCH,
     [](const Command& command) {
         if (!NameIsCut(command))
             LoadGame(command.Word(2), command.Word(3));
     }},
    {"games", "games FILE N\tlist the games of a PGN file; with a number: read that game, show its moves", ENDS_SEARCH,
     [](const Command& command) {
         if (!NameIsCut(command))
             ShowGamesOrGame(command);
     }},
    {"save", "save\tappend the game to tmp.pgn", NO_TOOL, [](const Command&) { SaveGame(); }},
    {"jump", "jump PLY\tgo to a ply of the game", ENDS_SEARCH,
     [](const Command& command) { JumpToPly(command.Integer(2, 0, UNDO_RECORDS)); }},
    {"edit", "edit\tset up a position piece by piece", ENDS_SEARCH, Edit},
    {"book", "book\tshow the book moves", WHEN_OVER, ShowBook},
    {"mkbook", "mkbook\tbuild book.opn from book.pgn", FREE_ENGINE, MakeBook},
    {"set", "set NAME VALUE\tchange a setting of the search; alone: all back to default", WHEN_OVER, SetSelectivity},
    {"tune", "tune WEIGHT STEPS\tfit a weight to tune.epd", FREE_ENGINE, TuneOne},
    {"perft", "perft N\tcount the leaves of the move tree", FREE_ENGINE, RunPerft},
    {"swap", "swap\tshow the exchanges on the board", BESIDE, ShowSwaps},
    {"help", "help\tthis page", BESIDE, ShowHelp},
    {"parts", "parts\topening and ending values of the evaluation", WHEN_OVER, [](const Command&) { ShowEvalParts(); }},
    {"move", "move MOVE\tplay a move; the word alone will do: Nf3, e2e4, exd5, O-O", ENDS_SEARCH,
     [](const Command& command) { PlayMoveText(command.Word(2)); }, true, 2},
};

// A line that no command claims is tried as a move, so that a game can be typed in as it stands in a book.
constexpr Entry any_other = {"",   nullptr, ENDS_SEARCH, [](const Command& command) { PlayMoveText(command.Word(1)); },
                             true, 1};

// Two columns, the second from the tab on. A second name has no line of its own.
void ShowHelpOf(const Entry& entry) {
    if (entry.help == nullptr)
        return;
    const int width = static_cast<int>(std::strcspn(entry.help, "\t"));
    ShowFormatted("%-22.*s%s", width, entry.help, entry.help + width + 1);
}

void ShowHelp(const Command&) {
    for (const Entry& entry : commands)
        ShowHelpOf(entry);
    ShowHelpOf(several_lines);
    for (const Entry& entry : later_commands)
        ShowHelpOf(entry);
}

// Every word is some command's. That with several lines is asked for in its place among the others.
const Entry& EntryOf(const std::string& word) {
    if (const Entry* entry = FindRow(commands, word))
        return *entry;
    if (Contains(word, several_lines.name))
        return several_lines;
    const Entry* later = FindRow(later_commands, word);
    return later != nullptr ? *later : any_other;
}

}  // namespace

Need ConsoleNeed(const char* line) {
    const Command command = Split(line);
    const Entry& entry = EntryOf(command.words[0]);
    // A slip of the finger ends no search.
    if (entry.move_word != 0 && !NamesMove(command.Word(entry.move_word)))
        return NO_TOOL;
    if (!PBlock.debug || !entry.shows_board)
        return entry.need;
    // The report searches with the record of a worker. To look at the board isn't worth a search; to change it is.
    return entry.need == BESIDE ? WHEN_OVER : FREE_ENGINE;
}

void ConsoleCommand(const char* line) {
    const Command command = Split(line);
    if (!command.words[0].empty())
        EntryOf(command.words[0]).run(command);
}

}  // namespace vrel
