#include "interface/control/console_game.h"

#include <algorithm>
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
#include "platform/file.h"
#include "search/search_control.h"
#include "search/transposition.h"

namespace vrel {

namespace {

constexpr int TEXT_LINE = 255;
constexpr size_t MOVE_WORD = 127;
constexpr size_t PGN_MOVE = 32;
constexpr size_t SHORTEST_EPD = 8;
constexpr int LAST_GAME_NUMBER = 1000;
constexpr int MOVES_A_LINE = 11;
constexpr size_t MOST_PENDING = 65536;

// Room for a move's text, which may grow by one character when it is read.
using MoveBuffer = std::array<char, MOVE_WORD + 2>;

MoveBuffer CutTo(size_t most, const char* text) {
    MoveBuffer buffer{};
    std::memcpy(buffer.data(), text, std::min(std::strlen(text), most));
    return buffer;
}

void CutLineEnd(char* line) { line[std::strcspn(line, "\r\n")] = '\0'; }

bool IsNumber(const char* text) {
    if (*text == '+' || *text == '-')
        ++text;
    return *text != '\0' && text[std::strspn(text, "0123456789")] == '\0';
}

void TakeBackAll(Position* game) {
    while (game->game_ply > 0)
        TakeBackGameMove(game);
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
        MoveBuffer buffer = CutTo(PGN_MOVE, std::string(first, word.end()).c_str());
        Move move = NO_MOVE;
        if (!IsValidMove(buffer.data(), &move)) {
            ShowFormatted("can't parse move '%s'", buffer.data());
            return false;
        }
        PlayGameMove(game, move);
    }
    return true;
}

// A line of a file, or a part of it if it is longer than the buffer.
struct Piece {
    std::array<char, TEXT_LINE> text{};
    bool unfinished = false;  // the rest of the line comes with the next piece

    bool Read(File* in) {
        const bool any = in->ReadLine(text.data(), TEXT_LINE);
        const size_t length = std::strlen(text.data());
        unfinished = length == TEXT_LINE - 1 && text[length - 1] != '\n';
        return any;
    }
    bool Contains(const char* what) const { return std::strstr(text.data(), what) != nullptr; }
};

// Number of the first game with a line that contains the text, -1 if there is none. What stands before the first
// game counts as game 0.
int FindGame(File* in, const char* text) {
    Piece piece;
    int count = 0;
    while (piece.Read(in)) {
        count += piece.Contains("[Event ");
        if (piece.Contains(text))
            return in->Seek(0) ? count : -1;
    }
    return -1;
}

// The game of a PGN file that is wanted: by number, or the first that holds a text; -1 if there is no such game.
int ChooseGame(File* in, const char* which) {
    if (*which == '\0')
        return 1;
    if (!IsNumber(which))
        return FindGame(in, which);
    const int number = ReadInteger(which, 0, LAST_GAME_NUMBER + 1);
    return number >= 1 && number <= LAST_GAME_NUMBER ? number : 1;
}

// Text of a game outside its comments that hasn't been played yet.
struct PendingText {
    std::string text;
    int depth = 0;  // open brackets, also over lines

    void Append(const char* line) {
        for (; *line != '\0'; ++line) {
            if (*line == '{')
                ++depth;
            if (depth == 0)
                text += std::strchr("\t\r\n", *line) ? ' ' : *line;
            if (*line == '}' && depth > 0 && --depth == 0)
                text += ' ';
        }
    }

    // Takes the text out, but for a last word of which more is to come.
    std::string Take(bool unfinished) {
        const size_t end = unfinished && text.size() < MOST_PENDING ? text.rfind(' ') + 1 : text.size();
        std::string taken = text.substr(0, end);
        text.erase(0, end);
        return taken;
    }
};

// Plays the moves of one game, up to the first that can't be read. The text of a line in which a comment opens waits
// for the comment's end.
void ReadGame(File* in, Position* game, int wanted) {
    Piece piece;
    PendingText pending;
    int count = 0;
    bool starts_line = true;
    bool is_tag = false;
    while (count <= wanted && piece.Read(in)) {
        count += piece.Contains("[Event ");
        if (starts_line)
            is_tag = pending.depth == 0 && piece.text[0] == '[';
        starts_line = !piece.unfinished;
        if (count != wanted || is_tag)
            continue;
        pending.Append(piece.text.data());
        if (pending.depth > 0 && pending.text.size() < MOST_PENDING)
            continue;
        if (!PlayText(game, pending.Take(piece.unfinished)))
            return;
    }
    // The last line may end with the file.
    if (pending.depth == 0)
        PlayText(game, pending.Take(false));
}

}  // namespace

void ShowEvalInfo() {
    SearchAtDepthZero();
    const SearchThread& worker = *GetThread(1);
    ShowMessage(EvalReportText(*GamePosition(), PBlock.report, worker.root_eval, worker.score).c_str());
}

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
    StopSearchAndWait();
    ShowFormatted("%d. move %s", game->game_ply / 2 + 1, buffer.data());
    PlayGameMove(game, move);
    ShowGame();
}

void UndoMove() {
    StopSearch(STOP_COMMAND);
    Position* game = GamePosition();
    if (game->game_ply == 0)
        return;
    TakeBackGameMove(game);
    ShowGame();
}

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
    StopSearch(STOP_COMMAND);
    ShowFormatted("loading %s, tag %s\n", file, which);
    Position* game = GamePosition();
    if (File in(file, "r"); in) {
        SetPosition(game, fen_opn);
        ReadGame(&in, game, ChooseGame(&in, which));
        game->undo[game->game_ply].move = NO_MOVE;
        ShowBoard(*game);
    }
    SearchLimits limits = LimitsInForce();
    limits.clock = {limits.level_time, limits.level_time};
    SetLimits(limits);
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
