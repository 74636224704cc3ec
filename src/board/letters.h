#pragma once

#include <string_view>

#include "board/position.h"

// The characters that boards, squares and moves are written with. All are plain ASCII, whatever the locale.
namespace vrel {

// By piece code, as FEN has them; a blank where no piece has the code. Standard notation has white's by type.
inline constexpr std::string_view fen_letters = " PNBRQK  pnbrqk";

constexpr bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Characters that name a file or a rank, the number that they stand for, and the other way round.
constexpr bool IsFile(char c) { return c >= 'a' && c <= 'h'; }
constexpr bool IsRank(char c) { return c >= '1' && c <= '8'; }
constexpr int FileIn(char c) { return c - 'a'; }
constexpr int RankIn(char c) { return c - '1'; }
// The square that two characters name, NO_SQUARE if they name none.
constexpr Square ReadSquare(const char* text) {
    return IsFile(text[0]) && IsRank(text[1]) ? FileIn(text[0]) + 8 * RankIn(text[1]) : NO_SQUARE;
}
constexpr char FileLetter(Square sq) { return static_cast<char>('a' + FileOf(sq)); }
constexpr char RankDigit(Square sq) { return static_cast<char>('1' + RankOf(sq)); }

// What words of a line are separated by: the tab in files and in what other programs send.
constexpr bool IsBlankOrTab(char c) { return c == ' ' || c == '\t'; }

inline const char* SkipBlanks(const char* text) {
    while (*text == ' ')
        ++text;
    return text;
}

}  // namespace vrel
