#include "interface/console_game.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include "board/fen.h"
#include "board/generate.h"
#include "board/make_move.h"
#include "eval/eval_report.h"
#include "interface/board_display.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/numbers.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "search/search_thread.h"
#include "search/thread_pool.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr int TEXT_LINE = 255;
constexpr size_t MOVE_WORD = 127;
constexpr size_t PGN_MOVE = 32;
constexpr size_t SHORTEST_EPD = 8;
constexpr int LAST_GAME_NUMBER = 1000;
constexpr int MOVES_A_LINE = 11;

// Room for a move's text, which may grow by one character when it is read.
using MoveBuffer = std::array<char, MOVE_WORD + 2>;

MoveBuffer CutTo(size_t most, const char* text) {
    MoveBuffer buffer{};
    std::memcpy(buffer.data(), text, std::min(std::strlen(text), most));
    return buffer;
}

void CutLineEnd(char* line) { line[std::strcspn(line, "\r\n")] = '\0'; }

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsNumber(const char* text) { return *text != '\0' && text[std::strspn(text, "+-0123456789")] == '\0'; }

void TakeBackAll(Position* game) {
    while (game->game_ply > 0)
        TakeBackGameMove(game);
}

// Which game of a PGN file is wanted.
struct Wanted {
    int number = 1;
    std::string text;  // empty: by number
};

Wanted ReadWanted(const char* which) {
    Wanted wanted;
    if (IsNumber(which)) {
        const int number = ReadInteger(which, 0, LAST_GAME_NUMBER + 1);
        wanted.number = number >= 1 && number <= LAST_GAME_NUMBER ? number : 1;
    } else if (*which != '\0') {
        wanted.number = -1;
        wanted.text = which;
    }
    return wanted;
}

// Plays the moves of a text; what holds no letter is no move. False at the first that can't be read.
bool PlayText(Position* game, const std::string& text) {
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        at = end + 1;
        const auto first = std::find_if(word.begin(), word.end(), IsLetter);
        if (first == word.end())
            continue;
        const std::string name(first, word.end());
        MoveBuffer buffer = CutTo(PGN_MOVE, name.c_str());
        Move move = NO_MOVE;
        if (!IsValidMove(buffer.data(), &move)) {
            ShowFormatted("can't parse move '%s'", CutTo(PGN_MOVE, name.c_str()).data());
            return false;
        }
        PlayGameMove(game, move);
    }
    return true;
}

// Takes the comments out of a line and appends the rest. `depth` counts the open brackets, also over lines.
void AppendWithoutComments(const char* line, int* depth, std::string* text) {
    for (; *line != '\0'; ++line) {
        if (*line == '{')
            ++*depth;
        else if (*line == '}' && *depth > 0)
            --*depth;
        else if (*depth == 0)
            *text += *line == '\t' ? ' ' : *line;
    }
    *text += ' ';
}

void ReadGame(File* in, Position* game, Wanted wanted) {
    std::array<char, TEXT_LINE> line;
    std::string text;
    int count = 0;
    int depth = 0;
    while (in->ReadLine(line.data(), TEXT_LINE)) {
        CutLineEnd(line.data());
        if (std::strstr(line.data(), "[Event "))
            ++count;
        if (wanted.number < 0 && std::strstr(line.data(), wanted.text.c_str()))
            wanted.number = count;
        if (count != wanted.number || (depth == 0 && line[0] == '['))
            continue;
        AppendWithoutComments(line.data(), &depth, &text);
        if (depth > 0)
            continue;
        if (!PlayText(game, text))
            return;
        text.clear();
    }
}

}  // namespace

void ShowGame() {
    if (PBlock.debug)
        ShowEvalInfo();
    else
        ShowBoard(*GamePosition());
}

void PlayMoveText(const char* text) {
    Position* game = GamePosition();
    MoveBuffer buffer = CutTo(MOVE_WORD, text);
    Move move = NO_MOVE;
    if (!IsValidMove(buffer.data(), &move))
        return;
    PBlock.stop = STOP_COMMAND;
    while (!WorkersIdle())
        SleepMilliseconds(1);
    ShowFormatted("%d. move %s", game->game_ply / 2 + 1, buffer.data());
    PlayGameMove(game, move);
    ShowGame();
}

void UndoMove() {
    PBlock.stop = STOP_COMMAND;
    Position* game = GamePosition();
    if (game->game_ply == 0)
        return;
    TakeBackGameMove(game);
    ShowGame();
}

void RedoMove() {
    PBlock.stop = STOP_COMMAND;
    Position* game = GamePosition();
    const Move move = game->undo[game->game_ply].move;
    if (!MoveIsPossible(game, move))
        return;
    MoveText text;
    ShowFormatted("%d. move %s", game->game_ply / 2 + 1, MoveToStr(move, text.data()));
    PlayGameMove(game, move);
    ShowGame();
}

void JumpToPly(int ply) {
    Position* game = GamePosition();
    TakeBackAll(game);
    while (game->game_ply < ply && MoveIsPossible(game, game->undo[game->game_ply].move)) {
        const int before = game->game_ply;
        PlayGameMove(game, game->undo[before].move);
        if (game->game_ply <= before)
            break;
    }
    ShowBoard(*game);
}

void GetTestPosition(const char* identifier) {
    PBlock.stop = STOP_COMMAND;
    const std::string sought = std::string("id \"") + identifier + "\"";
    std::array<char, TEXT_LINE> line{};
    bool found = false;
    File in("test.epd", "r");
    while (!found && in.ReadLine(line.data(), TEXT_LINE))
        found = line[0] != ' ' && line[0] != ';' && std::strstr(line.data(), sought.c_str());
    if (!found)
        line[0] = '\0';
    CutLineEnd(line.data());
    ShowMessage(line.data());
    Position* game = GamePosition();
    if (std::strlen(line.data()) > SHORTEST_EPD)
        SetPosition(game, line.data());
    ShowBoard(*game);
    ClearTTable();
}

void LoadGame(const char* file, const char* which) {
    PBlock.stop = STOP_COMMAND;
    ShowFormatted("loading %s, tag %s\n", file, which);
    Position* game = GamePosition();
    if (File in(file, "r"); in) {
        SetPosition(game, fen_opn);
        ReadGame(&in, game, ReadWanted(which));
        game->undo[game->game_ply].move = NO_MOVE;
        ShowBoard(*game);
    }
    PBlock.clock[WHITE] = PBlock.level_time.Get();
    PBlock.clock[BLACK] = PBlock.level_time.Get();
}

void SaveGame() {
    File out("tmp.pgn", "a");
    if (!out)
        return;
    Position* game = GamePosition();
    const int moves = game->game_ply;
    TakeBackAll(game);
    out.WriteText("[Event \"Unknown\"]\n");
    for (int i = 0; i < moves; ++i) {
        const Move move = game->undo[game->game_ply].move;
        MoveText coord, san, file_form, rank_form;
        GenMoveStrings(*game, move, coord.data(), san.data(), file_form.data(), rank_form.data());
        out.Print("%s ", san.data());
        if ((i + 1) % MOVES_A_LINE == 0)
            out.WriteText("\n");
        PlayGameMove(game, move);
    }
    out.WriteText("\n\n");
    out.Close();
}

}  // namespace vrel
