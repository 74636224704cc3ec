#pragma once

#include <array>
#include <cassert>
#include <cstdint>

#include "board/position.h"

// Random keys of positions (Zobrist hashing).
namespace vrel {

// Key of a piece on a square: rtable[code * 64 + sq]. Row 0 serves the move hashes of the move ordering. FillKeyTables
// writes both tables while nobody searches; then every thread reads them.
extern std::array<uint64_t, 1024> rtable;
// By castling rights (0 to 15) and by en passant square (64: none), which never lies on the first two ranks.
extern std::array<uint64_t, 66> rtable2;
// By side to move: for black the whole key is turned over.
inline constexpr std::array<uint64_t, 2> stmh = {0, 0xffffffffffffffffULL};

// Next value of the key generator. Its seed lives as long as the program: tables filled later differ.
uint32_t myrand();

// Tells one state of the tables from another: they are drawn anew as a whole.
inline uint64_t KeyTablesInUse() { return rtable[64]; }

// Draws new tables. Keys of positions that exist stand for the old tables until their next SetHash.
void FillKeyTables();

// Computes `hash` and `pawn_hash` from the board alone.
void SetHash(Position* pos);

inline uint64_t PieceKey(Side side, int type, Square sq) {
    assert(type >= PAWN && type <= KING && sq < NO_SQUARE);
    return rtable[PieceCode(side, type) * 64 + sq];
}

// Takes a piece on a square into the keys or out of them; `piece` may be a code or a type. Only pawns are in
// `pawn_hash`. No branch: which piece it is can't be predicted.
inline void UpdateHash(Position* pos, Side side, int piece, Square sq) {
    const int type = TypeOf(piece);
    const uint64_t key = PieceKey(side, type, sq);
    pos->hash ^= key;
    pos->pawn_hash ^= key & (0 - static_cast<uint64_t>(type == PAWN));
}

// The key by which positions are told apart: placement, en passant square, rights and side to move.
inline uint64_t GetFullHash(const Position& pos) {
    return pos.hash ^ rtable2[pos.ep_square] ^ rtable2[pos.castling] ^ stmh[pos.stm];
}

}  // namespace vrel
