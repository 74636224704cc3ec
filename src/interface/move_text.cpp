#include "interface/move_text.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "board/attacks.h"
#include "board/generate.h"
#include "board/legality.h"
#include "board/letters.h"
#include "board/search_thread.h"
#include "interface/messages.h"
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

constexpr unsigned PIECES = 1U << KNIGHT | 1U << BISHOP | 1U << ROOK | 1U << QUEEN | 1U << KING;

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
    Writer& Square(int sq) { return Put(FileLetter(sq)).Put(RankDigit(sq)); }
    // "=Q" and the like.
    Writer& Promotion(Move move) {
        if (const char letter = PromotionLetter(move))
            Put('=').Put(letter);
        return *this;
    }

private:
    char* end_;
};

// The four buffers that receive the forms of a move.
struct Forms {
    char* coord;
    char* san;
    char* file_form;
    char* rank_form;
};

void WritePawnForms(const Position& pos, Move move, const Forms& forms) {
    const int from = FromSquare(move);
    const int to = ToSquare(move);
    const char from_file = FileLetter(from);
    Writer(forms.coord).Square(from).Square(to).Promotion(move);
    Writer(forms.rank_form);
    if (pos.board[static_cast<size_t>(to)] || to == pos.ep_square) {
        Writer(forms.san).Put(from_file).Put('x').Square(to).Promotion(move);
        Writer(forms.file_form).Put(from_file).Put(FileLetter(to)).Promotion(move);
    } else {
        Writer(forms.san).Square(to).Promotion(move);
        Writer(forms.file_form).Promotion(move);
    }
}

// Other pieces of the mover's kind that attack the to-square, pinned or not. Kings have no rivals.
uint64_t Rivals(const Position& pos, int type, int from, int to) {
    const auto& own = pos.bb[pos.stm];
    const uint64_t others = own[static_cast<size_t>(type)] & ~Bit(from);
    if (others == 0 || type < KNIGHT || type > QUEEN)
        return 0;
    return GetAtakr(to, type, others, Occupied(pos) | Bit(to));
}

void WriteCastlingForms(const Forms& forms, bool is_short) {
    std::strcpy(forms.san, is_short ? "o-o" : "o-o-o");
    std::strcpy(forms.file_form, is_short ? "O-O" : "O-O-O");
    std::strcpy(forms.rank_form, is_short ? "0-0" : "0-0-0");
}

void WritePieceForms(const Position& pos, Move move, const Forms& forms) {
    const int from = FromSquare(move);
    const int to = ToSquare(move);
    const int type = TypeOf(pos.board[static_cast<size_t>(from)]);
    MoveToStr(move, forms.coord);
    if (type == KING && (to - from == 2 || to - from == -2)) {
        WriteCastlingForms(forms, to > from);
        return;
    }
    const char letter = fen_letters[type];
    const char file = FileLetter(from);
    const char rank = RankDigit(from);
    Writer san(forms.san);
    Writer file_form(forms.file_form);
    Writer rank_form(forms.rank_form);
    san.Put(letter);
    file_form.Put(letter).Put(file);
    rank_form.Put(letter).Put(rank);
    // A rival on the same file asks for the rank and one on the same rank for the file; rivals elsewhere go unmarked.
    if (const uint64_t rivals = Rivals(pos, type, from, to)) {
        if (rivals & (FILE_A << FileOf(from)))
            san.Put(rank);
        else if (rivals & (RANK_1 << (from & 56)))
            san.Put(file);
    }
    const bool takes = pos.board[static_cast<size_t>(to)] != 0;
    for (Writer* text : {&san, &file_form, &rank_form}) {
        if (takes)
            text->Put('x');
        text->Square(to);
    }
}

// All forms without the sign of check.
void WriteForms(const Position& pos, Move move, const Forms& forms) {
    if (TypeOf(pos.board[static_cast<size_t>(FromSquare(move))]) == PAWN)
        WritePawnForms(pos, move, forms);
    else
        WritePieceForms(pos, move, forms);
}

// ---- Reading -------------------------------------------------------------------------------------------------------

// Brings a text into the shape of the forms and returns its length: no "+" and nothing behind it, a promotion as
// "=Q", castling with the letter o. A promotion written without "=" makes it one character longer.
size_t Normalise(char* text) {
    size_t length = std::strcspn(text, "+");
    text[length] = 0;
    if (length == 0)
        return 0;
    const int last = std::toupper(static_cast<unsigned char>(text[length - 1]));
    if (last == 'B' || last == 'N' || last == 'Q' || last == 'R') {
        if (length < 2 || text[length - 2] != '=')
            text[length++ - 1] = '=';
        text[length - 1] = static_cast<char>(last);
        text[length] = 0;
    }
    for (size_t i = 0; i < length; ++i)
        if (text[i] == 'O' || text[i] == '0')
            text[i] = 'o';
    return length;
}

// What every move must have in common with a text to be able to match it. Only a first sieve: what it lets through
// is still compared form by form.
struct Sieve {
    uint64_t from = ALL_SQUARES;
    uint64_t to = ALL_SQUARES;
    unsigned types = 0;          // bit n: a mover of type n may match
    Move promotion = NO_MOVE;    // the bit that the move must have, if any
    bool any_promotion = false;  // the promotion doesn't matter
};

