#pragma once

#include <array>
#include <string_view>

#include "board/position.h"

// Moves and squares as text.
namespace vrel {

inline constexpr int MOVE_TEXT = 16;
using MoveText = std::array<char, MOVE_TEXT>;

// Names of the squares.
extern const std::array<const char*, 64> tbl;
inline const char* algbr(Square sq) { return tbl[sq & 63]; }

// What the protocol in use writes: coordinates, a promotion as "e7e8q" in UCI and "e7e8=Q" in the console; "null" for
// no move. `buffer` has room for MOVE_TEXT characters. Returns `buffer`.
char* MoveToStr(Move move, char* buffer);

// The coordinate form, the same in all protocols: "e2e4", "e7e8=Q".
void WriteCoord(Move move, char* buffer);

// All forms of a pseudo-legal move, read before it is made.
void GenMoveStrings(const Position& pos, Move move, char* coord, char* san, char* file_form, char* rank_form);

// True if one of the forms, its sign of check left out, reads so.
bool HasForm(const Position& pos, Move move, const char* text);

// Reads a move of the game record: 1 if exactly one legal move has the text as one of its forms, else 0. `result` is
// the last move that matched, 0 if none did. `text` is normalised in place, which may make it one character longer.
int IsValidMove(char* text, Move* result);

// True if IsValidMove would take the text. It says nothing and leaves the text as it is.
bool NamesMove(std::string_view text);

// More of a text than this can't be a move, unless a "+" cuts it.
inline constexpr int LONGEST_READ = 32;
using MoveAsRead = std::array<char, LONGEST_READ + 2>;  // reading may make it one character longer

// Reads a move of the game record as games have it: as IsValidMove does or, if that doesn't take it, by its parts, of
// which only the target square has to be there ("Ng1-f3", "Rd1d2", "e8", "e7xd8Q"), and which exactly one legal move
// must have. `read` receives the text as IsValidMove leaves it, or the coordinate form of a move read by its parts.
bool ReadMoveText(std::string_view text, Move* move, MoveAsRead* read);

}  // namespace vrel
