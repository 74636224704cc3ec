#include "interface/board_display.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <string>

#include "board/fen.h"
#include "interface/input.h"
#include "interface/messages.h"
#include "search/search_thread.h"

namespace vrel {

namespace {

constexpr const char* WHITE_LETTERS = "-PNBRQK";
constexpr const char* BLACK_LETTERS = "-onbrqk";
constexpr const char* EDIT_LETTERS = "pnbrqk";
constexpr int EDIT_LINE = 78;

char Letter(const Position& pos, int sq) {
    const int code = pos.board[static_cast<size_t>(sq)];
    if (code == 0)
        return (FileOf(sq) + RankOf(sq)) % 2 == 0 ? '+' : '-';
    return (SideOf(code) == WHITE ? WHITE_LETTERS : BLACK_LETTERS)[TypeOf(code)];
}

void EditSquare(Position* pos, int side, char letter, int sq) {
    if (pos->board[static_cast<size_t>(sq)])
        RemovePiece(pos, sq);
    const char* found = std::strchr(EDIT_LETTERS, std::tolower(static_cast<unsigned char>(letter)));
    if (letter != '\0' && found != nullptr)
        AddPiece(pos, side, static_cast<int>(found - EDIT_LETTERS) + 1, sq);
}

// The words behind the side's; the first that names no square ends the line.
void EditPieces(Position* pos, int side, const char* text) {
    while (true) {
        text += std::strspn(text, " ");
        const size_t length = std::strcspn(text, " ");
        if (length < 3 || text[1] < 'a' || text[1] > 'h' || text[2] < '1' || text[2] > '8')
            return;
        EditSquare(pos, side, text[0], (text[1] - 'a') + 8 * (text[2] - '1'));
        text += length;
    }
}

void EditLine(Position* pos, const char* line) {
    line += std::strspn(line, " ");
    if (*line != 'w' && *line != 'b')
        return;
    const int side = *line == 'w' ? WHITE : BLACK;
    pos->stm = static_cast<uint8_t>(side);
    EditPieces(pos, side, line + std::strcspn(line, " "));
}

// A right stays only while king and rook stand at home. Rights are never added.
void DropImpossibleRights(Position* pos) {
    const auto home = [pos](int side, int rook) {
        return pos->board[static_cast<size_t>(init_king_sq[static_cast<size_t>(side)])] == PieceCode(side, KING) &&
               pos->board[static_cast<size_t>(rook)] == PieceCode(side, ROOK);
    };
    int rights = 0;
    rights |= home(WHITE, 7) ? WHITE_SHORT : 0;
    rights |= home(WHITE, 0) ? WHITE_LONG : 0;
    rights |= home(BLACK, 63) ? BLACK_SHORT : 0;
    rights |= home(BLACK, 56) ? BLACK_LONG : 0;
    pos->castling &= static_cast<uint8_t>(rights);
}

}  // namespace

void ShowBoard(const Position& pos) {
    std::array<char, EPD_TEXT> fen;
    MakeEPD(pos, fen.data());
    std::string text = fen.data();
    text += '\n';
    for (int rank = 7; rank >= 0; --rank) {
        text += ' ';
        for (int file = 0; file < 8; ++file) {
            text += ' ';
            text += Letter(pos, rank * 8 + file);
        }
        text += '\n';
    }
    text += pos.stm == WHITE ? "white\n" : "black\n";
    ShowMessage(text.c_str());
}

void EditBoard() {
    Position* game = GamePosition();
    ShowMessage("\n\n");
    ShowMessage(".                    end edit");
    ShowMessage("#                    clear board");
    ShowMessage("w  Pa2 Pb2 Kc2       white, pieces");
    ShowMessage("b  Pa7 Pb7 Kc7       black, pieces");
    std::array<char, EDIT_LINE> line;
    while (ReadDialogueLine(line.data(), EDIT_LINE)) {
        if (line[0] == '.')
            break;
        if (line[0] == '#')
            ClearBoard(game);
        else
            EditLine(game, line.data());
    }
    DropImpossibleRights(game);
    StartRecord(game);
}

}  // namespace vrel
