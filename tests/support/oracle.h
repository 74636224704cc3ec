#pragma once

#include <string>
#include <vector>

// The rules of chess on a plain 8x8 board of letters: slow, and written apart from the engine, of which it includes
// nothing. Tests hold the engine against it. Squares are numbered 0 = a1, 7 = h1, 63 = h8.
namespace vrel::oracle {

inline constexpr int NOWHERE = -1;

struct Move {
    int from = 0;
    int to = 0;
    char promotion = 0;  // 'q', 'n', 'b' or 'r', 0 for none
    auto operator<=>(const Move&) const = default;
};

struct Board {
    std::string squares = std::string(64, '.');  // FEN letters, '.' for an empty square
    bool white_to_move = true;
    std::string rights;        // in the order KQkq
    int en_passant = NOWHERE;  // the square that a pawn has just passed over
    int quiet_plies = 0;       // since the last capture or pawn move
    bool operator==(const Board&) const = default;
};

// Reads well-formed FEN without looking at counters, and writes its first four fields.
Board ReadFen(const std::string& fen);
std::string WriteFen(const Board& board);

bool IsWhite(char piece);

// True if a piece of the side attacks the square, whatever stands there.
bool Attacked(const Board& board, int square, bool by_white);

// True if a king of the side is attacked.
bool InCheck(const Board& board, bool white);

// All moves by the ways in which the pieces go, own king's safety and the squares that a castling king crosses left
// aside.
std::vector<Move> PseudoLegalMoves(const Board& board);

bool IsLegal(const Board& board, const Move& move);
std::vector<Move> LegalMoves(const Board& board);

// The board after a pseudo-legal move.
Board AfterMove(const Board& board, const Move& move);

// Text as in "e7e8q".
std::string MoveText(const Move& move);

// White becomes black and rank 1 becomes rank 8.
Board Mirrored(const Board& board);

}  // namespace vrel::oracle
