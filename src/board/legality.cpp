#include "board/legality.h"

#include <cassert>

#include "board/attacks.h"

namespace vrel {

namespace {

// Castling: the king may neither stand on, cross nor reach an attacked square. The rook's way may be attacked.
bool CastlingIsLegal(const Position& pos, Side side, Square from, Square to) {
    return !SqAtakd(pos, from, side ^ 1) && !SqAtakd(pos, to, side ^ 1) && !SqAtakd(pos, (from + to) >> 1, side ^ 1);
}

// The set of one square, or of none.
uint64_t BitIfAny(Square sq) { return sq == NO_SQUARE ? 0 : Bit(sq); }

// True if a piece of `type` of the side attacks the enemy king from `to`, which kings never do.
bool GivesDirectCheck(int type, Side side, Square to, Square ksq, uint64_t occ) {
    const bool diagonal = (BB_BishopRays[to] >> ksq) & 1;
    const bool straight = (BB_RookRays[to] >> ksq) & 1;
    switch (type) {
        case PAWN:
            return (BB_PawnRays[side][to] >> ksq) & 1;
        case KNIGHT:
            return (BB_KnightRays[to] >> ksq) & 1;
        case BISHOP:
            return diagonal && (BB_Between(to, ksq) & occ) == 0;
        case ROOK:
            return straight && (BB_Between(to, ksq) & occ) == 0;
        case QUEEN:
            return (diagonal || straight) && (BB_Between(to, ksq) & occ) == 0;
        default:
            return false;
    }
}

}  // namespace

bool KingsAreInOrder(const Position& pos) {
    return CountBits(pos.bb[WHITE][KING]) == 1 && CountBits(pos.bb[BLACK][KING]) == 1 &&
           !SqAtakd(pos, KingSquare(pos, pos.stm ^ 1), pos.stm);
}

bool MoveIsLegal(const Position& pos, Side side, Move move) {
    if (move == NO_MOVE)
        return false;
    const Square from = FromSquare(move);
    const Square to = ToSquare(move);
    assert(pos.bb[side][0] & Bit(from));
    // The king must be safe where it will be. A king that goes two files castles.
    Square king = KingSquare(pos, side);
    if (from == king) {
        const int files = FileOf(to) - FileOf(from);
        if (files == 2 || files == -2)
            return CastlingIsLegal(pos, side, from, to);
        king = to;
    }
    // The board as it would be: the mover on its new square, what it takes gone. Its own type set stays as it is, since
    // nobody asks which of its own pieces attack.
    uint64_t taken = 0;
    if (pos.board[to])
        taken = Bit(to);
    else if (to == pos.ep_square && pos.board[from] == PieceCode(side, PAWN))
        taken = BitIfAny(EnPassantVictim(pos, side, to));
    const uint64_t occ = (pos.bb[side][0] ^ (Bit(from) | Bit(to))) | (pos.bb[side ^ 1][0] & ~taken);
    // Whoever is taken attacks no more; whoever stands behind the mover's old square, or behind the king's, does.
    return (SteppersAt(pos, side ^ 1, king) & ~taken) == 0 &&
           !AnySees(SlidersTowards(pos, side ^ 1, king) & ~taken, king, occ);
}

LegalityContext MakeLegalityContext(const Position& pos, Side side, bool in_check) {
    const uint64_t own_king = pos.bb[side][KING];
    const Square king = KingSquare(pos, side);
    // Not in check, a piece that isn't pinned may go wherever it can.
    if (!in_check)
        return {PinnedToKing(pos, side) | own_king, ALL_SQUARES};
    const uint64_t occ = Occupied(pos);
    // In check, pins still hold, and besides the move has to deal with the checker.
    uint64_t tested = own_king;
    uint64_t checkers = SteppersAt(pos, side ^ 1, king);
    // The squares on which a slider's check can be blocked. Of two such checks only one is kept, but then none matters.
    uint64_t line = 0;
    for (uint64_t sliders = SlidersTowards(pos, side ^ 1, king); sliders;) {
        const Square sq = PopLSB(&sliders);
        const uint64_t squares = BB_Between(sq, king);
        const uint64_t between = squares & occ;
        if (between == 0) {
            checkers |= Bit(sq);
            line = squares;
        } else if (AtMostOne(between)) {
            tested |= between;
        }
    }
    if (checkers == 0) [[unlikely]]
        return {tested, ALL_SQUARES};
    // No move but the king's answers two checks.
    return {tested, AtMostOne(checkers) ? checkers | line : 0};
}

CheckContext MakeCheckContext(const Position& pos, Side side) {
    const Square ksq = KingSquare(pos, side ^ 1);
    const uint64_t occ = Occupied(pos);
    // Seen from the king: a piece checks from where its like on the king's square would attack.
    const uint64_t diagonal = GenAttacksB(ksq, occ);
    const uint64_t straight = GenAttacksR(ksq, occ);
    // Own pieces alone; an enemy's may go as well, but not by a move of ours.
    const uint64_t discoverers = LoneBlockers(SlidersTowards(pos, side, ksq), ksq, occ) & pos.bb[side][0];
    return {{0, BB_PawnRays[side ^ 1][ksq], BB_KnightRays[ksq], diagonal, straight, diagonal | straight, 0, 0},
            discoverers};
}

CheckKind MoveGivesCheck(const Position& pos, Side side, const MoveEntry& entry) {
    const Square ksq = KingSquare(pos, side ^ 1);
    if (ksq == NO_SQUARE)
        return NO_CHECK;
    const Square from = FromSquare(entry.move);
    const Square to = ToSquare(entry.move);
    assert(entry.piece == pos.board[from]);
    const uint64_t occ = Occupied(pos);
    if (GivesDirectCheck(TypeAfterMove(entry), side, to, ksq, occ))
        return DIRECT_CHECK;
    // Without sliders nothing can be discovered.
    if ((pos.msig[side] & MSIG_SLIDERS) == 0)
        return NO_CHECK;
    // A slider behind the mover sees the king once the mover has left, unless it stays on the line.
    const uint64_t occ_after = (occ & ~Bit(from)) | Bit(to);
    if ((BB_RookRays[ksq] & Bit(from)) &&
        AnySees(RooksAndQueens(pos, side) & BB_RookRays[ksq] & BB_RookRays[from], ksq, occ_after))
        return DISCOVERED_CHECK;
    if ((BB_BishopRays[ksq] & Bit(from)) &&
        AnySees(BishopsAndQueens(pos, side) & BB_BishopRays[ksq] & BB_BishopRays[from], ksq, occ_after))
        return DISCOVERED_CHECK;
    return NO_CHECK;
}

}  // namespace vrel
