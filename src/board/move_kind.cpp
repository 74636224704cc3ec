#include "board/move_kind.h"

#include <array>

#include "board/attacks.h"
#include "board/exchange.h"

namespace vrel {

namespace {

// Exchange test that needs no exchange: a mover worth no more than its victim is safe. A king counts 0.
constexpr std::array<int8_t, 8> rough_value = {0, 1, 3, 3, 5, 10, 0, 0};
constexpr int SAFE_LOSS = -89;

// A piece of `prey` newly in line with the mover, which sees it from `to`.
bool SeesNewPrey(uint64_t prey, const SquareTable& rays, int from, int to, uint64_t occ) {
    prey &= rays[to] & ~rays[from];
    return AnySees(prey, to, occ);
}

// True if another piece than the one on `mover` attacks `sq`, lines seen through its square.
bool AttackedByOthers(const Position& pos, int sq, int side, int mover) {
    const auto& bb = pos.bb[side];
    if ((BB_PawnRays[side ^ 1][sq] & bb[PAWN]) | (BB_KnightRays[sq] & bb[KNIGHT]) | (BB_KingRays[sq] & bb[KING]))
        return true;
    const uint64_t others = ~Bit(mover);
    const uint64_t occ = Occupied(pos) & others;
    return AnySees(BB_BishopRays[sq] & (bb[BISHOP] | bb[QUEEN]) & others, sq, occ) ||
           AnySees(BB_RookRays[sq] & (bb[ROOK] | bb[QUEEN]) & others, sq, occ);
}

// The squares of `area` that a slider reaches from `to` and didn't reach from `from`, along one kind of line; friends
// of the same kind are seen through. True if one of them is attacked otherwise as well.
bool AddsAttack(const Position& pos, int side, int from, int to, uint64_t area, const SquareTable& rays,
                uint64_t friends) {
    const uint64_t blockers = Occupied(pos) & ~friends;
    uint64_t targets = area & rays[to] & ~(rays[from] | Bit(from));
    while (targets) {
        const int target = PopLSB(&targets);
        if ((BB_Between(to, target) & blockers) == 0 && AttackedByOthers(pos, target, side, from))
            return true;
    }
    return false;
}

}  // namespace

bool MoveIsPawnPush(const Position& pos, int side, const MoveEntry& entry) {
    if (TypeOf(entry.piece) != PAWN)
        return false;
    const int to = ToSquare(entry.move);
    const int rank = RelativeRank(side, to);
    if (rank >= 6)
        return true;
    return rank >= 4 && (BB_PawnSpan[side][to] & pos.bb[side ^ 1][PAWN]) == 0;
}

bool MoveIsThreat(const Position& pos, const MoveEntry& entry) {
    const int side = pos.stm;
    const auto& enemy = pos.bb[side ^ 1];
    const int from = FromSquare(entry.move);
    const int to = ToSquare(entry.move);
    const uint64_t area = BB_KingRays[KingSquare(pos, side ^ 1)];
    switch (TypeOf(entry.piece)) {
        case PAWN:
            return (BB_PawnRays[side][to] & (area | enemy[KNIGHT] | enemy[BISHOP] | enemy[ROOK] | enemy[QUEEN])) != 0;
        case KNIGHT:
            return (BB_KnightRays[to] & (area | enemy[ROOK] | enemy[QUEEN])) != 0;
        case BISHOP:
            return SeesNewPrey(enemy[ROOK] | enemy[QUEEN], BB_BishopRays, from, to, Occupied(pos)) ||
                   MoveAttacksKingArea(pos, BISHOP, from, to, area);
        case ROOK:
            return SeesNewPrey(enemy[QUEEN], BB_RookRays, from, to, Occupied(pos)) ||
                   MoveAttacksKingArea(pos, ROOK, from, to, area);
        case QUEEN:
            return MoveAttacksKingArea(pos, QUEEN, from, to, area);
        default:
            return false;
    }
}

bool MoveAttacksKingArea(const Position& pos, int type, int from, int to, uint64_t area) {
    const int side = pos.stm;
    const auto& own = pos.bb[side];
    return (type != BISHOP && AddsAttack(pos, side, from, to, area, BB_RookRays, own[ROOK] | own[QUEEN])) ||
           (type != ROOK && AddsAttack(pos, side, from, to, area, BB_BishopRays, own[BISHOP] | own[QUEEN]));
}

bool MoveIsSafe(const Position& pos, const MoveEntry& entry) {
    const int from = FromSquare(entry.move);
    const int to = ToSquare(entry.move);
    const int mover = TypeOf(entry.piece);
    const int victim = TypeOf(pos.board[to]);
    return rough_value[mover] <= rough_value[victim] || ExchangeReaches(pos, pos.stm, from, to, SAFE_LOSS);
}

}  // namespace vrel
