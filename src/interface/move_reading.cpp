#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "board/generate.h"
#include "board/legality.h"
#include "board/letters.h"
#include "board/search_thread.h"
#include "interface/messages.h"
#include "interface/move_text.h"

namespace vrel {

namespace {

constexpr unsigned PIECES = 1U << KNIGHT | 1U << BISHOP | 1U << ROOK | 1U << QUEEN | 1U << KING;
constexpr unsigned PROMOTIONS = 1U << KNIGHT | 1U << BISHOP | 1U << ROOK | 1U << QUEEN;
constexpr unsigned NO_PROMOTION = 1U << NO_PIECE;

// The sets that a move must fall into.
struct MoveParts {
    uint64_t from = ALL_SQUARES;
    uint64_t to = ALL_SQUARES;
    unsigned types = 0;                  // bit n: a mover of type n
    unsigned promotions = NO_PROMOTION;  // bit n: a promotion to type n
    bool are_form = false;               // whatever move has the parts has the text as a form
};

bool HasParts(const MoveParts& parts, const MoveEntry& entry) {
    const int promotion = entry.move & PROMOTION_BITS ? PromotedType(entry.move) : NO_PIECE;
    return (parts.to & Bit(ToSquare(entry.move))) && (parts.from & Bit(FromSquare(entry.move))) &&
           (parts.types >> TypeOf(entry.piece) & 1) && (parts.promotions >> promotion & 1);
}

// True if a text that begins with a letter and ends in the target square is the form of a move that no other piece of
// the kind can make: "Nf3", or "Nxf3" if it takes something. The king's may be castling.
bool IsPlainForm(const MoveEntry& entry, std::string_view text) {
    const int type = TypeOf(entry.piece);
    if (type == PAWN || type == KING || text[0] != fen_letters[type])
        return false;
    return entry.captured ? text.size() == 4 && text[1] == 'x' : text.size() == 3;
}

// Number of legal moves that have the parts and, unless it is null, the text as a form. `result` is the last of them, 0
// if there is none. The list is its own, so that the lists of the position's thread stay as they are.
int CountMoves(const Position& pos, const MoveParts& parts, const char* form, Move* result) {
    std::array<MoveEntry, MOVE_STACK_RESERVE> list;
    // Only what the parts name is generated, in the order of all moves.
    MoveEntry* end = list.data();
    if (parts.types >> PAWN & 1)
        end = GeneratePawnMoves(pos, pos.stm, end);
    for (unsigned types = parts.types & PIECES; types != 0; types &= types - 1)
        end = GeneratePieceMoves(pos, pos.stm, GetLSB(types), parts.to, end);
    assert(end <= list.data() + list.size());
    if (form != nullptr && end - list.data() == 1 && IsPlainForm(list[0], form))
        form = nullptr;
    int count = 0;
    *result = NO_MOVE;
    for (const MoveEntry* entry = list.data(); entry != end; ++entry) {
        if (!HasParts(parts, *entry) || (form != nullptr && !HasForm(pos, entry->move, form)) ||
            !MoveIsLegal(pos, pos.stm, entry->move))
            continue;
        *result = entry->move;
        ++count;
    }
    return count;
}

constexpr char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
// Sets of squares by the characters that name them.
constexpr bool IsSquare(const char* text) { return ReadSquare(text) != NO_SQUARE; }
constexpr uint64_t SquaresOfFile(char c) { return FILE_A << FileIn(c); }
constexpr uint64_t SquaresOfRank(char c) { return RANK_1 << 8 * RankIn(c); }
constexpr uint64_t SquareIn(const char* text) { return Bit(ReadSquare(text)); }

// Bits of the types, by letter.
constexpr std::array<uint8_t, 256> type_of_letter = [] {
    std::array<uint8_t, 256> types{};
    for (int type = PAWN; type <= KING; ++type)
        types[static_cast<unsigned char>(fen_letters[type])] = static_cast<uint8_t>(1U << type);
    return types;
}();

// Bit of the type, 0 if the letter is none of a piece.
constexpr unsigned TypeOfLetter(char letter) { return type_of_letter[static_cast<unsigned char>(letter)]; }

// Bit of the type that stands on a square; an empty square has none of the bits of a piece.
unsigned TypeOn(const Position& pos, uint64_t square) { return 1U << TypeOf(pos.board[GetLSB(square)]); }

// ---- Reading by forms ----------------------------------------------------------------------------------------------

// Brings a text into the shape of the forms and returns its length: no "+" and nothing behind it, a promotion as
// "=Q", castling with the letter o. A promotion written without "=" makes it one character longer.
size_t Normalise(char* text) {
    size_t length = 0;
    for (; text[length] != '\0' && text[length] != '+'; ++length)
        if (text[length] == 'O' || text[length] == '0')
            text[length] = 'o';
    if (length > 0) {
        const char last = ToUpper(text[length - 1]);
        if (TypeOfLetter(last) & PROMOTIONS) {
            if (length < 2 || text[length - 2] != '=')
                text[length++ - 1] = '=';
            text[length - 1] = last;
        }
    }
    text[length] = '\0';
    return length;
}

// The longest text that a form can have: "e7e8=Q".
constexpr size_t LONGEST_FORM = 6;

// Texts that begin with a file: a square, two files, two squares, or a capture.
bool PartsOfPawnOrCoordinates(const Position& pos, const char* text, size_t length, MoveParts* parts) {
    parts->types = 1U << PAWN;
    if (length == 2) {
        if (IsRank(text[1])) {
            parts->to = SquareIn(text);
            return true;
        }
        if (!IsFile(text[1]))
            return false;
        parts->from = SquaresOfFile(text[0]);
        parts->to = SquaresOfFile(text[1]);
        return true;
    }
    if (length != 4 || !IsSquare(text + 2))
        return false;
    parts->to = SquareIn(text + 2);
    if (text[1] == 'x') {
        parts->from = SquaresOfFile(text[0]);
        return true;
    }
    if (!IsRank(text[1]))
        return false;
    parts->from = SquareIn(text);
    parts->types = TypeOn(pos, parts->from);
    parts->are_form = true;
    return true;
}

// What every move must have in common with a normalised text to have it as a form: a first sieve, behind which the
// forms are compared. False if the text has the shape of no form at all.
bool PartsOfForm(const Position& pos, const char* text, size_t length, MoveParts* parts) {
    // No text is the rank form of every pawn move.
    if (length == 0) {
        parts->types = 1U << PAWN;
        parts->promotions = NO_PROMOTION | PROMOTIONS;
        return true;
    }
    if (length > LONGEST_FORM)
        return false;
    if (length >= 2 && text[length - 2] == '=') {
        parts->promotions = TypeOfLetter(text[length - 1]) & PROMOTIONS;
        length -= 2;
        if (length == 0)  // the file form of a pawn that steps forward
            parts->types = 1U << PAWN;
        if (parts->promotions == 0 || length == 0)
            return parts->promotions != 0;
    }
    if (IsFile(text[0]))
        return PartsOfPawnOrCoordinates(pos, text, length, parts);
    if (text[0] == 'o') {
        parts->types = 1U << KING;
        return true;
    }
    parts->types = TypeOfLetter(text[0]) & PIECES;
    if (parts->types == 0 || length < 3 || !IsSquare(text + length - 2))
        return false;
    parts->to = SquareIn(text + length - 2);
    return true;
}

// ---- Reading by parts ----------------------------------------------------------------------------------------------

// Takes the last character off a text if `test` holds for it, and returns it; else 0.
template <typename Test>
char TakeLast(std::string_view* text, Test test) {
    if (text->empty() || !test(text->back()))
        return '\0';
    const char last = text->back();
    text->remove_suffix(1);
    return last;
}

// Splits a text from its end: letter, file, rank, sign, target square, "=", letter of a promotion; all but the square
// may be missing. False if it isn't made so.
// What stays open is open: exactly one legal move has to fit in the end.
bool SplitIntoParts(const Position& pos, std::string_view text, MoveParts* parts) {
    const auto one_of = [](std::string_view set) {
        return [set](char c) { return set.find(c) != std::string_view::npos; };
    };
    const char promotion = TakeLast(&text, one_of("QRBNqrbn"));
    TakeLast(&text, one_of("="));
    const char to_rank = TakeLast(&text, IsRank);
    const char to_file = TakeLast(&text, IsFile);
    TakeLast(&text, one_of("x-:"));
    const char rank = TakeLast(&text, IsRank);
    const char file = TakeLast(&text, IsFile);
    const char letter = TakeLast(&text, one_of("KQRBNP"));
    if (!to_rank || !to_file || !text.empty())
        return false;
    parts->to = SquaresOfFile(to_file) & SquaresOfRank(to_rank);
    if (file)
        parts->from &= SquaresOfFile(file);
    if (rank)
        parts->from &= SquaresOfRank(rank);
    parts->types = letter ? TypeOfLetter(letter) : 1U << PAWN;
    if (file && rank && !letter)
        parts->types = TypeOn(pos, parts->from);
    if (parts->types == 1U << PAWN && !file)
        parts->from &= SquaresOfFile(to_file);  // a push
    // Castling, where the king comes from two files away, is named by both squares or not at all.
    if (!(file && rank))
        parts->from &= ~(parts->types >> KING & 1 ? parts->to << 2 | parts->to >> 2 : 0);
    parts->promotions = promotion ? TypeOfLetter(ToUpper(promotion)) : NO_PROMOTION | 1U << QUEEN;
    return true;
}

// Number of legal moves of the game record that have the text, which is normalised, as a form.
int CountMatches(char* text, Move* result) {
    *result = NO_MOVE;
    const Position& pos = *GamePosition();
    const size_t length = Normalise(text);
    MoveParts parts;
    return PartsOfForm(pos, text, length, &parts) ? CountMoves(pos, parts, parts.are_form ? nullptr : text, result) : 0;
}

}  // namespace

int IsValidMove(char* text, Move* result) {
    const int matches = CountMatches(text, result);
    if (matches == 2)
        Print("ambiguous move\n");
    return matches == 1 ? 1 : 0;
}

bool NamesMove(std::string_view text) {
    std::string normalised(text);
    normalised.push_back('\0');  // room for the "=" of a promotion
    Move move = NO_MOVE;
    return CountMatches(normalised.data(), &move) == 1;
}

bool ReadMoveText(std::string_view text, Move* move, MoveAsRead* read) {
    text = text.substr(0, LONGEST_READ);
    *std::copy(text.begin(), text.end(), read->begin()) = '\0';
    if (IsValidMove(read->data(), move))
        return true;
    const Position& pos = *GamePosition();
    MoveParts parts;
    if (!SplitIntoParts(pos, text.substr(0, text.find('+')), &parts) || CountMoves(pos, parts, nullptr, move) != 1)
        return false;
    WriteCoord(*move, read->data());
    return true;
}

}  // namespace vrel