constexpr bool IsSquare(const char* text) { return IsFile(text[0]) && IsRank(text[1]); }
constexpr uint64_t SquareIn(const char* text) { return Bit(RankIn(text[1]) * 8 + FileIn(text[0])); }

constexpr Move PromotionBit(char letter) {
    for (const Move bit : {PROMOTE_QUEEN, PROMOTE_KNIGHT, PROMOTE_BISHOP, PROMOTE_ROOK})
        if (PromotionLetter(bit) == letter)
            return bit;
    return NO_MOVE;
}

constexpr int TypeOfLetter(char letter) {
    for (int type = KNIGHT; type <= KING; ++type)
        if (fen_letters[type] == letter)
            return type;
    return NO_PIECE;
}

// The longest text that a form can have: "e7e8=Q".
constexpr size_t LONGEST_FORM = 6;

// Texts that begin with a file: a square, two files, two squares, or a capture.
bool SievePawnOrCoordinates(const char* text, size_t length, Sieve* sieve) {
    sieve->types = 1U << PAWN;
    if (length == 2) {
        if (IsRank(text[1])) {
            sieve->to = SquareIn(text);
            return true;
        }
        sieve->from = FILE_A << FileIn(text[0]);
        sieve->to = IsFile(text[1]) ? FILE_A << FileIn(text[1]) : 0;
        return true;
    }
    if (length != 4 || !IsSquare(text + 2))
        return false;
    sieve->to = SquareIn(text + 2);
    if (text[1] == 'x') {
        sieve->from = FILE_A << FileIn(text[0]);
        return true;
    }
    if (!IsRank(text[1]))
        return false;
    sieve->from = SquareIn(text);
    sieve->types |= PIECES;
    return true;
}

// Fills the sieve of a normalised text. False if the text has the shape of no form at all.
bool MakeSieve(const char* text, size_t length, Sieve* sieve) {
    // No text is the rank form of every pawn move.
    if (length == 0) {
        sieve->types = 1U << PAWN;
        sieve->any_promotion = true;
        return true;
    }
    if (length > LONGEST_FORM)
        return false;
    if (length >= 2 && text[length - 2] == '=') {
        sieve->promotion = PromotionBit(text[length - 1]);
        length -= 2;
        if (sieve->promotion == NO_MOVE)
            return false;
        if (length == 0) {  // the file form of a pawn that steps forward
            sieve->types = 1U << PAWN;
            return true;
        }
    }
    if (IsFile(text[0]))
        return SievePawnOrCoordinates(text, length, sieve);
    if (text[0] == 'o') {
        sieve->types = 1U << KING;
        return true;
    }
    const int type = TypeOfLetter(text[0]);
    if (type == NO_PIECE || length < 3 || !IsSquare(text + length - 2))
        return false;
    sieve->types = 1U << type;
    sieve->to = SquareIn(text + length - 2);
    return true;
}

bool PassesSieve(const Sieve& sieve, const MoveEntry& entry) {
    return (sieve.to & Bit(ToSquare(entry.move))) && (sieve.from & Bit(FromSquare(entry.move))) &&
           (sieve.types >> TypeOf(entry.piece) & 1) &&
           (sieve.any_promotion || (entry.move & PROMOTION_BITS) == sieve.promotion);
}

bool MatchesAnyForm(const Position& pos, Move move, const char* text) {
    MoveText coord, san, file_form, rank_form;
    WriteForms(pos, move, {coord.data(), san.data(), file_form.data(), rank_form.data()});
    for (const MoveText* form : {&coord, &san, &file_form, &rank_form})
        if (std::strcmp(form->data(), text) == 0)
            return true;
    return false;
}

}  // namespace

char* MoveToStr(Move move, char* buffer) {
    if (move == NO_MOVE)
        return std::strcpy(buffer, "null");
    Writer text(buffer);
    text.Square(FromSquare(move)).Square(ToSquare(move));
    if (PBlock.mode != MODE_UCI)
        text.Promotion(move);
    else if (const char letter = PromotionLetter(move))
        text.Put(static_cast<char>(std::tolower(letter)));
    return buffer;
}

void GenMoveStrings(const Position& pos, Move move, char* coord, char* san, char* file_form, char* rank_form) {
    WriteForms(pos, move, {coord, san, file_form, rank_form});
    const MoveEntry entry = {move, pos.board[static_cast<size_t>(FromSquare(move))],
                             pos.board[static_cast<size_t>(ToSquare(move))], 0, 0};
    if (MoveGivesCheck(pos, pos.stm, entry) == 0)
        return;
    for (char* form : {coord, san, file_form, rank_form})
        std::strcat(form, "+");
}

int IsValidMove(char* text, Move* result) {
    *result = NO_MOVE;
    Position* pos = GamePosition();
    GenerateAll(pos);
    const size_t length = Normalise(text);
    Sieve sieve;
    if (!MakeSieve(text, length, &sieve))
        return 0;
    int matches = 0;
    for (const MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; ++entry) {
        if (!PassesSieve(sieve, *entry) || !MatchesAnyForm(*pos, entry->move, text) ||
            !MoveIsLegal(*pos, pos->stm, entry->move))
            continue;
        *result = entry->move;
        ++matches;
    }
    if (matches == 2)
        Print("ambiguous move\n");
    return matches == 1 ? 1 : 0;
}

}  // namespace vrel
