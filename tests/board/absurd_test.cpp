// Boards that no game reaches: nothing may break, and everything made is taken back.
#include "board/attacks.h"
#include "board/exchange.h"
#include "board/fen.h"
#include "board/generate.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/move_kind.h"
#include "support/engine.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using AbsurdTest = EngineTest;

// Asks everything that can be asked of a move.
int AskAll(const Position& pos, const MoveEntry& entry) {
    const CheckContext context = MakeCheckContext(pos, pos.stm);
    const LegalityContext legality = MakeLegalityContext(pos, pos.stm, false);
    return MoveGivesCheck(pos, pos.stm, entry) + MoveGivesCheck(pos, pos.stm, entry, context) +
           MoveIsLegal(pos, pos.stm, entry.move, legality) + MoveIsSafe(pos, entry) + MoveIsThreat(pos, entry) +
           MoveIsPawnPush(pos, pos.stm, entry) + MoveIsCastle(entry) +
           swapoff1(pos, pos.stm, FromSquare(entry.move), ToSquare(entry.move), Occupied(pos));
}

int AskAll(const Position& pos) {
    int sum = 0;
    for (int side = 0; side < 2; ++side) {
        for (int sq = 0; sq < 64; ++sq)
            sum += SqAtakd(pos, sq, side) + swapoff1(pos, side, NO_SQUARE, sq, Occupied(pos));
        sum += CountBits(PinnedToKing(pos, side));
        sum += SqAtakd(pos, KingSquare(pos, side), side ^ 1);
        if (CountOf(pos, side, QUEEN) == 1)
            sum += CountBits(PinnedToQueen(pos, side));
    }
    MoveEntry list[1024];
    return sum + static_cast<int>(GenerateChecks(pos, pos.stm, list) - list);
}

void WalkTree(Position* pos, int depth) {
    const Position before = *pos;
    AskAll(before);
    const std::vector<MoveEntry> moves = AllMoves(pos);
    ASSERT_LT(moves.size(), static_cast<size_t>(MOVE_STACK_RESERVE));
    for (const MoveEntry& entry : moves) {
        AskAll(*pos, entry);
        ASSERT_TRUE(MoveCanBeMade(*pos, entry.move)) << FenOf(before) << ' ' << entry.move;
        MakeMove(pos, entry.move);
        ASSERT_TRUE(PositionIsConsistent(*pos)) << FenOf(before) << ' ' << entry.move;
        Position keys = *pos;
        SetHash(&keys);
        ASSERT_EQ(keys.hash, pos->hash) << FenOf(before) << ' ' << entry.move;
        if (depth > 1)
            WalkTree(pos, depth - 1);
        UnmakeMove(pos);
        ASSERT_TRUE(SamePosition(*pos, before)) << FenOf(before) << ' ' << entry.move;
        if (::testing::Test::HasFatalFailure())
            return;
    }
}

TEST_F(AbsurdTest, EverythingIsTakenBack) {
    TestPosition pos(fen_opn);
    for (const NamedPosition& row : kAbsurdPositions) {
        SCOPED_TRACE(row.name);
        pos.Set(row.fen);
        ASSERT_TRUE(PositionIsConsistent(*pos));
        WalkTree(pos.get(), 2);
    }
}

// Boards of any letters on any square, with any rights and any en passant square.
std::string AnySetup(std::mt19937* random) {
    std::string fen;
    const size_t density = 1 + RandomBelow(random, 8);
    for (int rank = 0; rank < 8; ++rank) {
        for (int file = 0; file < 8; ++file)
            fen += RandomBelow(random, density) == 0 ? "PNBRQKpnbrqk"[RandomBelow(random, 12)] : '1';
        fen += rank < 7 ? '/' : ' ';
    }
    fen += RandomBelow(random, 2) == 0 ? "w " : "b ";
    for (const char right : {'K', 'Q', 'k', 'q'})
        if (RandomBelow(random, 2) == 0)
            fen += right;
    return fen + "- " + static_cast<char>('a' + RandomBelow(random, 8)) +
           static_cast<char>('1' + RandomBelow(random, 8));
}

TEST_F(AbsurdTest, RandomBoardsTakeEverythingBack) {
    TestPosition pos(fen_opn);
    std::mt19937 random(99);
    for (int round = 0; round < 1500; ++round) {
        const std::string fen = AnySetup(&random);
        SCOPED_TRACE(fen);
        pos.Set(fen);
        ASSERT_TRUE(PositionIsConsistent(*pos));
        WalkTree(pos.get(), 1);
    }
}

// Whatever a table entry may hold for another position: what passes the least test can be made and taken back.
TEST_F(AbsurdTest, AnyMoveValueThatCanBeMadeIsTakenBack) {
    TestPosition pos(fen_opn);
    std::mt19937 random(100);
    for (int round = 0; round < 300; ++round) {
        pos.Set(round % 2 ? AnySetup(&random) : RandomSetup(static_cast<uint32_t>(round)));
        const Position before = *pos;
        for (unsigned value = 1; value < 0x10000; value += 7) {
            const Move move = static_cast<Move>(value);
            if ((move & PROMOTION_BITS) & ((move & PROMOTION_BITS) - 1))
                continue;
            if (!MoveCanBeMade(*pos, move))
                continue;
            MakeMove(pos.get(), move);
            ASSERT_TRUE(PositionIsConsistent(*pos)) << FenOf(before) << ' ' << move;
            UnmakeMove(pos.get());
            ASSERT_TRUE(SamePosition(*pos, before)) << FenOf(before) << ' ' << move;
        }
    }
}

}  // namespace
}  // namespace vrel
