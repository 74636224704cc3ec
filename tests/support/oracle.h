#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The rules of chess on a plain 8x8 board of letters: slow, and written apart from the engine, of which it includes
// nothing. Tests and the game-playing programs hold the engine against it.
namespace vrel::oracle {

// Squares are numbered 0 = a1, 7 = h1, 63 = h8.
inline constexpr int NOWHERE = -1;

struct Move {
    int from = 0;
    int to = 0;
    char promotion = 0;  // 'q', 'n', 'b' or 'r', 0 for none

    bool operator==(const Move&) const = default;
    auto operator<=>(const Move&) const = default;
};

struct Board {
    std::array<char, 64> squares;  // FEN letters, '.' for an empty square
    bool white_to_move = true;
    std::array<bool, 4> may_castle{};  // in the order KQkq
    int en_passant = NOWHERE;          // the square that a pawn has just passed over
    int quiet_plies = 0;               // since the last capture or pawn move
    bool operator==(const Board&) const = default;

    Board() { squares.fill('.'); }
};

// Reads well-formed FEN, the counters being optional. False for anything else.
bool ReadFen(const std::string& fen, Board* board);

// The first four fields.
std::string WriteFen(const Board& board);

bool IsWhite(char piece);
bool IsBlack(char piece);

// True if a piece of the side attacks the square, whatever stands there.
bool Attacked(const Board& board, int square, bool by_white);

// True if the side has a king and it is attacked. With several kings, any of them.
bool InCheck(const Board& board, bool white);

// All moves by the ways in which the pieces go, own king's safety and the squares that a castling king crosses left
// aside.
std::vector<Move> PseudoLegalMoves(const Board& board);

bool IsLegal(const Board& board, const Move& move);
std::vector<Move> LegalMoves(const Board& board);

// The board after a pseudo-legal move.
Board AfterMove(const Board& board, const Move& move);

// Text as in "e7e8q", and back: false if no legal move of the board reads so.
std::string MoveText(const Move& move);
bool FindLegalMove(const Board& board, const std::string& text, Move* move);

uint64_t CountLeaves(const Board& board, int depth);

// Neither side can mate with what is left, by material alone: bare kings, or a single minor piece beside them.
bool DeadByMaterial(const Board& board);

// White becomes black and rank 1 becomes rank 8.
Board Mirrored(const Board& board);

}  // namespace vrel::oracle
