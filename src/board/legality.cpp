#include "board/legality.h"

#include "board/attacks.h"

namespace vrel {

namespace {

// Castling: the king may neither stand on, cross nor reach an attacked square.
bool CastlingIsLegal(const Position& pos, int side, int from, int to) {
    return !SqAtakd(pos, from, side ^ 1) && !SqAtakd(pos, to, side ^ 1) && !SqAtakd(pos, (from + to) >> 1, side ^ 1);
}

int TypeAfterMove(const MoveEntry& entry) {
    return (entry.move & PROMOTION_BITS) ? PromotedType(entry.move) : TypeOf(entry.piece);
}

bool GivesDirectCheck(int type, int side, int to, int ksq, uint64_t occ) {
    switch (type) {
        case PAWN:
            return (BB_PawnRays[side][to] >> ksq) & 1;
        case KNIGHT:
            return (BB_KnightRays[to] >> ksq) & 1;
        case BISHOP:
            return ((BB_BishopRays[to] >> ksq) & 1) && (BB_Between(to, ksq) & occ) == 0;
        case ROOK:
            return ((BB_RookRays[to] >> ksq) & 1) && (BB_Between(to, ksq) & occ) == 0;
        case QUEEN:
            return (((BB_BishopRays[to] | BB_RookRays[to]) >> ksq) & 1) && (BB_Between(to, ksq) & occ) == 0;
        default:
            return false;
    }
}

}  // namespace

bool MoveIsLegal(const Position& pos, int side, Move move) {
    if (move == NO_MOVE)
        return false;
    const int from = FromSquare(move);
    const int to = ToSquare(move);
    const int king = KingSquare(pos, side);
    int target = king;
    if (from == king) {
        const int files = FileOf(to) - FileOf(from);
        if (files == 2 || files == -2)
            return CastlingIsLegal(pos, side, from, to);
        target = to;
    }
    // The board as it would be, the mover's own type sets apart, which nobody asks.
    const auto& enemy = pos.bb[side ^ 1];
    uint64_t removed = 0;
    if (pos.board[to])
        removed = Bit(to);
    else if (to == pos.ep_square && pos.board[from] == PieceCode(side, PAWN) && RelativeRank(side, to) == 5)
        removed = Bit(to - pawn_dir[side]) & enemy[PAWN];
    const uint64_t stays = ~removed;
    const uint64_t occ = (pos.bb[side][0] ^ (Bit(from) | Bit(to))) | (enemy[0] & stays);
    if (((BB_PawnRays[side][target] & enemy[PAWN]) | (BB_KnightRays[target] & enemy[KNIGHT]) |
         (BB_KingRays[target] & enemy[KING])) &
        stays)
        return false;
    return !AnySees(BB_BishopRays[target] & (enemy[BISHOP] | enemy[QUEEN]) & stays, target, occ) &&
           !AnySees(BB_RookRays[target] & (enemy[ROOK] | enemy[QUEEN]) & stays, target, occ);
}

LegalityContext MakeLegalityContext(const Position& pos, int side, bool in_check) {
    const auto& own = pos.bb[side];
    if (!in_check)
        return {PinnedToKing(pos, side) | own[KING], ~0ULL};
    const auto& enemy = pos.bb[side ^ 1];
    const int king = KingSquare(pos, side);
    const uint64_t occ = Occupied(pos);
    uint64_t tested = own[KING];
    uint64_t checkers = (BB_PawnRays[side][king] & enemy[PAWN]) | (BB_KnightRays[king] & enemy[KNIGHT]) |
                        (BB_KingRays[king] & enemy[KING]);
    uint64_t line = 0;
    uint64_t sliders =
        (BB_BishopRays[king] & (enemy[BISHOP] | enemy[QUEEN])) | (BB_RookRays[king] & (enemy[ROOK] | enemy[QUEEN]));
    while (sliders) {
        const int sq = PopLSB(&sliders);
        const uint64_t squares = BB_Between(sq, king);
        const uint64_t between = squares & occ;
        if (between == 0) {
            checkers |= Bit(sq);
            line = squares;
        } else if ((between & (between - 1)) == 0) {
            tested |= between;
        }
    }
    // A promotion that can't be carried out, its row being full, is taken for a check that isn't one.
    if (checkers == 0) [[unlikely]]
        return {tested, ~0ULL};
    // No move but the king's answers two checks.
    return {tested, (checkers & (checkers - 1)) ? 0 : checkers | line};
}

CheckContext MakeCheckContext(const Position& pos, int side) {
    const auto& own = pos.bb[side];
    const int ksq = KingSquare(pos, side ^ 1);
    const uint64_t occ = Occupied(pos);
    const uint64_t diagonal = GenAttacksB(ksq, occ);
    const uint64_t straight = GenAttacksR(ksq, occ);
    const uint64_t discoverers =
        LoneBlockers(ksq,
                     (BB_BishopRays[ksq] & (own[BISHOP] | own[QUEEN])) | (BB_RookRays[ksq] & (own[ROOK] | own[QUEEN])),
                     occ) &
        own[0];
    return {{0, BB_PawnRays[side ^ 1][ksq], BB_KnightRays[ksq], diagonal, straight, diagonal | straight, 0, 0},
            discoverers};
}

int MoveGivesCheck(const Position& pos, int side, const MoveEntry& entry) {
    const int ksq = KingSquare(pos, side ^ 1);
    if (ksq == NO_SQUARE)
        return 0;
    const int from = FromSquare(entry.move);
    const int to = ToSquare(entry.move);
    const uint64_t occ = Occupied(pos);
    if (GivesDirectCheck(TypeAfterMove(entry), side, to, ksq, occ))
        return 1;
    if ((pos.msig[side] & MSIG_SLIDERS) == 0)
        return 0;
    // A slider behind the mover sees the king once the mover has left, unless it stays on the line.
    const auto& own = pos.bb[side];
    const uint64_t occ_after = (occ & ~Bit(from)) | Bit(to);
    if ((BB_RookRays[ksq] & Bit(from)) &&
        AnySees((own[ROOK] | own[QUEEN]) & BB_RookRays[ksq] & BB_RookRays[from], ksq, occ_after))
        return 2;
    if ((BB_BishopRays[ksq] & Bit(from)) &&
        AnySees((own[BISHOP] | own[QUEEN]) & BB_BishopRays[ksq] & BB_BishopRays[from], ksq, occ_after))
        return 2;
    return 0;
}

}  // namespace vrel
