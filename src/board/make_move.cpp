#include "board/make_move.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

#include "board/keys.h"
#include "board/placement.h"
#include "platform/narrow.h"

namespace vrel {

std::atomic<MoveHook> trace_hook{nullptr};

namespace {

// Castling rights that a move from or to a square loses.
constexpr std::array<uint8_t, 64> csbits = [] {
    std::array<uint8_t, 64> bits{};
    bits[0] = WHITE_LONG;
    bits[4] = WHITE_SHORT | WHITE_LONG;
    bits[7] = WHITE_SHORT;
    bits[56] = BLACK_LONG;
    bits[60] = BLACK_SHORT | BLACK_LONG;
    bits[63] = BLACK_SHORT;
    return bits;
}();

// Game records kept when an overlong game makes room; the rest of the stack is the search's.
constexpr int GAME_RECORDS = 700;
constexpr int RECORDS_DROPPED = 100;

// Where the rook of a castling goes, by the steps of its king.
struct RookStep {
    Square from, to;
};

constexpr RookStep RookOfCastling(Square king_from, Square king_to) {
    return king_to > king_from ? RookStep{king_from + 3, king_from + 1} : RookStep{king_from - 4, king_from - 1};
}

// Side to move, rights, en passant square and counter, which lie side by side.
void* StateOf(Position* pos) { return reinterpret_cast<char*>(pos) + offsetof(Position, stm); }
static_assert(offsetof(Position, fifty) == offsetof(Position, stm) + sizeof(UndoRecord::state) - 1);

// Everything that a move changes and that can't be worked out backwards, but for the pawn key.
[[gnu::always_inline]] inline UndoRecord& PushRecord(Position* pos, Move move, int captured) {
    assert(pos->game_ply >= 0 && pos->game_ply < UNDO_RECORDS && pos->ply + 1 < FRAMES);
    UndoRecord& record = pos->undo[pos->game_ply];
    record.move = move;
    record.captured = Narrow(captured);
    record.special = UNDO_PLAIN;
    std::memcpy(&record.state, StateOf(pos), sizeof record.state);
    record.hash = pos->hash;
    ++pos->game_ply;
    ++pos->ply;
    return record;
}

// What both kinds of move have in common on the way back. The record stays readable until the next move is made.
[[gnu::always_inline]] inline const UndoRecord& PopRecord(Position* pos) {
    assert(pos->game_ply > 0 && pos->ply > 0);
    --pos->game_ply;
    --pos->ply;
    const UndoRecord& record = pos->undo[pos->game_ply];
    pos->last_move = pos->game_ply > 0 ? pos->undo[pos->game_ply - 1].move : NO_MOVE;
    std::memcpy(StateOf(pos), &record.state, sizeof record.state);
    return record;
}

// The victim stands beside the pawn's old square. On a set-up board there may be none: then it is a plain move.
template <int Side>
[[gnu::cold, gnu::noinline]] void TakeEnPassant(Position* pos, Square to, UndoRecord* record) {
    const Square victim = EnPassantVictim(*pos, Side, to);
    if (victim == NO_SQUARE)
        return;
    UpdateHash(pos, Side ^ 1, PAWN, victim);
    RemovePiece(pos, victim);
    record->special = UNDO_EN_PASSANT;
}

// With a full row of the new type the pawn stays a pawn.
template <int Side>
[[gnu::cold, gnu::noinline]] void Promote(Position* pos, Move move, Square to) {
    const int type = PromotedType(move);
    if (CountOf(*pos, Side, type) == MAX_ROW)
        return;
    UpdateHash(pos, Side, PAWN, to);
    RemovePiece(pos, to);
    AddPiece(pos, Side, type, to);
    UpdateHash(pos, Side, type, to);
}

// The rights imply a rook in the corner; on a set-up board it may be missing, and then the king moves alone.
template <int Side>
[[gnu::cold, gnu::noinline]] void CastleRook(Position* pos, Square from, Square to, UndoRecord* record) {
    const RookStep rook = RookOfCastling(from, to);
    if (pos->board[rook.from] != PieceCode(Side, ROOK) || pos->board[rook.to] != 0)
        return;
    UpdateHash(pos, Side, ROOK, rook.from);
    UpdateHash(pos, Side, ROOK, rook.to);
    MovePiece(pos, Side, rook.from, rook.to);
    record->special = UNDO_CASTLED;
}

// What castling changes besides the king. It resets the counter, which the rules of chess would not require.
template <int Side>
void MoveKingTwice(Position* pos, Square from, Square to, UndoRecord* record) {
    pos->fifty = 0;
    if (from == init_king_sq[Side])
        CastleRook<Side>(pos, from, to, record);
}

// What a pawn's move changes besides its square. The square passed over is kept after every double step, whether an
// enemy pawn could capture there or not.
template <int Side>
void MovePawn(Position* pos, Move move, Square from, Square to, Square ep_square, UndoRecord* record) {
    pos->fifty = 0;
    if (from + 2 * pawn_dir[Side] == to)
        pos->ep_square = Narrow(from + pawn_dir[Side]);
    else if (to == ep_square)
        TakeEnPassant<Side>(pos, to, record);
    else if (move & PROMOTION_BITS)
        Promote<Side>(pos, move, to);
}

// The record is written first, from the position as it was; the board follows piece by piece, its keys with it. Side to
// move, rights and en passant square are in no key: GetFullHash folds them in.
template <int Side>
void Make(Position* pos, Move move) {
    const Square to = ToSquare(move);
    const Square from = FromSquare(move);
    const Square ep_square = pos->ep_square;
    const int captured = pos->board[to];
    UndoRecord& record = PushRecord(pos, move, TypeOf(captured));
    record.pawn_hash = pos->pawn_hash;

    pos->last_move = move;
    pos->stm = Side ^ 1;
    pos->castling = Narrow(pos->castling & ~(csbits[from] | csbits[to]));
    pos->ep_square = NO_SQUARE;
    // Long past the limit the counter stays, so that a game of shuffling never looks young again.
    if (pos->fifty < UINT8_MAX)
        ++pos->fifty;

    // What is taken goes before the mover comes, so that no square ever holds two.
    if (captured) {
        UpdateHash(pos, Side ^ 1, captured, to);
        RemovePiece(pos, to);
        pos->fifty = 0;
    }
    const int type = TypeOf(pos->board[from]);
    const uint64_t key = PieceKey(Side, type, from) ^ PieceKey(Side, type, to);
    pos->hash ^= key;
    MovePiece(pos, Side, from, to);

    if (type == PAWN) {
        pos->pawn_hash ^= key;
        MovePawn<Side>(pos, move, from, to, ep_square, &record);
    } else if (type == KING && (to == from + 2 || to == from - 2)) [[unlikely]] {
        MoveKingTwice<Side>(pos, from, to, &record);
    }
}

// Takes back what a move did besides moving one piece and taking another.
template <int Side>
[[gnu::cold, gnu::noinline]] void UnmakeSpecial(Position* pos, const UndoRecord& record, Square from, Square to) {
    if (record.special == UNDO_EN_PASSANT) {
        AddPiece(pos, Side ^ 1, PAWN, to - pawn_dir[Side]);
    } else if (record.special == UNDO_CASTLED) {
        const RookStep rook = RookOfCastling(from, to);
        MovePiece(pos, Side, rook.to, rook.from);
    }
    if (record.move & PROMOTION_BITS) {
        RemovePiece(pos, from);
        AddPiece(pos, Side, PAWN, from);
    }
}

// The reverse, after the record's word on what was really done. A piece that comes back goes to the end of its row.
template <int Side>
void Unmake(Position* pos) {
    const UndoRecord& record = PopRecord(pos);
    const Square to = ToSquare(record.move);
    const Square from = FromSquare(record.move);
    // What stands on the to-square goes back; if it is a promoted piece, it becomes a pawn again at the end.
    MovePiece(pos, Side, to, from);
    if (record.captured)
        AddPiece(pos, Side ^ 1, record.captured, to);
    if (record.special != UNDO_PLAIN || (record.move & PROMOTION_BITS)) [[unlikely]]
        UnmakeSpecial<Side>(pos, record, from, to);
    // The keys come back by copying.
    pos->hash = record.hash;
    pos->pawn_hash = record.pawn_hash;
}

// Tells the tracer, if there is one, of a move before it is made.
void Trace(const Position& pos, Move move) {
    if (const MoveHook hook = trace_hook.load(std::memory_order_relaxed)) [[unlikely]]
        hook(pos, move);
}

// All forms of the board are compared after each step of a build that wants it.
#ifdef VREL_CHECK_BOARD
void CheckBoard(const Position& pos) { assert(PositionIsConsistent(pos)); }
#else
void CheckBoard(const Position&) {}
#endif

}  // namespace

void MakeMove(Position* pos, Move move) {
    assert(MoveCanBeMade(*pos, move));
    Trace(*pos, move);
    if (pos->stm == WHITE)
        Make<WHITE>(pos, move);
    else
        Make<BLACK>(pos, move);
    CheckBoard(*pos);
}

void UnmakeMove(Position* pos) {
    assert(pos->last_move != NO_MOVE);
    if (pos->stm == BLACK)
        Unmake<WHITE>(pos);
    else
        Unmake<BLACK>(pos);
    CheckBoard(*pos);
}

void MakeNullMove(Position* pos) {
    Trace(*pos, NO_MOVE);
    PushRecord(pos, NO_MOVE, NO_PIECE);
    pos->fifty = 0;
    pos->ep_square = NO_SQUARE;
    pos->stm ^= 1;
    pos->last_move = NO_MOVE;
}

void UnmakeNullMove(Position* pos) {
    assert(pos->last_move == NO_MOVE);
    pos->hash = PopRecord(pos).hash;
}

void PlayGameMove(Position* pos, Move move) {
    if (pos->game_ply >= GAME_RECORDS) {
        std::copy(pos->undo + RECORDS_DROPPED, pos->undo + UNDO_RECORDS, pos->undo);
        pos->game_ply = Narrow(pos->game_ply - RECORDS_DROPPED);
    }
    // Moves that were taken back stay ahead for as long as the game follows them.
    const bool known = pos->undo[pos->game_ply].move == move;
    pos->ply = 1;
    MakeMove(pos, move);
    pos->ply = 1;
    if (!known)
        pos->undo[pos->game_ply].move = NO_MOVE;
}

void TakeBackGameMove(Position* pos) {
    UnmakeMove(pos);
    pos->ply = 1;
}

int CountRepetitions(const Position& pos) {
    const int oldest = std::max(pos.game_ply - pos.fifty, 0);
    int count = 0;
    for (int i = pos.game_ply - 4; i >= oldest; i -= 2)
        count += pos.undo[i].hash == pos.hash;
    return count;
}

}  // namespace vrel
