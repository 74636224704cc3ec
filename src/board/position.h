#pragma once

#include <array>
#include <cassert>
#include <cstdint>

#include "board/bitboards.h"

// The board record, the values that describe a move, and the records of a ply. Data and trivial inlines only.
namespace vrel {

// What an int stands for in a signature, as Square and Side do.
using Ply = int;    // index into the frames of a line; the root is 1
using Depth = int;  // plies left to search

enum PieceType : int { NO_PIECE = 0, PAWN = 1, KNIGHT = 2, BISHOP = 3, ROOK = 4, QUEEN = 5, KING = 6 };
enum CastlingRight : int { WHITE_SHORT = 1, WHITE_LONG = 2, BLACK_SHORT = 4, BLACK_LONG = 8 };

// By side: the step of a pawn, what turns a square upside down for black, the king's square at the start.
inline constexpr std::array<int, 2> pawn_dir = {8, -8};
inline constexpr std::array<int, 2> flip_sq = {0, 56};
inline constexpr std::array<Square, 2> init_king_sq = {4, 60};

// A piece code is side * 8 + type, 0 for an empty square.
constexpr int PieceCode(Side side, int type) { return side * 8 + type; }
constexpr int TypeOf(int code) { return code & 7; }
constexpr Side SideOf(int code) { return (code >> 3) & 1; }

// Rank index counted from the side's own back rank, and the names of two ranks counted so.
inline constexpr int SIXTH_RANK = 5;
inline constexpr int SEVENTH_RANK = 6;
constexpr int RelativeRank(Side side, Square sq) { return (sq ^ flip_sq[side]) >> 3; }

// Where a pawn of the side on that file promotes.
constexpr Square PromotionSquare(Side side, int file) { return (56 + file) ^ flip_sq[side]; }

// A move: to-square in bits 0-5, from-square in bits 8-13, at most one promotion bit. 0 is no move (and a null move).
using Move = uint16_t;

inline constexpr Move NO_MOVE = 0;
inline constexpr Move END_OF_LIST = 0xffff;
inline constexpr Move PROMOTE_QUEEN = 0x0040;
inline constexpr Move PROMOTE_KNIGHT = 0x0080;
inline constexpr Move PROMOTE_BISHOP = 0x4000;
inline constexpr Move PROMOTE_ROOK = 0x8000;
inline constexpr Move PROMOTION_BITS = 0xc0c0;

constexpr Square ToSquare(Move move) { return move & 0x3f; }
constexpr Square FromSquare(Move move) { return (move >> 8) & 0x3f; }
constexpr Move MakeMoveValue(Square from, Square to) { return static_cast<Move>((from << 8) + to); }

// Type that a move with a promotion bit puts on the board.
constexpr int PromotedType(Move move) {
    return (move & PROMOTE_KNIGHT) ? KNIGHT : (move & PROMOTE_BISHOP) ? BISHOP : (move & PROMOTE_ROOK) ? ROOK : QUEEN;
}

// One element of a move list. The generators write the first three fields and leave the other two as they are.
struct alignas(8) MoveEntry {
    Move move;
    uint8_t piece;       // code of the mover
    uint8_t captured;    // code on the to-square: 0 for quiet moves and for en passant
    uint8_t sort_value;  // ordering score
    uint8_t flags;       // filled by the search
};

// Written by MakeMove so that UnmakeMove takes back exactly what was done, whatever position the move was made in.
enum UndoSpecial : uint8_t { UNDO_PLAIN = 0, UNDO_EN_PASSANT = 1, UNDO_CASTLED = 2 };

// Type of the piece that stands on the to-square after the move.
constexpr int TypeAfterMove(const MoveEntry& entry) {
    return (entry.move & PROMOTION_BITS) ? PromotedType(entry.move) : TypeOf(entry.piece);
}

// What MakeMove saves and UnmakeMove restores.
struct UndoRecord {
    Move move;            // 0 for a null move
    uint8_t captured;     // type taken from the to-square; 0 for en passant
    UndoSpecial special;  // what else the move did
    uint32_t state;       // before the move, as are the keys: see StateOf
    uint64_t hash;
    uint64_t pawn_hash;  // not written for a null move
};

// Whether the move in work leaves the opponent in check, as far as its node has found out.
enum GivesCheck : uint8_t { CHECK_NO = 0, CHECK_YES = 1, CHECK_UNKNOWN = 2 };

// No score yet; also the evaluation of a node in check.
inline constexpr int NO_SCORE = -10000;

// What each ply of a line keeps; the root is ply 1.
struct PlyFrame {
    MoveEntry* first;                      // start of this ply's list in the move stack
    MoveEntry* current;                    // entry in work; the child looks at it to see what led to it
    int16_t depth;                         // depth given to the node
    int16_t eval;                          // static evaluation for the side to move; NO_SCORE in check
    int16_t alpha;                         // lower bound on entry, after the mate-distance clip
    std::array<int16_t, 2> hung_value;     // by owning side, centipawns
    std::array<int8_t, 2> free_pawn_rank;  // by side: highest relative rank of a passed pawn with a free path
    uint8_t eval_draw;                     // 1: a draw by material
    int8_t ext;                            // 1 if this node earned the accumulated extension
    uint8_t reduction;                     // reduction of the move in work; the child reads its parent's
    uint8_t node_type;                     // a NodeType
    uint8_t iid;                           // 1 during internal deepening at this node
    GivesCheck gives_check;                // what is known of the move in work; the child reads it
    Move hash_move;
    Move null_killer, killer1, killer2, check_killer;
    uint16_t stage;  // a PickerStage
};

// Rows of plist: at most this many squares, then the terminator. A four-bit count of the material signature holds the
// same number. A piece beyond it is not placed, so that all forms of the board agree.
inline constexpr int MAX_ROW = 15;

inline constexpr int UNDO_RECORDS = 800;
inline constexpr int FRAMES = 70;

// The board, in three forms that always agree: a code per square, a list of squares per side and type, a bitboard per
// side and type. Sums and keys go with them. A Position is part of a SearchThread and points to that thread's stacks.
struct Position {
    std::array<uint8_t, 72> board;  // board[64] and behind stay 0: "no square" reads as an empty square
    std::array<std::array<std::array<uint8_t, MAX_ROW + 1>, 8>, 2> plist;  // closed by NO_SQUARE
    std::array<std::array<uint64_t, 8>, 2> bb;                             // [side][0] holds all pieces of the side
    std::array<uint32_t, 2> msig;  // four-bit counts: pawns lowest, then knights, bishops, rooks, queens
    std::array<int16_t, 2> npv;    // non-pawn material: knight and bishop 3, rook 5, queen 10
    uint64_t hash;                 // placement only; see GetFullHash
    uint64_t pawn_hash;
    uint8_t stm;        // these four fields are saved and brought back as one word
    uint8_t castling;   // rights
    uint8_t ep_square;  // passed over by the last move's double step, else NO_SQUARE
    uint8_t fifty;      // plies since the last reset
    Move last_move;     // 0 if none or after a null move
    int16_t game_ply;   // undo records in use
    int16_t ply;        // index into frames
    UndoRecord* undo;
    PlyFrame* frames;
    uint8_t thread_index;
};

// Per piece type: place in the material signature, units of non-pawn material.
inline constexpr std::array<uint32_t, 8> msig_unit = {0, 0x1, 0x10, 0x100, 0x1000, 0x10000, 0, 0};
inline constexpr std::array<int16_t, 8> npv_unit = {0, 0, 3, 3, 5, 10, 0, 0};

// The signature of a side that has just the pieces named, one for each name.
template <typename... Types>
constexpr uint32_t Signature(Types... types) {
    return (0U + ... + msig_unit[types]);
}

// The part of a signature that counts the types named.
template <typename... Types>
constexpr uint32_t SignatureMask(Types... types) {
    return (0U | ... | (0xf * msig_unit[types]));
}

inline constexpr uint32_t MSIG_PAWNS = SignatureMask(PAWN);
inline constexpr uint32_t MSIG_SLIDERS = SignatureMask(BISHOP, ROOK, QUEEN);

inline uint64_t Occupied(const Position& pos) { return pos.bb[WHITE][0] | pos.bb[BLACK][0]; }

// Pieces of a side that move along diagonals, and along ranks and files.
inline uint64_t BishopsAndQueens(const Position& pos, Side side) { return pos.bb[side][BISHOP] | pos.bb[side][QUEEN]; }
inline uint64_t RooksAndQueens(const Position& pos, Side side) { return pos.bb[side][ROOK] | pos.bb[side][QUEEN]; }

// Square of the enemy pawn that an en passant capture to `to` takes. NO_SQUARE if there is none: a position that has
// been set up may tell of a double step that can't have been made.
inline Square EnPassantVictim(const Position& pos, Side side, Square to) {
    const Square victim = to - pawn_dir[side];
    return RelativeRank(side, to) == SIXTH_RANK && pos.board[victim] == PieceCode(side ^ 1, PAWN) ? victim : NO_SQUARE;
}

// Square of the side's king, NO_SQUARE if it has none.
inline Square KingSquare(const Position& pos, Side side) { return pos.plist[side][KING][0]; }

// Number of pieces of a type from pawn to queen.
inline int CountOf(const Position& pos, Side side, int type) {
    assert(type >= PAWN && type <= QUEEN);
    return static_cast<int>(pos.msig[side] >> (4 * (type - 1)) & 0xf);
}

// Empties the board: white's and black's rights all set, no en passant square, no past. Side to move and keys stay.
void ClearBoard(Position* pos);

// True if the three forms of the board and the sums agree; the keys aren't looked at, as they may stand for key
// tables that have been drawn anew since. For debug builds and tests.
bool PositionIsConsistent(const Position& pos);

}  // namespace vrel
