#include "interface/board_text.h"

#include <array>
#include <string>
#include <string_view>

#include "board/fen.h"
#include "interface/messages.h"

namespace vrel {

namespace {

// By piece code: the letter on a board for a person, where a black pawn is an "o".
constexpr std::string_view pchars = "-PNBRQK--onbrqk";

}  // namespace

char SquareLetter(const Position& pos, Square sq) {
    const int code = pos.board[sq];
    if (code == NO_PIECE)
        return sq_color(sq) ? '+' : '-';
    return pchars[code];
}

void ShowBoard(const Position& pos) {
    std::array<char, EPD_TEXT> fen;
    MakeEPD(pos, fen.data());
    std::string text = fen.data();
    text += '\n';
    for (int rank = 7; rank >= 0; --rank) {
        text += ' ';
        for (int file = 0; file < 8; ++file) {
            text += ' ';
            text += SquareLetter(pos, rank * 8 + file);
        }
        text += '\n';
    }
    text += pos.stm == WHITE ? "white\n" : "black\n";
    ShowMessage(text.c_str());
}

}  // namespace vrel
