#include "board/fen.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "board/keys.h"
#include "board/letters.h"
#include "board/placement.h"
#include "platform/narrow.h"

namespace vrel {

namespace {

// A field reaches to a blank or to the end of the text.
bool FieldEnds(char c) { return c == '\0' || c == ' '; }

// Places the piece of a letter; other characters place nothing. A surplus piece at the end of a rank, which finds its
// square occupied, is left out.
void PlaceLetter(Position* pos, char c, Square sq) {
    const size_t code = fen_letters.find(c);
    if (code == std::string_view::npos || pos->board[sq])
        return;
    const int piece = static_cast<int>(code);
    AddPiece(pos, SideOf(piece), piece, sq);
}

// Reads the placement and returns the end of its field. Ranks below the first are passed over, and what goes beyond the
// h-file stays on it.
const char* ReadBoard(Position* pos, const char* text) {
    int rank = 7;
    int file = 0;
    for (; !FieldEnds(*text); ++text) {
        if (*text == '/') {
            --rank;
            file = 0;
            continue;
        }
        if (rank < 0)
            continue;
        // A digit leaves squares empty; any other character stands for one square.
        if (*text >= '0' && *text <= '9') {
            file = std::min(file + (*text - '0'), 7);
            continue;
        }
        PlaceLetter(pos, *text, rank * 8 + file);
        file = std::min(file + 1, 7);
    }
    return text;
}

// The character behind the placement is skipped, whatever it is. Another one than "w" and "b" leaves the side as it
// was.
const char* ReadSide(Position* pos, const char* text) {
    if (*text == '\0' || text[1] == '\0')
        return text + std::strlen(text);
    if (text[1] == 'w')
        pos->stm = WHITE;
    else if (text[1] == 'b')
        pos->stm = BLACK;
    return text + 2;
}

// Rights are taken as they are written, whether king and rooks stand at home or not.
const char* ReadCastling(Position* pos, const char* text) {
    pos->castling = 0;
    for (; !FieldEnds(*text); ++text) {
        switch (*text) {
            case 'K':
                pos->castling |= WHITE_SHORT;
                break;
            case 'Q':
                pos->castling |= WHITE_LONG;
                break;
            case 'k':
                pos->castling |= BLACK_SHORT;
                break;
            case 'q':
                pos->castling |= BLACK_LONG;
                break;
            default:
                break;
        }
    }
    return text;
}

// A letter gives the file, a digit behind it the rank; what would leave the board is left out.
void ReadEnPassant(Position* pos, const char* text) {
    Square sq = NO_SQUARE;
    for (; !FieldEnds(*text); ++text) {
        if (IsFile(*text))
            sq = FileIn(*text);
        else if (IsRank(*text) && sq + RankIn(*text) * 8 < NO_SQUARE)
            sq += RankIn(*text) * 8;
    }
    pos->ep_square = Narrow(sq);
}

// Writes a rank from the a-file on, each run of empty squares as a digit.
char* WriteRank(const Position& pos, int rank, char* out) {
    int run = 0;
    for (int file = 0; file < 8; ++file) {
        const int code = pos.board[rank * 8 + file];
        if (code == 0) {
            ++run;
            continue;
        }
        if (run)
            *out++ = static_cast<char>('0' + run);
        run = 0;
        *out++ = fen_letters[code];
    }
    if (run)
        *out++ = static_cast<char>('0' + run);
    return out;
}

// The letters of the rights in the order of their bits.
char* WriteCastling(const Position& pos, char* out) {
    if (pos.castling == 0)
        *out++ = '-';
    for (int i = 0; i < 4; ++i)
        if (pos.castling & (1 << i))
            *out++ = "KQkq"[i];
    return out;
}

}  // namespace

void StartRecord(Position* pos) {
    SetHash(pos);
    // Whoever looks at the last move or at the one ahead finds none.
    pos->undo[0] = {};
    pos->undo[1] = {};
    pos->game_ply = 0;
}

// A field that is missing stands for no right and no en passant square.
void SetPosition(Position* pos, const char* fen) {
    ClearBoard(pos);
    const char* text = ReadBoard(pos, fen);
    text = SkipBlanks(ReadSide(pos, text));
    text = SkipBlanks(ReadCastling(pos, text));
    ReadEnPassant(pos, text);
    StartRecord(pos);
}

// The four fields that EPD begins with. The counters of FEN aren't written, since SetPosition doesn't read them.
void MakeEPD(const Position& pos, char* text) {
    char* out = text;
    for (int rank = 7; rank >= 0; --rank) {
        out = WriteRank(pos, rank, out);
        if (rank)
            *out++ = '/';
    }
    *out++ = ' ';
    *out++ = pos.stm == WHITE ? 'w' : 'b';
    *out++ = ' ';
    out = WriteCastling(pos, out);
    *out++ = ' ';
    if (pos.ep_square == NO_SQUARE) {
        *out++ = '-';
    } else {
        *out++ = FileLetter(pos.ep_square);
        *out++ = RankDigit(pos.ep_square);
    }
    assert(out - text < EPD_TEXT);
    *out = '\0';
}

}  // namespace vrel
