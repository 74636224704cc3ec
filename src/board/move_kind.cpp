#include "board/move_kind.h"

#include <array>
#include <cassert>

#include "board/attacks.h"
#include "board/exchange.h"

namespace vrel {

namespace {

// By type, for an exchange test that needs no exchange: a mover worth no more than its victim is safe. A king counts 0.
constexpr std::array<int8_t, 8> rough_value = {0, 1, 3, 3, 5, 10, 0, 0};
constexpr int SAFE_LOSS = -89;  // centipawns: less than a pawn

// True if another piece of the side than the slider on `mover` attacks `sq`, lines seen through the slider's square.
bool AttackedByOthers(const Position& pos, Square sq, Side side, Square mover) {
    const uint64_t others = ~Bit(mover);
    const uint64_t occ = Occupied(pos) & others;
    return SteppersAt(pos, side, sq) || (GenAttacksB(sq, occ) & BishopsAndQueens(pos, side) & others) ||
           (GenAttacksR(sq, occ) & RooksAndQueens(pos, side) & others);
}

// The squares of `area` that a slider reaches from `to` and didn't reach from `from`, along one kind of line; friends
// of the same kind are seen through. True if one of them is attacked otherwise as well.
template <uint64_t (*Attacks)(Square, uint64_t)>
bool AddsAttack(const Position& pos, Side side, Square from, Square to, uint64_t area, const SquareTable& rays,
                uint64_t friends) {
    uint64_t targets = area & rays[to] & ~(rays[from] | Bit(from));
    if (targets)
        targets &= Attacks(to, Occupied(pos) & ~friends);
    while (targets)
        if (AttackedByOthers(pos, PopLSB(&targets), side, from))
            return true;
    return false;
}

}  // namespace

bool MoveIsPawnPush(const Position& pos, Side side, const MoveEntry& entry) {
    if (TypeOf(entry.piece) != PAWN)
        return false;
    const Square to = ToSquare(entry.move);
    const int rank = RelativeRank(side, to);
    if (rank >= SEVENTH_RANK)
        return true;
    return rank >= 4 && (BB_PawnSpan[side][to] & pos.bb[side ^ 1][PAWN]) == 0;
}

bool MoveIsThreat(const Position& pos, const MoveEntry& entry) {
    const Side side = pos.stm;
    const auto& enemy = pos.bb[side ^ 1];
    const Square from = FromSquare(entry.move);
    const Square to = ToSquare(entry.move);
    // The squares around the enemy king, none if it has gone.
    const uint64_t area = BB_KingRays[KingSquare(pos, side ^ 1)];
    switch (TypeOf(entry.piece)) {
        case PAWN:
            return (BB_PawnRays[side][to] & (area | enemy[KNIGHT] | enemy[BISHOP] | enemy[ROOK] | enemy[QUEEN])) != 0;
        case KNIGHT:
            return (BB_KnightRays[to] & (area | RooksAndQueens(pos, side ^ 1))) != 0;
        // A slider threatens what it didn't see before, or helps another piece against the king.
        case BISHOP:
            return (GenAttacksB(to, Occupied(pos)) & RooksAndQueens(pos, side ^ 1) & ~BB_BishopRays[from]) ||
                   MoveAttacksKingArea(pos, BISHOP, from, to, area);
        case ROOK:
            return (GenAttacksR(to, Occupied(pos)) & enemy[QUEEN] & ~BB_RookRays[from]) ||
                   MoveAttacksKingArea(pos, ROOK, from, to, area);
        case QUEEN:
            return MoveAttacksKingArea(pos, QUEEN, from, to, area);
        default:
            return false;
    }
}

bool MoveAttacksKingArea(const Position& pos, int type, Square from, Square to, uint64_t area) {
    assert(type >= BISHOP && type <= QUEEN);
    const Side side = pos.stm;
    // A queen is asked along both kinds of line.
    return (type != BISHOP &&
            AddsAttack<GenAttacksR>(pos, side, from, to, area, BB_RookRays, RooksAndQueens(pos, side))) ||
           (type != ROOK &&
            AddsAttack<GenAttacksB>(pos, side, from, to, area, BB_BishopRays, BishopsAndQueens(pos, side)));
}

bool MoveIsSafe(const Position& pos, const MoveEntry& entry) {
    const Square from = FromSquare(entry.move);
    const Square to = ToSquare(entry.move);
    return rough_value[TypeOf(entry.piece)] <= rough_value[TypeOf(pos.board[to])] ||
           ExchangeReaches(pos, pos.stm, from, to, SAFE_LOSS);
}

}  // namespace vrel
