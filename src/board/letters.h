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
constexpr char FileLetter(Square sq) { return static_cast<char>('a' + FileOf(sq)); }
constexpr char RankDigit(Square sq) { return static_cast<char>('1' + RankOf(sq)); }

inline const char* SkipBlanks(const char* text) {
    while (*text == ' ')
        ++text;
    return text;
}

}  // namespace vrel
