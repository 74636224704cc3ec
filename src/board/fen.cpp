#include "board/fen.h"

#include <cstring>

#include "board/keys.h"

namespace vrel {

namespace {

bool FieldEnds(char c) { return c == '\0' || c == ' '; }

const char* SkipBlanks(const char* text) {
    while (*text == ' ')
        ++text;
    return text;
}

// Places the piece of a letter; other characters place nothing. A surplus piece at the end of a rank, which finds its
// square occupied, is left out.
void PlaceLetter(Position* pos, char c, int sq) {
    static constexpr const char* letters = "PNBRQKpnbrqk";
    const char* found = std::strchr(letters, c);
    if (found == nullptr || pos->board[sq])
        return;
    const int index = static_cast<int>(found - letters);
    AddPiece(pos, index / 6, index % 6 + 1, sq);
}

// Reads the placement and returns the end of its field. Ranks below the first are passed over.
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
        if (*text >= '0' && *text <= '9') {
            file = std::min(file + (*text - '0'), 7);
            continue;
        }
        PlaceLetter(pos, *text, rank * 8 + file);
        file = std::min(file + 1, 7);
    }
    return text;
}

const char* ReadSide(Position* pos, const char* text) {
    if (*text == '\0' || text[1] == '\0')
        return text + std::strlen(text);
    if (text[1] == 'w')
        pos->stm = WHITE;
    else if (text[1] == 'b')
        pos->stm = BLACK;
    return text + 2;
}

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
    int sq = NO_SQUARE;
    for (; !FieldEnds(*text); ++text) {
        if (*text >= 'a' && *text <= 'h')
            sq = *text - 'a';
        else if (*text >= '1' && *text <= '8' && sq + (*text - '1') * 8 < NO_SQUARE)
            sq += (*text - '1') * 8;
    }
    pos->ep_square = static_cast<uint8_t>(sq);
}

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
        *out++ = (SideOf(code) == WHITE ? " PNBRQK" : " pnbrqk")[TypeOf(code)];
    }
    if (run)
        *out++ = static_cast<char>('0' + run);
    return out;
}

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
    pos->undo[0] = {};
    pos->undo[1] = {};
    pos->game_ply = 0;
}

void SetPosition(Position* pos, const char* fen) {
    ClearBoard(pos);
    const char* text = ReadBoard(pos, fen);
    text = SkipBlanks(ReadSide(pos, text));
    text = SkipBlanks(ReadCastling(pos, text));
    ReadEnPassant(pos, text);
    StartRecord(pos);
}

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
        *out++ = static_cast<char>('a' + FileOf(pos.ep_square));
        *out++ = static_cast<char>('1' + RankOf(pos.ep_square));
    }
    *out = '\0';
}

}  // namespace vrel
