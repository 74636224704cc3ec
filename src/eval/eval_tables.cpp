#include "eval/eval_tables.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "board/bitboards.h"
#include "board/position.h"
#include "board/search_thread.h"
#include "eval/personality.h"
#include "platform/narrow.h"

namespace vrel {

std::array<int16_t, 16> MtlPawnOp, MtlPawnEn;
std::array<int16_t, 16> MtlKnightOp, MtlKnightEn, MtlBishopOp, MtlBishopEn;
std::array<int16_t, 16> MtlRookOp, MtlRookEn, MtlQueenOp, MtlQueenEn;
std::array<int16_t, 64> PawnOpening, PawnEnding, KnightOpening, KnightEnding, BishopOpening, BishopEnding;
std::array<int16_t, 64> RookOpening, RookEnding, QueenOpening, QueenEnding;
std::array<int16_t, 65> KingOpening, KingEnding;
std::array<int16_t, 8> PP_ADVANCE;
std::array<int16_t, 16> KnightMobility, BishopMobility, RookMobility;
std::array<int16_t, 32> QueenMobility;
std::array<int16_t, 32> KingDanger;
std::array<std::array<MaterialShare, 256>, 3> MaterialShares;
std::array<std::array<std::array<ScorePair, 64>, 7>, 2> SquarePairs;
std::array<std::array<ScorePair, 32>, 6> MobilityPairs;
uint64_t weights_signature = 0;

namespace {

// To the nearest integer, halves away from zero.
Narrow Nearest(double value) { return Narrow(static_cast<int>(std::round(value))); }

// Products of counts and weights.
void InitMaterial() {
    const PersonalityRecord& p = Personality;
    for (int i = 0; i < 16; ++i) {
        // Two bishops complement each other; major pieces get in each other's way when the board empties.
        const int pair = i >= 2 ? p.bishop_pair : 0;
        const int spare_rook = i >= 2 ? 20 : 0;
        const int spare_queen = i >= 2 ? 40 : 0;
        MtlPawnOp[i] = Narrow(i * p.pawn_value_op);
        MtlPawnEn[i] = Narrow(i * p.pawn_value_en);
        MtlKnightOp[i] = Narrow(i * p.knight_value_op);
        MtlKnightEn[i] = Narrow(i * p.knight_value_en);
        MtlBishopOp[i] = Narrow(i * p.bishop_value_op + pair);
        MtlBishopEn[i] = Narrow(i * p.bishop_value_en + pair);
        MtlRookOp[i] = Narrow(i * p.rook_value_op);
        MtlRookEn[i] = Narrow(i * p.rook_value_en - spare_rook);
        MtlQueenOp[i] = Narrow(i * p.queen_value_op);
        MtlQueenEn[i] = Narrow(i * p.queen_value_en - spare_queen);
    }
    for (int counts = 0; counts < 256; ++counts) {
        // The lower type first, as in the signature.
        const int a = counts & 0xf;
        const int b = counts >> 4;
        MaterialShares[0][counts] = {MakePair(MtlPawnOp[a], MtlPawnEn[a]) + MakePair(MtlKnightOp[b], MtlKnightEn[b]),
                                     b};
        MaterialShares[1][counts] = {MakePair(MtlBishopOp[a], MtlBishopEn[a]) + MakePair(MtlRookOp[b], MtlRookEn[b]),
                                     a + 2 * b};
        MaterialShares[2][counts] = {MakePair(MtlQueenOp[a], MtlQueenEn[a]), 4 * a};
    }
}
static_assert(msig_unit[PAWN] == 1 && msig_unit[KNIGHT] == 1 << 4 && msig_unit[BISHOP] == 1 << 8 &&
              msig_unit[ROOK] == 1 << 12 && msig_unit[QUEEN] == 1 << 16);

// Shapes of the piece-square tables, in sixteenths of a weight. Rooks look at the file alone, kings in the opening at
// their own mixture, and all others like to stand in the centre.
constexpr std::array<int, 8> kCentre = {-5, -2, 0, 1, 1, 0, -2, -5};                   // by file and by rank
constexpr std::array<int, 8> kPawnAdvance = {0, 0, 1, 4, 5, 6, 6, 0};                  // by rank
constexpr std::array<int, 8> kKingRank = {0, -1, -2, -3, -4, -4, -4, -4};              // by rank
constexpr std::array<int, 8> kKingFile = {1, 1, 0, -1, -1, 0, 1, 1};                   // by file
constexpr std::array<std::array<int, 8>, 8> kPawnCentre = {{{0, 0, 0, 0, 0, 0, 0, 0},  // by rank and file
                                                            {-1, 0, 0, -1, -1, 0, 0, -1},
                                                            {-1, 0, 0, 1, 1, 0, 0, -1},
                                                            {-1, 0, 1, 2, 2, 1, 0, -1},
                                                            {-1, 1, 2, 3, 3, 2, 1, -1},
                                                            {-1, 1, 2, 2, 2, 2, 1, -1},
                                                            {-1, 1, 2, 2, 2, 2, 1, -1},
                                                            {0, 0, 0, 0, 0, 0, 0, 0}}};

// Joins the values of a type in pairs, for black on the flipped square.
template <typename Table>
void PairTable(int type, const Table& op, const Table& en) {
    for (int sq = 0; sq < 64; ++sq) {
        SquarePairs[WHITE][type][sq] = MakePair(op[sq], en[sq]);
        SquarePairs[BLACK][type][sq ^ flip_sq[BLACK]] = MakePair(op[sq], en[sq]);
    }
}

// Each value is a shape times a weight, cut towards zero.
void InitSquares() {
    const PersonalityRecord& p = Personality;
    for (int sq = 0; sq < 64; ++sq) {
        const int rank = RankOf(sq);
        const int file = FileOf(sq);
        const int centre = kCentre[rank] + kCentre[file];
        PawnOpening[sq] = Narrow(kPawnCentre[rank][file] * p.PST_P_op / 16);
        PawnEnding[sq] = Narrow(kPawnAdvance[rank] * p.PST_P_en / 16);
        KnightOpening[sq] = Narrow(centre * p.PST_N_op / 16);
        KnightEnding[sq] = Narrow(centre * p.PST_N_en / 16);
        BishopOpening[sq] = Narrow(centre * p.PST_B_op / 16);
        BishopEnding[sq] = Narrow(centre * p.PST_B_en / 16);
        RookOpening[sq] = Narrow(kCentre[file] * p.PST_R_op / 16);
        RookEnding[sq] = Narrow(kCentre[file] * p.PST_R_en / 16);
        QueenOpening[sq] = Narrow(centre * p.PST_Q_op / 16);
        QueenEnding[sq] = Narrow(centre * p.PST_Q_en / 16);
        KingOpening[sq] = Narrow((kKingRank[rank] + kKingFile[file]) * p.PST_K_op / 16);
        KingEnding[sq] = Narrow(centre * p.PST_K_en / 16);
    }
    PairTable(PAWN, PawnOpening, PawnEnding);
    PairTable(KNIGHT, KnightOpening, KnightEnding);
    PairTable(BISHOP, BishopOpening, BishopEnding);
    PairTable(ROOK, RookOpening, RookEnding);
    PairTable(QUEEN, QueenOpening, QueenEnding);
    PairTable(KING, KingOpening, KingEnding);
}

// The last entry is worth more than a pawn on the seventh: it is read as that pawn's next step.
void InitPassers() {
    constexpr std::array<double, 8> share = {0.0, 0.06, 0.06, 0.15, 0.32, 0.64, 1.0, 1.5};
    for (int rank = 0; rank < 8; ++rank)
        PP_ADVANCE[rank] = Nearest(share[rank] * Personality.ppawn_r7);
}

// Joins the values of a type in pairs. A count beyond its table, which a queen alone has squares for, is worth the
// last.
template <typename Table>
void PairMobility(int type, const Table& table) {
    const int last = static_cast<int>(table.size()) - 1;
    for (int k = 0; k < 32; ++k)
        MobilityPairs[type][k] = BothPair(table[std::min(k, last)]);
}

// Three squares are par; each further one counts a little less than the one before.
void InitMobility() {
    double damping = 1.0;
    for (int k = 0; k < 16; ++k) {
        const double value = (k - 3) * 0.1 * damping;
        KnightMobility[k] = Nearest(value * Personality.knight_mobility);
        BishopMobility[k] = Nearest(value * Personality.bishop_mobility);
        RookMobility[k] = Nearest(value * Personality.rook_mobility);
        QueenMobility[k] = Nearest(value * Personality.queen_mobility);
        damping *= 0.97;
    }
    // Beyond ten squares a queen gains nothing.
    for (int k = 11; k < 32; ++k)
        QueenMobility[k] = QueenMobility[10];
    PairMobility(KNIGHT, KnightMobility);
    PairMobility(BISHOP, BishopMobility);
    PairMobility(ROOK, RookMobility);
    PairMobility(QUEEN, QueenMobility);
}

// By the danger index; six count nothing. A power curve whose slope is limited, so that a hopeless king doesn't
// outweigh everything else.
void InitKingDanger() {
    KingDanger.fill(0);
    for (int i = 7; i < 32; ++i) {
        const int curve = static_cast<int>(std::round(std::pow(i - 6, 1.5) * Personality.king_safety * 0.045));
        KingDanger[i] = Narrow(std::min(KingDanger[i - 1] + 24, curve));
    }
}

// The tables don't depend on weights: they are written anew with the same values.
void InitFileMasks() {
    leftbit[0] = 8;
    rightbit[0] = -1;
    for (uint64_t mask = 1; mask < 256; ++mask) {
        leftbit[mask] = Narrow(GetLSB(mask));
        rightbit[mask] = Narrow(GetMSB(mask));
    }
}

uint64_t Mix(uint64_t sum, int value) {
    sum = (sum ^ static_cast<uint16_t>(value)) * 0x9e3779b97f4a7c15;
    return sum ^ sum >> 32;
}

uint64_t SumOfWeights(const PersonalityRecord& p) {
    uint64_t sum = 0;
#define VREL_MIX(name, value, use) sum = Mix(sum, p.name);
    VREL_WEIGHTS(VREL_MIX)
#undef VREL_MIX
    return sum;
}

}  // namespace

void InitEval() {
    assert(NobodySearches());
    InitMaterial();
    InitSquares();
    InitPassers();
    InitMobility();
    InitKingDanger();
    InitFileMasks();
    weights_signature = SumOfWeights(Personality) ^ SumOfWeights(DefaultPersonality);
}

}  // namespace vrel
