#include "interface/board_text.h"

#include <array>
#include <cstddef>
#include <string>

#include "board/fen.h"
#include "interface/messages.h"

namespace vrel {

namespace {

constexpr const char* WHITE_LETTERS = "-PNBRQK";
constexpr const char* BLACK_LETTERS = "-onbrqk";

char Letter(const Position& pos, int sq) {
    const int code = pos.board[static_cast<size_t>(sq)];
    if (code == 0)
        return (FileOf(sq) + RankOf(sq)) % 2 == 0 ? '+' : '-';
    return (SideOf(code) == WHITE ? WHITE_LETTERS : BLACK_LETTERS)[TypeOf(code)];
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

}  // namespace vrel
