#include "eval/eval_tables.h"

#include <algorithm>
#include <cmath>

#include "board/bitboards.h"
#include "board/position.h"
#include "eval/personality.h"

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
std::array<std::array<ScorePair, 16>, 6> MaterialPairs;
std::array<std::array<std::array<ScorePair, 64>, 7>, 2> SquarePairs;
std::array<std::array<ScorePair, 32>, 6> MobilityPairs;

namespace {

// To the nearest integer, halves away from zero.
int16_t Nearest(double value) { return static_cast<int16_t>(static_cast<int>(std::round(value))); }

int16_t Narrow(int value) { return static_cast<int16_t>(value); }

void InitMaterial() {
    const PersonalityRecord& p = Personality;
    for (int i = 0; i < 16; ++i) {
        const auto n = static_cast<size_t>(i);
        // Two bishops complement each other; major pieces get in each other's way when the board empties.
        const int pair = i >= 2 ? p.bishop_pair : 0;
        const int spare_rook = i >= 2 ? 20 : 0;
        const int spare_queen = i >= 2 ? 40 : 0;
        MtlPawnOp[n] = Narrow(i * p.pawn_value_op);
        MtlPawnEn[n] = Narrow(i * p.pawn_value_en);
        MtlKnightOp[n] = Narrow(i * p.knight_value_op);
        MtlKnightEn[n] = Narrow(i * p.knight_value_en);
        MtlBishopOp[n] = Narrow(i * p.bishop_value_op + pair);
        MtlBishopEn[n] = Narrow(i * p.bishop_value_en + pair);
        MtlRookOp[n] = Narrow(i * p.rook_value_op);
        MtlRookEn[n] = Narrow(i * p.rook_value_en - spare_rook);
        MtlQueenOp[n] = Narrow(i * p.queen_value_op);
        MtlQueenEn[n] = Narrow(i * p.queen_value_en - spare_queen);
        MaterialPairs[PAWN][n] = MakePair(MtlPawnOp[n], MtlPawnEn[n]);
        MaterialPairs[KNIGHT][n] = MakePair(MtlKnightOp[n], MtlKnightEn[n]);
        MaterialPairs[BISHOP][n] = MakePair(MtlBishopOp[n], MtlBishopEn[n]);
        MaterialPairs[ROOK][n] = MakePair(MtlRookOp[n], MtlRookEn[n]);
        MaterialPairs[QUEEN][n] = MakePair(MtlQueenOp[n], MtlQueenEn[n]);
    }
}

// Shapes of the piece-square tables, in sixteenths of a weight.
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

template <size_t N>
void PairTable(int type, const std::array<int16_t, N>& op, const std::array<int16_t, N>& en) {
    for (size_t sq = 0; sq < 64; ++sq) {
        SquarePairs[WHITE][static_cast<size_t>(type)][sq] = MakePair(op[sq], en[sq]);
        SquarePairs[BLACK][static_cast<size_t>(type)][sq ^ 56] = MakePair(op[sq], en[sq]);
    }
}

void InitSquares() {
    const PersonalityRecord& p = Personality;
    for (size_t sq = 0; sq < 64; ++sq) {
        const size_t rank = sq >> 3;
        const size_t file = sq & 7;
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
    for (size_t rank = 0; rank < 8; ++rank)
        PP_ADVANCE[rank] = Nearest(share[rank] * Personality.ppawn_r7);
}

template <size_t N>
void PairMobility(int type, const std::array<int16_t, N>& table) {
    for (size_t k = 0; k < 32; ++k)
        MobilityPairs[static_cast<size_t>(type)][k] = BothPair(table[std::min(k, N - 1)]);
}

// Three squares are par; each further one counts a little less than the one before.
void InitMobility() {
    double damping = 1.0;
    for (int k = 0; k < 16; ++k) {
        const auto n = static_cast<size_t>(k);
        const double value = (k - 3) * 0.1 * damping;
        KnightMobility[n] = Nearest(value * Personality.knight_mobility);
        BishopMobility[n] = Nearest(value * Personality.bishop_mobility);
        RookMobility[n] = Nearest(value * Personality.rook_mobility);
        QueenMobility[n] = Nearest(value * Personality.queen_mobility);
        damping *= 0.97;
    }
    for (size_t k = 11; k < 32; ++k)
        QueenMobility[k] = QueenMobility[10];
    PairMobility(KNIGHT, KnightMobility);
    PairMobility(BISHOP, BishopMobility);
    PairMobility(ROOK, RookMobility);
    PairMobility(QUEEN, QueenMobility);
}

// A power curve whose slope is limited, so that a hopeless king doesn't outweigh everything else.
void InitKingDanger() {
    KingDanger.fill(0);
    for (int i = 7; i < 32; ++i) {
        const auto n = static_cast<size_t>(i);
        const int curve = static_cast<int>(std::round(std::pow(i - 6, 1.5) * Personality.king_safety * 0.045));
        KingDanger[n] = Narrow(std::min(KingDanger[n - 1] + 24, curve));
    }
}

void InitFileMasks() {
    for (size_t mask = 0; mask < 256; ++mask) {
        leftbit[mask] = 8;
        rightbit[mask] = -1;
        for (int bit = 7; bit >= 0; --bit)
            if (mask >> bit & 1)
                leftbit[mask] = static_cast<int8_t>(bit);
        for (int bit = 0; bit < 8; ++bit)
            if (mask >> bit & 1)
                rightbit[mask] = static_cast<int8_t>(bit);
    }
}

}  // namespace

void InitEval() {
    InitMaterial();
    InitSquares();
    InitPassers();
    InitMobility();
    InitKingDanger();
    InitFileMasks();
}

}  // namespace vrel
