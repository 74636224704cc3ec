#include "interface/control/console_game.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include "board/fen.h"
#include "board/generate.h"
#include "board/letters.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "eval/eval_report.h"
#include "interface/board_text.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "interface/pgn_text.h"
#include "interface/words.h"
#include "platform/file.h"
#include "search/search_control.h"
#include "search/transposition.h"
#include "tools/record_file.h"

namespace vrel {

namespace {

constexpr const char* TEST_FILE = "test.epd";
constexpr const char* GAME_FILE = "tmp.pgn";
constexpr int TEXT_LINE = 255;
constexpr size_t SHORTEST_EPD = 8;  // characters that can't be a position any more
constexpr int LAST_GAME_NUMBER = 1000;
constexpr int MOVES_A_LINE = 11;

void ComplainOfFile(const char* name) { Complain("%s: %s", name, FileTrouble()); }

void CutLineEnd(char* line) { line[std::strcspn(line, "\r\n")] = '\0'; }

// A text that is a number through and through; "1st" is looked for as it stands.
bool IsNumber(const char* text) {
    if (*text == '+' || *text == '-')
        ++text;
    return *text != '\0' && text[std::strspn(text, "0123456789")] == '\0';
}

// The moves stay ahead in the game's records, to be played again.
void TakeBackAll(Position* game) {
    while (game->game_ply > 0)
        TakeBackGameMove(game);
}

// Which game of a PGN file is wanted. Its text before the first tag is game 0; from there on games are counted, and
// numbered by their "[Event " tags.
struct Wanted {
    int number = 0;  // 0: by count
    int count = -1;  // -1: none
};

// Count of the first game with a line that holds the text, -1 if there is none.
// The file is then at its start again, to be read from there.
int FindGame(File* in, const char* name, const char* text) {
    PgnReader pgn(in, name);
    int count = 0;
    for (PgnItem item = pgn.Next(); item != PGN_END; item = pgn.Next()) {
        count += item == PGN_GAME;
        if (item == PGN_START)
            pgn.SkipGame();  // only its lines are looked at
        if ((item == PGN_TAG || item == PGN_LINE) && Contains(pgn.line(), text))
            return in->Seek(0) ? count : -1;
    }
    return -1;
}

// A number outside of the range, and no word at all, mean the first game.
Wanted ChooseGame(File* in, const char* name, const char* which) {
    if (*which != '\0' && !IsNumber(which))
        return {0, FindGame(in, name, which)};
    const int number = ReadInteger(which, 0, LAST_GAME_NUMBER + 1);
    return {number >= 1 && number <= LAST_GAME_NUMBER ? number : 1};
}

// Plays the moves of one game, up to the first that can't be read.
void ReadGame(File* in, const char* name, Position* game, const Wanted& wanted) {
    PgnReader pgn(in, wanted.number ? name : nullptr);  // who searched the file has told what is wrong with it
    int count = 0;
    int events = 0;
    bool found = false;
    for (PgnItem item = pgn.Next(); item != PGN_END; item = pgn.Next()) {
        // Another game begins: what is left of the file isn't read.
        if (item == PGN_GAME && found)
            return;
        count += item == PGN_GAME;
        // Numbers go by these tags: a game without one belongs to the game before.
        events += item == PGN_TAG && Contains(pgn.line(), "[Event ");
        if (item == PGN_START) {
            found = wanted.number ? events == wanted.number : count == wanted.count;
            if (found && pgn.game().foreign)
                Complain("%s: the game follows the rules of another variant", name);
            else if (found)
                SetUpGame(game, pgn.game());
            else
                pgn.SkipGame();
        } else if (item == PGN_MOVE && found && !PlayMoveOfGame(game, std::string(pgn.text()))) {
            return;
        }
    }
}

}  // namespace

// A search at depth 0 leaves the report behind, and the score of the quiet search beside the static one.
void ShowEvalInfo() {
    SearchAtDepthZero();
    const SearchThread& worker = *GetThread(1);
    ShowMessage(EvalReportText(*GamePosition(), PBlock.report, worker.root_eval, worker.score).c_str());
}

void ShowEvalParts() {
    SearchAtDepthZero();
    ShowMessage(EvalPartsText(PBlock.report).c_str());
}

void ShowGame() {
    if (PBlock.debug)
        ShowEvalInfo();
    else
        ShowBoard(*GamePosition());
}

void ResetClocks() {
    SearchLimits limits = LimitsInForce();
    limits.clock = {limits.level_time, limits.level_time};
    SetLimits(limits);
}

void PlayMoveText(const char* text) {
    Position* game = GamePosition();
    // Only a text that is a move stops a search: anything may be mistyped.
    std::string word(text);
    word.push_back('\0');  // reading may make it one character longer
    Move move = NO_MOVE;
    if (!IsValidMove(word.data(), &move))
        return;
    StopSearchAndWait();
    ShowFormatted("%d. move %s", game->game_ply / 2 + 1, word.c_str());
    PlayGameMove(game, move);
    ShowGame();
}

bool PlayMoveOfGame(Position* game, const std::string& text) {
    MoveAsRead read;
    Move move = NO_MOVE;
    if (ReadMoveText(text, &move, &read)) {
        PlayGameMove(game, move);
        return true;
    }
    ShowFormatted("can't parse move '%s'", read.data());
    return false;
}

void UndoMove() {
    StopSearch(STOP_COMMAND);
    Position* game = GamePosition();
    if (game->game_ply == 0)
        return;
    TakeBackGameMove(game);
    ShowGame();
}

// A move that stands ahead may be of another game: only one that is possible here is played again.
void RedoMove() {
    StopSearch(STOP_COMMAND);
    Position* game = GamePosition();
    const Move move = game->undo[game->game_ply].move;
    if (!MoveIsPossible(game, move))
        return;
    MoveText text;
    ShowFormatted("%d. move %s", game->game_ply / 2 + 1, MoveToStr(move, text.data()));
    PlayGameMove(game, move);
    ShowGame();
}

// All the way back and then forward, so that it is the same from wherever the game stands.
void JumpToPly(int ply) {
    StopSearch(STOP_COMMAND);
    Position* game = GamePosition();
    TakeBackAll(game);
    while (game->game_ply < ply && MoveIsPossible(game, game->undo[game->game_ply].move))
        PlayGameMove(game, game->undo[game->game_ply].move);
    ShowBoard(*game);
}

void GetTestPosition(const char* identifier) {
    StopSearch(STOP_COMMAND);
    const std::string sought = std::string("id \"") + identifier + "\"";
    // Comments and what is indented hold no position. Of a line that is too long the part with the name is taken.
    std::array<char, TEXT_LINE> line{};
    bool found = false;
    File in = OpenOwnFile(TEST_FILE, "r");
    if (!in)
        ComplainOfFile(TEST_FILE);
    while (!found && in.ReadLine(line.data(), TEXT_LINE))
        found = line[0] != ' ' && line[0] != ';' && std::strstr(line.data(), sought.c_str());
    if (in.Failed())
        ComplainOfFile(TEST_FILE);
    if (!found)
        line[0] = '\0';
    CutLineEnd(line.data());
    ShowMessage(line.data());
    Position* game = GamePosition();
    if (std::strlen(line.data()) > SHORTEST_EPD)
        SetPosition(game, line.data());
    ShowBoard(*game);
    ClearTTable();  // a suite's positions have nothing to do with each other
}

void LoadGame(const char* file, const char* which) {
    StopSearch(STOP_COMMAND);
    ShowFormatted("loading %s, tag %s\n", file, which);
    Position* game = GamePosition();
    // The clocks start anew also where there is no such file.
    if (File in(file, "r"); in) {
        SetPosition(game, fen_opn);
        ReadGame(&in, file, game, ChooseGame(&in, file, which));
        game->undo[game->game_ply].move = NO_MOVE;
        ShowBoard(*game);
    } else if (*file != '\0') {
        ComplainOfFile(file);
    }
    ResetClocks();
}

void SaveGame() {
    RecordFile out(OpenOwnFile(GAME_FILE, "a"), GAME_FILE);
    if (!out) {
        ComplainOfFile(GAME_FILE);
        return;
    }
    Position* game = GamePosition();
    // The record is played through from its start, since a move is written as it reads before it is made.
    const int moves = game->game_ply;
    TakeBackAll(game);
    std::string text = "[Event \"Unknown\"]\n";
    for (int i = 0; i < moves; ++i) {
        const Move move = game->undo[game->game_ply].move;
        MoveText coord, san, file_form, rank_form;
        GenMoveStrings(*game, move, coord.data(), san.data(), file_form.data(), rank_form.data());
        text.append(san.data()).append(" ");
        if ((i + 1) % MOVES_A_LINE == 0)
            text += '\n';
        PlayGameMove(game, move);
    }
    out.Put(text + "\n\n");
}

}  // namespace vrel
