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
        MaterialPairs[PAWN][i] = MakePair(MtlPawnOp[i], MtlPawnEn[i]);
        MaterialPairs[KNIGHT][i] = MakePair(MtlKnightOp[i], MtlKnightEn[i]);
        MaterialPairs[BISHOP][i] = MakePair(MtlBishopOp[i], MtlBishopEn[i]);
        MaterialPairs[ROOK][i] = MakePair(MtlRookOp[i], MtlRookEn[i]);
        MaterialPairs[QUEEN][i] = MakePair(MtlQueenOp[i], MtlQueenEn[i]);
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

template <typename Table>
void PairTable(int type, const Table& op, const Table& en) {
    for (int sq = 0; sq < 64; ++sq) {
        SquarePairs[WHITE][type][sq] = MakePair(op[sq], en[sq]);
        SquarePairs[BLACK][type][sq ^ 56] = MakePair(op[sq], en[sq]);
    }
}

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
    for (int k = 11; k < 32; ++k)
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
        const int curve = static_cast<int>(std::round(std::pow(i - 6, 1.5) * Personality.king_safety * 0.045));
        KingDanger[i] = Narrow(std::min(KingDanger[i - 1] + 24, curve));
    }
}

void InitFileMasks() {
    for (int mask = 0; mask < 256; ++mask) {
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
