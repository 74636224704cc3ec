#include <cmath>

#include "eval/eval_tables.h"
#include "eval/pawns.h"
#include "eval/personality.h"
#include "eval/pieces.h"
#include "eval_support.h"

namespace vrel {
namespace {

class Terms : public EngineTest {
protected:
    void TearDown() override {
        Personality = DefaultPersonality;
        InitEval();
    }
};

// How often a weight counts for a side: the positional score is taken with two values of the weight that lie so far
// apart that nothing else matters.
int TimesCounted(const std::string& fen, int side, int16_t PersonalityRecord::*weight) {
    constexpr int kStep = 2400;
    const int16_t original = Personality.*weight;
    const auto score = [&](int value) {
        Personality.*weight = static_cast<int16_t>(value);
        return EvaluateRoot(fen).report.report_pos[static_cast<size_t>(side)];
    };
    const int difference = score(original + kStep) - score(original);
    Personality.*weight = original;
    return static_cast<int>(std::lround(static_cast<double>(difference) / kStep));
}

TEST_F(Terms, WeightsCountAsOftenAsTheirReasonIsThere) {
    using Record = PersonalityRecord;
    struct Row {
        const char* name;
        const char* fen;
        int side;
        int16_t Record::*weight;
        int times;
    };
    const Row rows[] = {
        {"one hung knight", "4k3/8/8/3p4/4N3/3P4/8/R3K2R w - -", WHITE, &Record::hung, 1},
        {"two hung pieces", "4k3/8/8/1p1p4/B3N3/1P1P4/8/R3K2R w - -", WHITE, &Record::hung, 3},
        {"three hung pieces", "4k3/8/8/1p1p2p1/B3N2N/1P1P2P1/8/R3K2R w - -", WHITE, &Record::hung, 5},
        {"attacked but covered", "4k3/8/8/4r3/4N3/3P4/8/4K2R w - -", WHITE, &Record::hung, 0},
        {"a rook attacked by a bishop", "4k3/8/8/6b1/8/4R3/3K4/8 w - -", WHITE, &Record::hung, 1},
        {"a queen attacked by a covered rook", "4k3/8/5p2/4r3/4Q3/3P4/8/4K2R w - -", WHITE, &Record::hung, 1},
        {"an uncovered pawn attacked by a pawn", "4k2r/7p/8/3p4/4P3/8/7P/4K2R w - -", WHITE, &Record::hung, 0},
        {"an uncovered pawn attacked by a knight", "4k2r/7p/3n4/8/4P3/8/7P/3K3R w - -", WHITE, &Record::hung, 1},
        {"a covered pawn attacked by a knight", "4k2r/7p/3n4/8/4P3/3P4/7P/3K3R w - -", WHITE, &Record::hung, 0},
        {"pinned to the king", "4k3/8/4r3/8/8/4N3/8/4K2R w - -", WHITE, &Record::pinned, 1},
        {"two pieces on the line", "4k3/8/4r3/8/4N3/4N3/8/4K2R w - -", WHITE, &Record::pinned, 0},
        {"a pinned pawn", "4k3/8/4r3/8/8/4P3/8/4K2R w - -", WHITE, &Record::pinned, 0},
        {"pinned to the queen by a bishop", "4k3/8/5b2/4N3/8/2Q5/8/K6R w - -", WHITE, &Record::pinned, 1},
        {"not to the queen by a queen", "4k3/8/8/8/1q1N1Q2/8/8/K6R w - -", WHITE, &Record::pinned, 0},
        {"not to one of two queens", "4k3/8/5b2/4N3/8/2Q5/8/K6Q w - -", WHITE, &Record::pinned, 0},
        {"to queen and king at once", "4k3/8/5b2/4N3/3Q4/2K5/8/7R w - -", WHITE, &Record::pinned, 1},
        {"black, pinned to the king", "4k2r/8/4n3/8/8/4R3/8/4K3 b - -", BLACK, &Record::pinned, 1},
        {"isolated, with an own pawn far away", "4k2r/8/8/8/8/P6P/8/4K2R w - -", WHITE, &Record::pawn_isolated, 2},
        {"doubled pawns pay both", "4k2r/8/8/8/P7/P7/8/4K2R w - -", WHITE, &Record::pawn_doubled, 2},
        {"backward up to the fourth rank", "4k2r/8/8/2P5/P7/8/8/4K2R w - -", WHITE, &Record::pawn_backward, 1},
        {"weak on half-open files alone", "4k2r/p7/8/8/P1P5/8/8/4K2R w - -", WHITE, &Record::pawn_weak, 1},
        {"a neighbour level supports", "4k2r/8/8/8/PP6/8/8/4K2R w - -", WHITE, &Record::pawn_weak, 0},
        {"a shut-in bishop", "4k2r/B1p5/1p6/8/8/8/8/4K2R w - -", WHITE, &Record::bishop_trapped, 1},
        {"a bishop with a way out", "4k2r/B1p5/8/8/8/8/8/4K2R w - -", WHITE, &Record::bishop_trapped, 0},
        {"black's shut-in bishop", "4k2r/8/8/8/8/1P6/b1P5/4K2R b - -", BLACK, &Record::bishop_trapped, 1},
        {"open file", "4k2r/8/8/8/8/8/P7/1R2K3 w - -", WHITE, &Record::rook_open_file, 1},
        {"half-open file", "4k2r/1p6/8/8/8/8/P7/1R2K3 w - -", WHITE, &Record::rook_half_open_file, 1},
        {"own pawn on the file", "4k2r/1p6/8/8/8/8/1P6/1R2K3 w - -", WHITE, &Record::rook_half_open_file, 0},
        {"both rooks of a battery on the open file", "4k2r/8/8/8/8/3R4/P7/3RK3 w - -", WHITE, &Record::rook_open_file,
         2},
        {"seventh rank, king on his own", "4k3/R7/8/8/8/8/1P6/4K3 w - -", WHITE, &Record::rook_rank7, 1},
        {"seventh rank, nothing there", "8/R7/4k3/8/8/8/1P6/4K3 w - -", WHITE, &Record::rook_rank7, 0},
        {"seventh rank, pawns", "8/R5p1/4k3/8/8/8/1P6/4K3 w - -", WHITE, &Record::rook_rank7, 1},
        {"queen on the seventh", "4k3/Q7/8/8/8/8/1P6/4K3 b - -", WHITE, &Record::queen_rank7, 1},
        {"black queen on the second", "4k3/1p6/8/8/8/8/q7/4K3 b - -", BLACK, &Record::queen_rank7, 1},
    };
    for (const Row& row : rows)
        EXPECT_EQ(TimesCounted(row.fen, row.side, row.weight), row.times) << row.name;
}

// These weights count in the opening alone: on a board whose stage is 0.
TEST_F(Terms, OpeningWeightsCountAsOftenAsTheirReasonIsThere) {
    using Record = PersonalityRecord;
    struct Row {
        const char* name;
        const char* fen;
        int16_t Record::*weight;
        int times;
    };
    const Row rows[] = {
        {"full shield", "rnbq1rk1/pppppppp/8/8/8/8/PPPPPPPP/RNBQ1RK1 w - -", &Record::pawn_shield, 2},
        {"a gap before the king", "rnbq1rk1/pppppppp/8/8/8/8/PPPPPP1P/RNBQ1RK1 w - -", &Record::pawn_shield, 1},
        {"the pawn a step ahead", "rnbq1rk1/pppppppp/8/8/8/6P1/PPPPPP1P/RNBQ1RK1 w - -", &Record::pawn_shield, 2},
        {"two steps ahead are a gap", "rnbq1rk1/pppppppp/8/8/6P1/8/PPPPPP1P/RNBQ1RK1 w - -", &Record::pawn_shield, 1},
        {"no shield at all", "rnbq1rk1/pppppppp/8/8/8/8/PPPPP3/RNBQ1RK1 w - -", &Record::pawn_shield, -3},
        {"in the corner the files stay on the board", "rnbqr1k1/pppppppp/8/8/8/8/PPP1PPPP/K1RNBQR1 w - -",
         &Record::pawn_shield, 2},
        {"same wing: no storm", "rnbq1rk1/ppppp3/8/8/8/8/PPPPPPPP/RNBQ1RK1 w - -", &Record::pawn_storm, 0},
        {"opposite wings, pawns at home", "1k1rqrbn/pppppppp/8/8/8/8/PPPPPPPP/RNBQ1RK1 w - -", &Record::pawn_storm, 0},
        {"opposite wings, pawns gone or across", "1k1rqrbn/ppppp3/8/8/6pp/8/PPPPPPPP/RNBQ1RK1 w - -",
         &Record::pawn_storm, -3},
        {"king shuts the rook in", "rnbq1rk1/pppppppp/8/8/8/P7/1PPPPPPP/RKBQNRN1 w - -", &Record::rook_trapped, 1},
    };
    for (const Row& row : rows)
        EXPECT_EQ(TimesCounted(row.fen, WHITE, row.weight), row.times) << row.name;
}

// A knight's outposts: on one, covered, and with another in reach.
TEST_F(Terms, KnightsCountOutpostsInTheOpeningAlone) {
    const auto knights = [](const char* fen) { return EvaluateRoot(fen).report.report_knights[WHITE]; };
    constexpr const char* fen = "rnbqbrkn/8/8/3N4/4P3/8/8/RNBQBRK1 w - -";
    Personality.knight_outpost = 0;
    const int without = knights(fen);
    Personality.knight_outpost = 1001;
    // The one on b1 reaches no rank of outposts, the one on d5 stands on one and reaches others.
    EXPECT_EQ(knights(fen), without + 1001 + 500);
}

TEST_F(Terms, KingZonesAreWholeBoxes) {
    for (int sq = 0; sq < 64; ++sq) {
        const uint64_t zone = kKingZones[static_cast<size_t>(sq)];
        EXPECT_EQ(CountBits(zone), 9) << sq;
        EXPECT_TRUE(zone & Bit(sq)) << sq;
    }
    EXPECT_EQ(kKingZones[Sq("a1")], kKingZones[Sq("b2")]);
    EXPECT_EQ(kKingZones[Sq("h4")], kKingZones[Sq("g4")]);
    EXPECT_EQ(kKingZones[NO_SQUARE], 0u);
}

// Shares of single pawns, opening and ending, as the report shows them.
TEST_F(Terms, PawnStructure) {
    struct Row {
        const char* name;
        const char* fen;
        const char* square;
        int op, en;
    };
    const Row rows[] = {
        {"defended by two", "4k3/4p3/8/8/4P3/3P1P2/8/4K3 w - -", "e4", 11 + 4, 3 + 4},
        {"backward on a half-open file", "4k3/4p3/8/8/4P3/3P1P2/8/4K3 w - -", "d3", 5 - 12, -12},
        {"advanced and within the enemy's reach", "4k3/5p2/8/4P3/3P4/8/8/4K3 w - -", "e5", 16 + 4 + 3, 4 + 4},
        {"advanced and out of it", "4k3/4p3/8/4P3/3P4/8/8/4K3 w - -", "e5", 16 + 4 + 7, 4 + 4},
        {"candidate whose partner meets the sentry", "4k3/1p6/8/PP6/8/8/8/4K3 w - -", "a5", -5, 4 + 32},
        {"the partner itself is no candidate", "4k3/1p6/8/PP6/8/8/8/4K3 w - -", "b5", 5, 4},
        {"a partner under fire", "4k3/8/2p5/3PP3/8/8/8/4K3 w - -", "e5", 16, 4},
        {"passed, doubled, isolated: the rear one", "4k3/8/8/4P3/4P3/8/8/4K3 w - -", "e4", 11 - 25, 3 - 25},
        {"passed, doubled, isolated: the front one", "4k3/8/8/4P3/4P3/8/8/4K3 w - -", "e5", 16 - 21, 4 - 21},
        {"black: defended by two", "4k3/8/3p1p2/4p3/8/8/4P3/4K3 w - -", "e5", 11 + 4, 3 + 4},
        {"black: candidate", "4k3/8/8/8/pp6/8/1P6/4K3 w - -", "a4", -5, 4 + 32},
    };
    for (const Row& row : rows) {
        const TestPosition pos(row.fen);
        const auto share = [&](int stage) {
            EvalReport report;
            PawnHashEntry entry;
            UpdatePawnHashAtRoot(*pos, &entry, stage, &report);
            return report.eval_by_square[static_cast<size_t>(Sq(row.square))];
        };
        EXPECT_EQ(share(0), row.op) << row.name;
        EXPECT_EQ(share(24), row.en) << row.name;
    }
}

TEST_F(Terms, PassedPawns) {
    struct Row {
        const char* name;
        const char* fen;
        const char* square;
        int free_rank;
    };
    const Row rows[] = {
        {"a clear way", "8/8/8/4P3/8/8/1k6/R3K3 w - -", "e5", 4},
        {"the way is blocked", "4n2k/8/8/4P3/8/8/8/R3K3 w - -", "e5", 0},
        {"the enemy alone attacks the way", "3r3k/8/8/4P3/8/8/8/4K3 w - -", "e5", 0},
        {"attacked and covered", "3r3k/8/8/4P3/8/8/8/4R2K w - -", "e5", 4},
        {"a rook behind, the enemy's", "4k3/8/8/8/P7/8/8/r6K b - -", "a4", 0},
        {"blocked on the seventh, but it can capture", "3rr2k/4P3/8/8/8/8/8/R6K w - -", "e7", 6},
        {"blocked on the seventh", "4r2k/4P3/8/8/8/8/8/R6K w - -", "e7", 0},
        {"the highest counts", "7k/1P6/8/4P3/8/8/8/R6K w - -", "b7", 6},
    };
    for (const Row& row : rows) {
        const RootEval eval = EvaluateRoot(row.fen);
        EXPECT_EQ(eval.frame.free_pawn_rank[WHITE], row.free_rank) << row.name;
        EXPECT_EQ(eval.report.report_free_rank[WHITE], row.free_rank) << row.name;
        EXPECT_NE(eval.report.eval_by_square[static_cast<size_t>(Sq(row.square))], 0) << row.name;
    }
}

TEST_F(Terms, ValueOfAPassedPawnIsTheSumOfItsReasons) {
    // e7 with rooks on e8 and d8: 120 and a quarter of 180 for the capture, which counts as a free way; the square
    // ahead is taken; the enemy king is next to none, the own one far from it.
    const RootEval eval = EvaluateRoot("3rr2k/4P3/8/8/8/8/8/R6K w - -");
    const int base = 120 + 180 / 4;
    const int v = base + base / 4 + 4 - base / 8 + (32 * 3 - 22 * 7) * base / 256 + (2 - 1 < 3 ? base / 4 : 0);
    EXPECT_EQ(eval.report.report_passers[WHITE], Blend(v * 165 / 256, v, eval.report.report_stage));
}

TEST_F(Terms, TheRearOfTwoPassersHasNoShare) {
    const RootEval eval = EvaluateRoot("7k/8/4P3/4P3/8/8/8/R6K w - -");
    EXPECT_EQ(eval.report.eval_by_square[static_cast<size_t>(Sq("e5"))], Blend(16 - 21, 4 - 21, 22));
    Personality.ppawn_r7 = 0;
    InitEval();
    const RootEval without = EvaluateRoot("7k/8/4P3/4P3/8/8/8/R6K w - -");
    // Only the free way of the front pawn is worth something then.
    EXPECT_EQ(without.report.report_passers[WHITE], Blend(4 * 165 / 256, 4, 22));
    const int gained = eval.report.report_pos[WHITE] - without.report.report_pos[WHITE];
    const int front = eval.report.report_passers[WHITE] - without.report.report_passers[WHITE];
    EXPECT_NEAR(gained, front + 38 / 3, 1);
}

TEST_F(Terms, AQueenBesideTheKingRaisesTheAlarm) {
    EXPECT_EQ(EvaluateRoot("r5k1/5ppp/5P1Q/8/8/8/5PPP/6K1 b - -").frame.hung_value[BLACK], 10000);
    EXPECT_EQ(EvaluateRoot("r5k1/5ppp/7Q/8/8/8/5PPP/6K1 b - -").frame.hung_value[BLACK], 0) << "the queen is alone";
    EXPECT_EQ(EvaluateRoot("6k1/5ppp/8/8/8/5p1q/5PPP/R5K1 w - -").frame.hung_value[WHITE], 10000);
}

TEST_F(Terms, HungPiecesAreValuedAndShown) {
    const RootEval eval = EvaluateRoot("4k3/8/8/1p1p4/B3N3/1P1P4/8/R3K2R w - -");
    // The bishop attacks back.
    EXPECT_EQ(eval.frame.hung_value, (std::array<int16_t, 2>{650, 100}));
    EXPECT_EQ(eval.report.report_hung, Bit(Sq("a4")) | Bit(Sq("e4")) | Bit(Sq("b5")));
}

}  // namespace
}  // namespace vrel
