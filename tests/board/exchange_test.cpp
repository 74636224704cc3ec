#include "board/exchange.h"

#include <algorithm>

#include "board/attacks.h"
#include "board/fen.h"
#include "support/engine.h"
#include "support/moves.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using ExchangeTest = EngineTest;

// The exchange as one thinks it over at the board: captures played on a copy, recursively.
class SlowExchange {
public:
    explicit SlowExchange(const Position& pos) : pos_(pos) {}

    int Value(int side, int from, int sq, uint64_t occ) {
        const int floor = from == NO_SQUARE ? 0 : -9999;
        if (from == NO_SQUARE)
            from = CheapestAttacker(side, sq, occ);
        if (from == NO_SQUARE)
            return 0;
        const int target = Type(sq);
        if (target == KING)
            return 9999;
        const Position saved = pos_;
        const auto type = static_cast<size_t>(Type(from));
        pos_.board[static_cast<size_t>(sq)] = pos_.board[static_cast<size_t>(from)];
        pos_.board[static_cast<size_t>(from)] = 0;
        pos_.bb[static_cast<size_t>(side)][type] &= ~Bit(from);
        const int reply = Value(side ^ 1, NO_SQUARE, sq, occ & ~Bit(from));
        pos_ = saved;
        return std::max(floor, piece_value[static_cast<size_t>(target)] - reply);
    }

private:
    int Type(int sq) const { return TypeOf(pos_.board[static_cast<size_t>(sq)]); }

    // By the piece's way of going, on the pieces that its type sets still hold.
    bool Attacks(int from, int type, int side, int sq, uint64_t occ) const {
        const int files = FileOf(sq) - FileOf(from);
        const int ranks = RankOf(sq) - RankOf(from);
        const bool diagonal = std::abs(files) == std::abs(ranks) && files != 0;
        const bool straight = (files == 0) != (ranks == 0);
        const bool clear = (BB_Between(from, sq) & occ) == 0;
        switch (type) {
            case PAWN:
                return std::abs(files) == 1 && ranks * 8 == pawn_dir[static_cast<size_t>(side)];
            case KNIGHT:
                return std::abs(files * ranks) == 2;
            case BISHOP:
                return diagonal && clear;
            case ROOK:
                return straight && clear;
            case QUEEN:
                return (diagonal || straight) && clear;
            default:
                return distance(from, sq) == 1;
        }
    }

    int CheapestAttacker(int side, int sq, uint64_t occ) const {
        for (int type = PAWN; type <= KING; ++type)
            for (int from = 0; from < 64; ++from)
                if ((pos_.bb[static_cast<size_t>(side)][static_cast<size_t>(type)] & Bit(from)) &&
                    Attacks(from, type, side, sq, occ))
                    return from;
        return NO_SQUARE;
    }

    Position pos_;
};

TEST_F(ExchangeTest, AgreesWithPlayingItOutMoveByMove) {
    TestPosition pos(fen_opn);
    int losses = 0;
    for (const std::string& fen : ManyPositions(400, 800)) {
        pos.Set(fen);
        SlowExchange slow(*pos);
        const uint64_t occ = Occupied(*pos);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const int from = FromSquare(entry.move);
            const int to = ToSquare(entry.move);
            const int value = swapoff1(*pos, pos->stm, from, to, occ);
            ASSERT_EQ(value, slow.Value(pos->stm, from, to, occ))
                << fen << ' ' << oracle::MoveText(OracleMove(entry.move));
            losses += value < 0;
        }
    }
    EXPECT_GT(losses, 1000);
}

TEST_F(ExchangeTest, AgreesOnEverySquareWithTheChoiceOfAttackerFree) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(200, 400)) {
        pos.Set(fen);
        SlowExchange slow(*pos);
        const uint64_t occ = Occupied(*pos);
        for (int sq = 0; sq < 64; ++sq)
            for (int side = 0; side < 2; ++side)
                ASSERT_EQ(swapoff1(*pos, side, NO_SQUARE, sq, occ), slow.Value(side, NO_SQUARE, sq, occ))
                    << fen << ' ' << sq << ' ' << side;
    }
}

struct ExchangeRow {
    const char* name;
    const char* fen;
    const char* from;  // null: the cheapest attacker
    const char* to;
    int value;
};

TEST_F(ExchangeTest, WorkedFigures) {
    constexpr ExchangeRow kRows[] = {
        {"nobody attacks", "4k3/8/8/4n3/8/8/8/4K3 w - -", nullptr, "e5", 0},
        {"pawn takes an undefended knight", "4k3/8/8/4n3/3P4/8/8/4K3 w - -", "d4", "e5", 325},
        {"queen takes a defended pawn", "4k3/8/3p4/4p3/8/8/4Q3/4K3 w - -", "e2", "e5", -875},
        {"with a choice nobody takes at a loss", "4k3/8/3p4/4p3/8/8/4Q3/4K3 w - -", nullptr, "e5", 0},
        {"with a choice the cheapest takes", "4k3/8/3p4/4p3/3P4/8/4Q3/4K3 w - -", nullptr, "e5", 100},
        {"the queen behind the rook joins", "3r3k/3r4/8/8/8/8/3R4/3QK3 w - -", "d2", "d7", 500},
        {"without her the rook is lost", "3r3k/3r4/8/8/8/8/3R4/4K3 w - -", "d2", "d7", 0},
        {"two rooks against a pawn defended once", "3r2k1/8/8/3p4/8/8/3R4/3RK3 w - -", "d2", "d5", 100},
        {"a knight steps under a pawn", "4k3/8/3p4/8/8/5N2/8/4K3 w - -", "f3", "e5", -325},
        {"a king takes what a bishop defends", "4k3/8/8/8/6b1/8/4p3/4K3 w - -", "e1", "e2", 100 - 9999},
        {"a king takes what nobody defends", "4k3/8/8/8/8/8/4p3/4K3 w - -", "e1", "e2", 100},
        {"a pinned piece defends all the same", "4k3/4n3/8/3p4/4P3/8/8/4R1K1 w - -", "e4", "d5", 0},
        {"a king is taken", "4k3/8/8/8/8/8/8/K3R3 w - -", "e1", "e8", 9999},
    };
    for (const ExchangeRow& row : kRows) {
        const TestPosition pos(row.fen);
        const int from = row.from == nullptr ? NO_SQUARE : SquareNamed(row.from);
        EXPECT_EQ(swapoff1(*pos, pos->stm, from, SquareNamed(row.to), Occupied(*pos)), row.value) << row.name;
    }
}

}  // namespace
}  // namespace vrel
