#include "interface/control/edit.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <cstring>

#include "board/fen.h"
#include "board/letters.h"
#include "board/placement.h"
#include "board/search_thread.h"
#include "interface/control/input.h"
#include "interface/messages.h"

namespace vrel {

namespace {

// By piece type, from a pawn on.
constexpr const char* EDIT_LETTERS = "pnbrqk";
constexpr int EDIT_LINE = 78;  // characters of a line and its end; the rest is the next line

// Whatever stood there goes. A letter of no piece leaves the square empty.
void EditSquare(Position* pos, Side side, char letter, Square sq) {
    if (pos->board[sq])
        RemovePiece(pos, sq);
    const char* found = std::strchr(EDIT_LETTERS, std::tolower(static_cast<unsigned char>(letter)));
    if (letter != '\0' && found != nullptr)
        AddPiece(pos, side, static_cast<int>(found - EDIT_LETTERS) + 1, sq);
}

// The words behind the side's; the first that names no square ends the line.
void EditPieces(Position* pos, Side side, const char* text) {
    while (true) {
        text = SkipBlanks(text);
        const size_t length = std::strcspn(text, " ");
        const Square sq = length < 3 ? NO_SQUARE : ReadSquare(text + 1);
        if (sq == NO_SQUARE)
            return;
        EditSquare(pos, side, text[0], sq);
        text += length;
    }
}

// The side of the last line is the one to move. A line of neither side is passed over.
void EditLine(Position* pos, const char* line) {
    line = SkipBlanks(line);
    if (*line != 'w' && *line != 'b')
        return;
    const Side side = *line == 'w' ? WHITE : BLACK;
    pos->stm = static_cast<uint8_t>(side);
    EditPieces(pos, side, line + std::strcspn(line, " "));
}

// A right stays only while king and rook stand at home. Rights are never added: whether these pieces have moved before
// is something that the board can't tell.
void DropImpossibleRights(Position* pos) {
    const auto home = [pos](Side side, Square rook) {
        return pos->board[init_king_sq[side]] == PieceCode(side, KING) && pos->board[rook] == PieceCode(side, ROOK);
    };
    int rights = 0;
    rights |= home(WHITE, 7) ? WHITE_SHORT : 0;
    rights |= home(WHITE, 0) ? WHITE_LONG : 0;
    rights |= home(BLACK, 63) ? BLACK_SHORT : 0;
    rights |= home(BLACK, 56) ? BLACK_LONG : 0;
    pos->castling &= static_cast<uint8_t>(rights);
}

}  // namespace

// The moves that led to the old position don't lead to the new one: the game starts here.
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
