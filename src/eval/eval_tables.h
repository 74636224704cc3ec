#pragma once

#include <array>
#include <cstdint>

#include "board/eval_records.h"

// Tables that InitEval derives from Personality. Written between searches, read by all threads. All values are
// centipawns.
namespace vrel {

// Material by count; every type has room for the fifteen pieces that a side can have of it.
extern std::array<int16_t, 16> MtlPawnOp, MtlPawnEn;
extern std::array<int16_t, 16> MtlKnightOp, MtlKnightEn, MtlBishopOp, MtlBishopEn;
extern std::array<int16_t, 16> MtlRookOp, MtlRookEn, MtlQueenOp, MtlQueenEn;

// By square as white sees it; for black the square is flipped first.
extern std::array<int16_t, 64> PawnOpening, PawnEnding, KnightOpening, KnightEnding, BishopOpening, BishopEnding;
extern std::array<int16_t, 64> RookOpening, RookEnding, QueenOpening, QueenEnding;
extern std::array<int16_t, 65> KingOpening, KingEnding;  // a missing king scores 0

extern std::array<int16_t, 8> PP_ADVANCE;                                     // passed pawn by relative rank
extern std::array<int16_t, 16> KnightMobility, BishopMobility, RookMobility;  // by squares in the mobility area
extern std::array<int16_t, 32> QueenMobility;
extern std::array<int16_t, 32> KingDanger;  // by the danger index of a king, see KingSafety

// Material of two types at once, by a byte of the material signature: pawns and knights, bishops and rooks, queens.
struct MaterialShare {
    ScorePair value;
    int force;  // knights and bishops 1, rooks 2, queens 4
};
extern std::array<std::array<MaterialShare, 256>, 3> MaterialShares;

// The other values as pairs, laid out for the terms: piece-square values by side, type and real square, mobility by
// type and count.
extern std::array<std::array<std::array<ScorePair, 64>, 7>, 2> SquarePairs;
extern std::array<std::array<ScorePair, 32>, 6> MobilityPairs;

// Tells one set of weights from another, 0 for the defaults. It goes into the keys of both evaluation caches, so that
// an evaluation is found again only by the weights that it was computed with.
extern uint64_t weights_signature;

// Rebuilds every table above, leftbit and rightbit, and the signature from Personality. Clears no cache.
void InitEval();

}  // namespace vrel
