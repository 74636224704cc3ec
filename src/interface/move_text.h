#pragma once

#include <array>

#include "board/position.h"

// Moves and squares as text.
namespace vrel {

inline constexpr int MOVE_TEXT = 16;
using MoveText = std::array<char, MOVE_TEXT>;

// Names of the squares.
extern const std::array<const char*, 64> tbl;
inline const char* algbr(int sq) { return tbl[static_cast<size_t>(sq & 63)]; }

// Coordinate form; "null" for no move. `buffer` has room for MOVE_TEXT characters. Returns `buffer`.
char* MoveToStr(Move move, char* buffer);

// All forms of a pseudo-legal move, read before it is made.
void GenMoveStrings(const Position& pos, Move move, char* coord, char* san, char* file_form, char* rank_form);

// Reads a move of the game record: 1 if exactly one legal move has the text as one of its forms, else 0. `result` is
// the last move that matched, 0 if none did. `text` is normalised in place, which may make it one character longer.
int IsValidMove(char* text, Move* result);

}  // namespace vrel
