#include "interface/move_text.h"

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/letters.h"
#include "board/search_thread.h"
#include "interface/pblock.h"

namespace vrel {

// clang-format off
const std::array<const char*, 64> tbl = {
    "a1", "b1", "c1", "d1", "e1", "f1", "g1", "h1",
    "a2", "b2", "c2", "d2", "e2", "f2", "g2", "h2",
    "a3", "b3", "c3", "d3", "e3", "f3", "g3", "h3",
    "a4", "b4", "c4", "d4", "e4", "f4", "g4", "h4",
    "a5", "b5", "c5", "d5", "e5", "f5", "g5", "h5",
    "a6", "b6", "c6", "d6", "e6", "f6", "g6", "h6",
    "a7", "b7", "c7", "d7", "e7", "f7", "g7", "h7",
    "a8", "b8", "c8", "d8", "e8", "f8", "g8", "h8"};
// clang-format on

namespace {

// Letter of the piece that a move promotes to, 0 if it doesn't. The bits are asked for in this order.
constexpr char PromotionLetter(Move move) {
    return (move & PROMOTE_QUEEN)    ? 'Q'
           : (move & PROMOTE_KNIGHT) ? 'N'
           : (move & PROMOTE_BISHOP) ? 'B'
           : (move & PROMOTE_ROOK)   ? 'R'
                                     : '\0';
}

// Text under construction; it stays closed after every step. The longest form has nine characters.
class Writer {
public:
    explicit Writer(char* buffer) : end_(buffer) { *end_ = 0; }
    Writer& Put(char c) {
        *end_++ = c;
        *end_ = 0;
        return *this;
    }
    Writer& Name(Square sq) { return Put(FileLetter(sq)).Put(RankDigit(sq)); }
    // "=Q" and the like.
    Writer& Promotion(Move move) {
        if (const char letter = PromotionLetter(move))
            Put('=').Put(letter);
        return *this;
    }

private:
    char* end_;
};

int MoverType(const Position& pos, Move move) { return TypeOf(pos.board[FromSquare(move)]); }

bool IsCastling(const Position& pos, Move move) {
    const int step = ToSquare(move) - FromSquare(move);
    return (step == 2 || step == -2) && MoverType(pos, move) == KING;
}

// The forms differ in what they write for the zero.
void WriteCastling(Move move, char zero, char* out) {
    Writer text(out);
    text.Put(zero).Put('-').Put(zero);
    if (ToSquare(move) < FromSquare(move))
        text.Put('-').Put(zero);
}

// A pawn that reaches the en passant square takes, whichever pawn it is.
bool PawnTakes(const Position& pos, Move move) { return pos.board[ToSquare(move)] || ToSquare(move) == pos.ep_square; }

// Other pieces of the mover's kind that attack the to-square, pinned or not. Kings have no rivals.
uint64_t Rivals(const Position& pos, Move move) {
    const int type = MoverType(pos, move);
    const Square to = ToSquare(move);
    const uint64_t others = pos.bb[pos.stm][type] & ~Bit(FromSquare(move));
    if (others == 0 || type < KNIGHT || type > QUEEN)
        return 0;
    return GetAtakr(to, type, others, Occupied(pos) | Bit(to));
}

// What tells a piece from its rivals: one on the same file asks for the rank, one on the same rank for the file; rivals
// elsewhere go unmarked, and the mark is 0.
char MarkAmongRivals(const Position& pos, Move move) {
    const Square from = FromSquare(move);
    const uint64_t rivals = Rivals(pos, move);
    if (rivals & (FILE_A << FileOf(from)))
        return RankDigit(from);
    return rivals & (RANK_1 << (from & 56)) ? FileLetter(from) : '\0';
}

void WritePieceForm(const Position& pos, Move move, char mark, char* out) {
    Writer text(out);
    text.Put(fen_letters[MoverType(pos, move)]);
    if (mark)
        text.Put(mark);
    if (pos.board[ToSquare(move)])
        text.Put('x');
    text.Name(ToSquare(move));
}

void WriteSan(const Position& pos, Move move, char* out) {
    if (MoverType(pos, move) == PAWN) {
        Writer text(out);
        if (PawnTakes(pos, move))
            text.Put(FileLetter(FromSquare(move))).Put('x');
        text.Name(ToSquare(move)).Promotion(move);
    } else if (IsCastling(pos, move)) {
        WriteCastling(move, 'o', out);
    } else {
        WritePieceForm(pos, move, MarkAmongRivals(pos, move), out);
    }
}

// Of a pawn only its captures have this form, "ed"; a piece tells its file, needed or not.
void WriteFileForm(const Position& pos, Move move, char* out) {
    if (MoverType(pos, move) == PAWN) {
        Writer text(out);
        if (PawnTakes(pos, move))
            text.Put(FileLetter(FromSquare(move))).Put(FileLetter(ToSquare(move)));
        text.Promotion(move);
    } else if (IsCastling(pos, move)) {
        WriteCastling(move, 'O', out);
    } else {
        WritePieceForm(pos, move, FileLetter(FromSquare(move)), out);
    }
}

// Pawns have none.
void WriteRankForm(const Position& pos, Move move, char* out) {
    if (MoverType(pos, move) == PAWN)
        *out = '\0';
    else if (IsCastling(pos, move))
        WriteCastling(move, '0', out);
    else
        WritePieceForm(pos, move, RankDigit(FromSquare(move)), out);
}

}  // namespace

char* MoveToStr(Move move, char* buffer) {
    if (move == NO_MOVE)
        return std::strcpy(buffer, "null");
    Writer text(buffer);
    text.Name(FromSquare(move)).Name(ToSquare(move));
    if (PBlock.mode != MODE_UCI)
        text.Promotion(move);
    else if (const char letter = PromotionLetter(move))
        text.Put(static_cast<char>(std::tolower(letter)));
    return buffer;
}

void WriteCoord(Move move, char* buffer) { Writer(buffer).Name(FromSquare(move)).Name(ToSquare(move)).Promotion(move); }

void GenMoveStrings(const Position& pos, Move move, char* coord, char* san, char* file_form, char* rank_form) {
    WriteCoord(move, coord);
    WriteSan(pos, move, san);
    WriteFileForm(pos, move, file_form);
    WriteRankForm(pos, move, rank_form);
    // Mate gets no sign of its own.
    const MoveEntry entry = {move, pos.board[FromSquare(move)], pos.board[ToSquare(move)], 0, 0};
    if (MoveGivesCheck(pos, pos.stm, entry) == 0)
        return;
    for (char* form : {coord, san, file_form, rank_form})
        std::strcat(form, "+");
}

bool HasForm(const Position& pos, Move move, const char* text) {
    // The form that games are written in comes first: most texts end here.
    MoveText form;
    const auto reads_so = [&] { return std::strcmp(form.data(), text) == 0; };
    WriteSan(pos, move, form.data());
    if (reads_so())
        return true;
    WriteCoord(move, form.data());
    if (reads_so())
        return true;
    WriteFileForm(pos, move, form.data());
    if (reads_so())
        return true;
    WriteRankForm(pos, move, form.data());
    return reads_so();
}

}  // namespace vrel
