#include "board/move_kind.h"

#include "board/attacks.h"
#include "board/exchange.h"
#include "board/fen.h"
#include "support/engine.h"
#include "support/moves.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using MoveKindTest = EngineTest;

uint64_t LinesOf(int sq, bool straight) {
    return straight ? BB_RookRays[static_cast<size_t>(sq)] : BB_BishopRays[static_cast<size_t>(sq)];
}

// One kind of line at a time, the mover lifted off a copy of the board.
bool SlowAreaPass(const Position& pos, int type, int from, int to, uint64_t area, bool straight) {
    const auto side = static_cast<size_t>(pos.stm);
    const auto& own = pos.bb[side];
    const uint64_t seen_through = own[QUEEN] | (straight ? own[ROOK] : own[BISHOP]);
    Position lifted = pos;
    lifted.bb[side][static_cast<size_t>(type)] &= ~Bit(from);
    lifted.bb[side][0] &= ~Bit(from);
    for (int target = 0; target < 64; ++target) {
        const bool newly =
            (area & LinesOf(to, straight) & Bit(target)) && target != from && !(LinesOf(from, straight) & Bit(target));
        if (newly && (BB_Between(to, target) & Occupied(pos) & ~seen_through) == 0 && SqAtakd(lifted, target, pos.stm))
            return true;
    }
    return false;
}

bool SlowAttacksKingArea(const Position& pos, int type, int from, int to, uint64_t area) {
    return (type != BISHOP && SlowAreaPass(pos, type, from, to, area, true)) ||
           (type != ROOK && SlowAreaPass(pos, type, from, to, area, false));
}

// True if the slider sees a piece of `prey` from `to` with which it wasn't in line before.
bool SlowNewPrey(const Position& pos, uint64_t prey, int from, int to, bool straight) {
    for (int sq = 0; sq < 64; ++sq)
        if ((prey & Bit(sq)) && (LinesOf(to, straight) & Bit(sq)) && !(LinesOf(from, straight) & Bit(sq)) &&
            (BB_Between(to, sq) & Occupied(pos)) == 0)
            return true;
    return false;
}

bool SlowThreat(const Position& pos, const MoveEntry& entry) {
    const auto& enemy = pos.bb[static_cast<size_t>(pos.stm ^ 1)];
    const int from = FromSquare(entry.move);
    const int to = ToSquare(entry.move);
    const int king = KingSquare(pos, pos.stm ^ 1);
    for (int sq = 0; sq < 64; ++sq) {
        const int files = std::abs(FileOf(sq) - FileOf(to));
        const int ranks = RankOf(sq) - RankOf(to);
        const bool beside_king = king != sq && distance(sq, king) == 1;
        const bool major = ((enemy[ROOK] | enemy[QUEEN]) & Bit(sq)) != 0;
        const bool minor = ((enemy[KNIGHT] | enemy[BISHOP]) & Bit(sq)) != 0;
        if (TypeOf(entry.piece) == PAWN && files == 1 && ranks * 8 == pawn_dir[pos.stm] &&
            (beside_king || major || minor))
            return true;
        if (TypeOf(entry.piece) == KNIGHT && files * std::abs(ranks) == 2 && (beside_king || major))
            return true;
    }
    const uint64_t area = BB_KingRays[static_cast<size_t>(king)];
    switch (TypeOf(entry.piece)) {
        case BISHOP:
            return SlowNewPrey(pos, enemy[ROOK] | enemy[QUEEN], from, to, false) ||
                   SlowAttacksKingArea(pos, BISHOP, from, to, area);
        case ROOK:
            return SlowNewPrey(pos, enemy[QUEEN], from, to, true) || SlowAttacksKingArea(pos, ROOK, from, to, area);
        case QUEEN:
            return SlowAttacksKingArea(pos, QUEEN, from, to, area);
        default:
            return false;
    }
}

TEST_F(MoveKindTest, ThreatsAgreeWithTheSlowTest) {
    TestPosition pos(fen_opn);
    std::array<int, 7> threats{};
    for (const std::string& fen : ManyPositions(1500, 1500)) {
        pos.Set(fen);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const bool threat = SlowThreat(*pos, entry);
            ASSERT_EQ(MoveIsThreat(*pos, entry), threat) << fen << ' ' << oracle::MoveText(OracleMove(entry.move));
            threats[static_cast<size_t>(TypeOf(entry.piece))] += threat;
        }
    }
    for (size_t type = PAWN; type <= QUEEN; ++type)
        EXPECT_GT(threats[type], 50) << type;
    EXPECT_EQ(threats[KING], 0);
}

// A pawn with no enemy pawn on its own and the next files in front of it.
bool SlowPassed(const Position& pos, int side, int sq) {
    const uint64_t pawns = pos.bb[static_cast<size_t>(side ^ 1)][PAWN];
    for (int other = 0; other < 64; ++other)
        if ((pawns & Bit(other)) && std::abs(FileOf(other) - FileOf(sq)) <= 1 &&
            (side == WHITE ? RankOf(other) > RankOf(sq) : RankOf(other) < RankOf(sq)))
            return false;
    return true;
}

TEST_F(MoveKindTest, PushesAreFarPawnsOrPassedOnes) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(1000, 1000)) {
        pos.Set(fen);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const int to = ToSquare(entry.move);
            const int rank = RelativeRank(pos->stm, to);
            const bool push =
                TypeOf(entry.piece) == PAWN && (rank >= 6 || (rank >= 4 && SlowPassed(*pos, pos->stm, to)));
            ASSERT_EQ(MoveIsPawnPush(*pos, pos->stm, entry), push) << fen << ' ' << to;
            ASSERT_EQ(MoveIsCastle(entry), IsCastling(entry)) << fen;
            ASSERT_EQ(MoveIsCapture(entry), entry.captured != 0) << fen;
        }
    }
}

TEST_F(MoveKindTest, SafeIsCheapOrLosesLessThanAPawn) {
    constexpr int kValues[] = {0, 1, 3, 3, 5, 10, 0};
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(500, 500)) {
        pos.Set(fen);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const int loss = swapoff1(*pos, pos->stm, FromSquare(entry.move), ToSquare(entry.move), Occupied(*pos));
            const bool cheap = kValues[TypeOf(entry.piece)] <= kValues[TypeOf(entry.captured)];
            ASSERT_EQ(MoveIsSafe(*pos, entry), cheap || loss >= -89) << fen;
        }
    }
}

struct SafeRow {
    const char* name;
    const char* fen;
    const char* move;
    bool safe;
};

TEST_F(MoveKindTest, NamedSafeMoves) {
    constexpr SafeRow kRows[] = {
        {"queen takes a defended pawn", "4k3/8/3p4/4p3/8/8/4Q3/4K3 w - -", "e2e5", false},
        {"queen takes a free pawn", "4k3/8/8/4p3/8/8/4Q3/4K3 w - -", "e2e5", true},
        {"bishop for knight", "4k3/8/3p4/4n3/8/2B5/8/4K3 w - -", "c3e5", true},
        {"a king always", "4k3/8/8/8/8/8/4r3/3K4 w - -", "d1e1", true},
        {"a pawn under a pawn", "4k3/8/3p4/8/4P3/8/8/4K3 w - -", "e4e5", false},
    };
    for (const SafeRow& row : kRows) {
        const TestPosition pos(row.fen);
        EXPECT_EQ(MoveIsSafe(*pos, EntryOf(*pos, Coord(row.move))), row.safe) << row.name;
    }
}

}  // namespace
}  // namespace vrel
