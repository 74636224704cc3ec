#include "eval/eval_tables.h"

#include <vector>

#include "board/bitboards.h"
#include "board/position.h"
#include "eval/personality.h"
#include "support/engine.h"

namespace vrel {
namespace {

template <size_t N>
std::vector<int> Values(const std::array<int16_t, N>& table) {
    return {table.begin(), table.end()};
}

std::vector<int> Rank(const std::array<int16_t, 64>& table, size_t rank) {
    return {table.begin() + static_cast<long>(8 * rank), table.begin() + static_cast<long>(8 * rank + 8)};
}

// Changes weights for one test and puts them back.
class Tables : public EngineTest {
protected:
    void TearDown() override {
        Personality = DefaultPersonality;
        InitEval();
    }
};

TEST_F(Tables, PassedPawnsGrowWithTheirRank) {
    EXPECT_EQ(Values(PP_ADVANCE), (std::vector<int>{0, 7, 7, 18, 38, 77, 120, 180}));
}

TEST_F(Tables, MobilityIsDamped) {
    EXPECT_EQ(Values(KnightMobility),
              (std::vector<int>{-20, -13, -6, 0, 6, 12, 17, 22, 27, 31, 35, 39, 42, 46, 49, 52}));
    EXPECT_EQ(Values(BishopMobility),
              (std::vector<int>{-15, -10, -5, 0, 4, 9, 12, 16, 20, 23, 26, 29, 31, 34, 36, 38}));
    EXPECT_EQ(Values(RookMobility), (std::vector<int>{-12, -8, -4, 0, 4, 7, 10, 13, 16, 18, 21, 23, 25, 27, 29, 30}));
    std::vector<int> queen = {-9, -6, -3, 0, 3, 5, 7, 10, 12, 14, 15};
    queen.resize(32, 15);
    EXPECT_EQ(Values(QueenMobility), queen);
}

TEST_F(Tables, KingDangerHasALimitedSlope) {
    EXPECT_EQ(Values(KingDanger),
              (std::vector<int>{0,   0,   0,   0,   0,   0,   0,   5,   14,  26,  40,  55,  73,  92,  112, 134,
                                157, 181, 205, 229, 253, 277, 301, 325, 349, 373, 397, 421, 445, 469, 493, 517}));
}

TEST_F(Tables, PieceSquareValuesTruncateTowardsZero) {
    for (size_t rank = 4; rank < 8; ++rank)
        EXPECT_EQ(std::vector<int>(KingOpening.begin() + static_cast<long>(8 * rank),
                                   KingOpening.begin() + static_cast<long>(8 * rank + 8)),
                  (std::vector<int>{-32, -32, -43, -54, -54, -43, -32, -32}));
    EXPECT_EQ(KingOpening[0], 10);
    EXPECT_EQ(KingOpening[27], -43);
    EXPECT_EQ(Rank(PawnOpening, 6), (std::vector<int>{-5, 5, 11, 11, 11, 11, 5, -5}));
    EXPECT_EQ(Rank(PawnOpening, 4), (std::vector<int>{-5, 5, 11, 16, 16, 11, 5, -5}));
    EXPECT_EQ(Rank(PawnOpening, 3), (std::vector<int>{-5, 0, 5, 11, 11, 5, 0, -5}));
    EXPECT_EQ(Rank(PawnOpening, 2), (std::vector<int>{-5, 0, 0, 5, 5, 0, 0, -5}));
    EXPECT_EQ(Rank(PawnOpening, 1), (std::vector<int>{-5, 0, 0, -5, -5, 0, 0, -5}));
    EXPECT_EQ(Rank(KnightOpening, 0), (std::vector<int>{-35, -24, -17, -14, -14, -17, -24, -35}));
    EXPECT_EQ(KnightOpening[27], 7);
    EXPECT_EQ(Rank(RookOpening, 5), (std::vector<int>{-7, -3, 0, 1, 1, 0, -3, -7}));
    EXPECT_EQ(Values(RookEnding), std::vector<int>(64, 0));
}

TEST_F(Tables, MaterialKnowsPairsAndSparePieces) {
    EXPECT_EQ(MtlBishopOp[1], 335);
    EXPECT_EQ(MtlBishopOp[2], 706);
    EXPECT_EQ(MtlRookEn[2], 1140);
    EXPECT_EQ(MtlRookOp[2], 910);
    EXPECT_EQ(MtlQueenEn[2], 2120);
    EXPECT_EQ(MtlPawnEn[15], 1530);
    EXPECT_EQ(MtlQueenEn[15], 15 * 1080 - 40) << "the same formula holds for as many pieces as a side can have";
}

TEST_F(Tables, FileMasksHaveTheirEnds) {
    EXPECT_EQ(leftbit[0], 8);
    EXPECT_EQ(rightbit[0], -1);
    EXPECT_EQ(leftbit[0x90], 4);
    EXPECT_EQ(rightbit[0x90], 7);
    EXPECT_EQ(leftbit[0xff], 0);
}

TEST_F(Tables, AWeightThatScalesATableCountsAfterTheTablesAreRebuilt) {
    Personality.ppawn_r7 = 240;
    Personality.PST_R_en = 16;
    EXPECT_EQ(PP_ADVANCE[6], 120);
    InitEval();
    EXPECT_EQ(PP_ADVANCE[6], 240);
    EXPECT_EQ(RookEnding[0], -5);
    EXPECT_EQ(EndingOf(SquarePairs[BLACK][ROOK][56]), -5);
}

TEST_F(Tables, PairsKeepBothValuesApart) {
    for (const int op : {-3000, -1, 0, 1, 3000})
        for (const int en : {-3000, -1, 0, 1, 3000}) {
            const ScorePair pair = MakePair(op, en) + MakePair(-7, 5) * 3 - BothPair(2);
            EXPECT_EQ(OpeningOf(pair), op - 21 - 2);
            EXPECT_EQ(EndingOf(pair), en + 15 - 2);
        }
}

TEST_F(Tables, ReductionsAreBounded) {
    for (size_t depth = 0; depth < 70; ++depth)
        for (size_t number = 0; number < 32; ++number) {
            const int pv = DefaultPersonality.LMR_table1[depth][number];
            const int other = DefaultPersonality.LMR_table2[depth][number];
            EXPECT_TRUE(pv >= 0 && pv <= 2 && pv <= static_cast<int>(number) / 2);
            EXPECT_TRUE(other >= 0 && other <= 3 && other <= static_cast<int>(number));
            if (depth < 4) {
                EXPECT_EQ(pv, 0) << depth;
            }
        }
    EXPECT_EQ(DefaultPersonality.LMR_table1[9][16], 1);  // 0.5 * 5 - 1.25 goes to the nearest integer
    EXPECT_EQ(DefaultPersonality.LMR_table2[9][16], 3);  // 0.55 * 5 - 0.25 = 2.5, away from zero
    EXPECT_EQ(DefaultPersonality.RP_margin[2], 250);
    EXPECT_EQ(DefaultPersonality.FP_margin[3], 386);
    EXPECT_EQ(DefaultPersonality.LMP_count[7], 21);
}

TEST_F(Tables, WeightsAreFoundByNameAndByKeyword) {
    for (const auto find : {FindWeight, FindKeyword}) {
        EXPECT_EQ(find(&Personality, "hung"), &Personality.hung);
        EXPECT_EQ(find(&Personality, "tune"), &Personality.tune);
        EXPECT_EQ(find(&Personality, "PST_R_op"), &Personality.PST_R_op);
        for (const char* name : {"contempt", "", "Hung", "LMR_depth"})
            EXPECT_EQ(find(&Personality, name), nullptr) << name;
    }
    EXPECT_EQ(FindWeight(&Personality, "PST_R_en"), &Personality.PST_R_en);
    EXPECT_EQ(FindKeyword(&Personality, "PST_R_en"), nullptr);
    EXPECT_EQ(FindSelectivity(&Personality, "LMR_depth"), &Personality.LMR_depth);
    EXPECT_EQ(FindSelectivity(&Personality, "SE"), &Personality.SE);
    for (const char* name : {"", "lmr_depth", "ss_off", "hung"})
        EXPECT_EQ(FindSelectivity(&Personality, name), nullptr) << name;
}

TEST_F(Tables, EveryTunedWeightIsAnotherField) {
    std::vector<int16_t*> seen;
    for (int i = 0; i < TUNED_WEIGHTS; ++i) {
        int16_t* weight = TunedWeight(&Personality, i);
        ASSERT_NE(weight, nullptr);
        EXPECT_EQ(std::count(seen.begin(), seen.end(), weight), 0) << i;
        seen.push_back(weight);
    }
    EXPECT_EQ(seen[0], &Personality.pawn_value_op);
    EXPECT_EQ(seen[15], &Personality.ppawn_r7);
    EXPECT_EQ(seen[28], &Personality.king_safety);
    EXPECT_EQ(seen[38], &Personality.PST_R_en);
    EXPECT_EQ(seen[44], &Personality.pinned);
    EXPECT_EQ(TunedWeight(&Personality, -1), nullptr);
    EXPECT_EQ(TunedWeight(&Personality, TUNED_WEIGHTS), nullptr);
}

}  // namespace
}  // namespace vrel
