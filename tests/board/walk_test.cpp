// The board against the rules: positions of every kind, and all that is asked of their squares and moves.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "board/attacks.h"
#include "board/exchange.h"
#include "board/fen.h"
#include "board/generate.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/move_kind.h"
#include "search/mate_test.h"
#include "search/ordering.h"
#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

bool IsEnPassant(const Position& pos, const MoveEntry& entry) {
    return TypeOf(entry.piece) == PAWN && entry.captured == 0 && ToSquare(entry.move) == pos.ep_square;
}

// What the piece on the to-square attacks by itself: its friends only block.
bool MoverGivesCheck(oracle::Board after, int to, int king) {
    const bool white = !after.white_to_move;
    for (int sq = 0; sq < 64; ++sq) {
        char& piece = after.squares[static_cast<size_t>(sq)];
        if (sq != to && piece != '.' && oracle::IsWhite(piece) == white)
            piece = 'x';
    }
    return oracle::Attacked(after, king, white);
}

// The question is a quick one: it doesn't see a rook's check after castling, a discovery through an en passant victim,
// nor along the line that a promoting pawn itself has blocked. A king checks nobody.
bool IsKnownGap(const Position& pos, const MoveEntry& entry) {
    const int king = KingSquare(pos, pos.stm ^ 1);
    const int to = ToSquare(entry.move);
    const bool behind_itself =
        (entry.move & PROMOTION_BITS) != 0 && (BB_Between(to, king) & Bit(FromSquare(entry.move))) != 0;
    return (TypeOf(entry.piece) == KING && distance(to, king) == 1) || MoveIsCastle(entry) || IsEnPassant(pos, entry) ||
           behind_itself;
}

// A check by the move, asked plainly and with what is known of the position; 2 for a discovered one.
void ExpectCheck(const Position& pos, const MoveEntry& entry, const oracle::Board& after) {
    const int king = KingSquare(pos, pos.stm ^ 1);
    const int seen = MoveGivesCheck(pos, pos.stm, entry);
    const bool direct = TypeOf(entry.piece) != KING && MoverGivesCheck(after, ToSquare(entry.move), king);
    const int expected = direct ? 1 : oracle::InCheck(after, after.white_to_move) ? 2 : 0;
    EXPECT_EQ(MoveGivesCheck(pos, pos.stm, entry, MakeCheckContext(pos, pos.stm)), seen);
    EXPECT_TRUE(seen == expected || (seen == 0 && IsKnownGap(pos, entry))) << seen << expected;
    EXPECT_TRUE(seen == expected || CheckAfter(pos, entry, seen) == CHECK_UNKNOWN || TypeOf(entry.piece) == KING);
}

// Quiet moves that check directly, but for double steps and the king, in their order; pawns by square.
void ExpectChecksGenerated(Position* pos, const std::vector<MoveEntry>& moves) {
    std::vector<Move> pawns, expected, generated;
    for (const MoveEntry& entry : moves) {
        const bool pawn = TypeOf(entry.piece) == PAWN;
        const bool step = pawn && std::abs(ToSquare(entry.move) - FromSquare(entry.move)) == 8;
        if (entry.captured == 0 && !(entry.move & PROMOTION_BITS) && (step || !pawn) &&
            MoveGivesCheck(*pos, pos->stm, entry) == 1)
            (pawn ? pawns : expected).push_back(entry.move);
    }
    std::sort(pawns.begin(), pawns.end());
    expected.insert(expected.begin(), pawns.begin(), pawns.end());
    std::array<MoveEntry, 256> list;
    const MoveEntry* end = GenerateChecks(*pos, pos->stm, list.data());
    for (const MoveEntry* entry = list.data(); entry != end; ++entry)
        generated.push_back(entry->move);
    EXPECT_EQ(generated, expected);
}

// Making a move leads to the board that the rules say, taking it back to what was before.
void ExpectMadeAndTakenBack(Position* pos, Move move, const oracle::Board* after) {
    const Position before = *pos;
    MakeMove(pos, move);
    ASSERT_TRUE(PositionIsConsistent(*pos));
    Position keys = *pos;
    SetHash(&keys);
    ASSERT_TRUE(SamePosition(*pos, keys)) << "the keys are those of the board";
    ASSERT_EQ(pos->last_move, move);
    if (after != nullptr) {
        ASSERT_EQ(OracleBoard(*pos), *after);
    }
    UnmakeMove(pos);
    ASSERT_TRUE(SamePosition(*pos, before));
}

void ExpectNullMove(Position* pos) {
    const Position before = *pos;
    MakeNullMove(pos);
    EXPECT_EQ(pos->last_move + pos->fifty, 0);
    EXPECT_EQ(pos->undo[pos->game_ply - 1].move, NO_MOVE);
    oracle::Board expected = OracleBoard(before);
    expected.white_to_move = !expected.white_to_move;
    expected.en_passant = oracle::NOWHERE;
    expected.quiet_plies = 0;
    EXPECT_EQ(OracleBoard(*pos), expected);
    UnmakeNullMove(pos);
    EXPECT_TRUE(SamePosition(*pos, before));
}

void Visit(const TestPosition& pos, const std::string& fen) {
    SCOPED_TRACE(fen);
    const int side = pos->stm;
    const oracle::Board board = OracleBoard(*pos);
    const bool in_check = oracle::InCheck(board, side == WHITE);
    for (int sq = 0; sq < 64; ++sq)
        for (const int by : {WHITE, BLACK})
            EXPECT_EQ(SqAtakd(*pos, sq, by), oracle::Attacked(board, sq, by == WHITE)) << sq;
    const std::vector<MoveEntry> moves = AllMoves(pos.get());
    std::vector<oracle::Move> expected = oracle::PseudoLegalMoves(board), generated;
    for (const MoveEntry& entry : moves)
        generated.push_back(OracleMove(entry.move));
    std::sort(expected.begin(), expected.end());
    std::sort(generated.begin(), generated.end());
    ASSERT_EQ(generated, expected);

    const LegalityContext legality = MakeLegalityContext(*pos, side, in_check);
    std::vector<Move> legal;
    for (const MoveEntry& entry : moves) {
        const oracle::Move move = OracleMove(entry.move);
        SCOPED_TRACE(oracle::MoveText(move));
        oracle::Board after = oracle::AfterMove(board, move);
        if (MoveIsCastle(entry))
            after.quiet_plies = 0;  // as no rule demands
        EXPECT_EQ(entry.piece, pos->board[static_cast<size_t>(move.from)]);
        EXPECT_EQ(entry.captured, pos->board[static_cast<size_t>(move.to)]);
        const bool allowed = oracle::IsLegal(board, move);
        EXPECT_EQ(MoveIsLegal(*pos, side, entry.move), allowed);
        EXPECT_EQ(MoveIsLegal(*pos, side, entry.move, legality), allowed);
        if (allowed)
            legal.push_back(entry.move);
        if (!oracle::InCheck(board, side != WHITE))
            ExpectCheck(*pos, entry, after);
        ExpectMadeAndTakenBack(pos.get(), entry.move, &after);
    }
    EXPECT_FALSE(MoveIsLegal(*pos, side, NO_MOVE));
    if (!oracle::InCheck(board, side != WHITE))
        ExpectChecksGenerated(pos.get(), moves);
    ExpectNullMove(pos.get());
    GenerateAll(pos.get());
    MoveEntry* list = pos->frames[1].first;
    RemoveIllegalMoves(*pos, list);
    for (const Move move : legal)
        EXPECT_EQ((list++)->move, move);
    EXPECT_EQ(list->move, END_OF_LIST);
    EXPECT_EQ(IsMate(pos.get(), in_check), !legal.empty() ? 0 : in_check ? 1 : 2);
}

TEST(Walk, FollowsTheRules) {
    TestPosition pos(fen_opn);
    InitMoveOrderingTables(pos.thread());
    for (const std::string& fen : ManyPositions(1500, 1500)) {
        pos.Set(fen);
        EXPECT_EQ(FenOf(*pos), fen);
        EXPECT_EQ(oracle::WriteFen(OracleBoard(*pos)), fen);
        EXPECT_TRUE(PositionIsConsistent(*pos)) << fen;
        Visit(pos, fen);
        if (::testing::Test::HasFailure())
            return;
    }
}

// Whatever a board holds, and whatever a table entry may hold for another position: what passes the least test can be
// made and taken back, and any question has an answer.
TEST(Walk, BreaksNothingOnAbsurdBoards) {
    TestPosition pos(fen_opn);
    std::vector<std::string> fens = ReadPositions("boards.txt");
    for (uint32_t seed = 0; seed < 800; ++seed)
        fens.push_back(AnySetup(seed));
    std::mt19937 random(1);
    for (const std::string& fen : fens) {
        SCOPED_TRACE(fen);
        pos.Set(fen);
        ASSERT_TRUE(PositionIsConsistent(*pos));
        const Position read = *pos;
        pos.Set(FenOf(read));
        ASSERT_TRUE(SamePosition(*pos, read));
        const LegalityContext legality = MakeLegalityContext(*pos, pos->stm, random() % 2 != 0);
        const CheckContext checks = MakeCheckContext(*pos, pos->stm);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            ASSERT_TRUE(MoveCanBeMade(*pos, entry.move));
            MoveIsLegal(*pos, pos->stm, entry.move, legality);
            MoveGivesCheck(*pos, pos->stm, entry, checks);
            MoveIsThreat(*pos, entry);
            MoveIsSafe(*pos, entry);
            ExpectMadeAndTakenBack(pos.get(), entry.move, nullptr);
        }
        for (int i = 0; i < 1000; ++i) {
            const auto move = static_cast<Move>(random());
            const int bits = move & PROMOTION_BITS;
            if ((bits & (bits - 1)) == 0 && MoveCanBeMade(*pos, move))
                ExpectMadeAndTakenBack(pos.get(), move, nullptr);
        }
        ExpectNullMove(pos.get());
        if (::testing::Test::HasFailure())
            return;
    }
}

// With fifteen knights on the board the pawn stays a pawn, which gives no check.
TEST(Walk, AnnouncesNoCheckByAPieceThatFindsNoRoom) {
    TestPosition pos("8/P1k5/8/8/8/8/NNNNNNNK/NNNNNNNN w - -");
    const Move move = MakeMoveValue(48, 56) | PROMOTE_KNIGHT;
    const MoveEntry entry = {move, PieceCode(WHITE, PAWN), NO_PIECE, 0, 0};
    const bool check = MoveGivesCheck(*pos, WHITE, entry) != NO_CHECK;
    EXPECT_TRUE(check);
    EXPECT_EQ(CheckAfter(*pos, entry, check), CHECK_UNKNOWN);
    MakeMove(pos.get(), move);
    EXPECT_FALSE(SqAtakd(*pos, KingSquare(*pos, BLACK), WHITE));
}

TEST(Walk, LetsOnlyOwnPiecesMoveAndOnlyPawnsPromote) {
    const TestPosition pos(fen_opn);
    EXPECT_TRUE(MoveCanBeMade(*pos, MakeMoveValue(12, 28)));
    for (const Move move : {MakeMoveValue(52, 36), MakeMoveValue(20, 28), MakeMoveValue(0, 8)})
        EXPECT_FALSE(MoveCanBeMade(*pos, move)) << move;
    EXPECT_FALSE(MoveCanBeMade(*pos, MakeMoveValue(1, 18) | PROMOTE_QUEEN));
}

TEST(Walk, WhatIsSetUpHasNoPast) {
    TestPosition pos("r3k3/8/8/8/8/8/8/4K2R w - -");
    for (const Move move : {MakeMoveValue(7, 15), MakeMoveValue(56, 48)})
        PlayGameMove(pos.get(), move);
    pos.Set(fen_opn);
    EXPECT_TRUE(SamePosition(*pos, *TestPosition(fen_opn)));
}

// A game far beyond the undo stack: the newest past is kept, and enough of it for any repetition.
TEST(Walk, LongGamesKeepTheirRecentPast) {
    TestPosition pos("r3k3/8/8/8/8/8/8/4K2R w - -");
    const std::array<Move, 4> cycle = {MakeMoveValue(7, 15), MakeMoveValue(56, 48), MakeMoveValue(15, 7),
                                       MakeMoveValue(48, 56)};
    std::array<uint64_t, 4> keys{};
    for (size_t i = 0; i < 3000; ++i) {
        if (i < 4)
            keys[i] = pos->hash;
        PlayGameMove(pos.get(), cycle[i % 4]);
        ASSERT_LT(pos->game_ply, UNDO_RECORDS - FRAMES);
        for (int back = 1; back <= std::min<int>(pos->game_ply, 110); ++back)
            ASSERT_EQ(pos->undo[pos->game_ply - back].hash, keys[(i + 5 - static_cast<size_t>(back % 4)) % 4]);
    }
    EXPECT_GE(pos->game_ply, 110);
    TakeBackGameMove(pos.get());
    EXPECT_EQ(pos->hash, keys[3]);
    EXPECT_EQ(pos->undo[pos->game_ply].move, cycle[3]) << "what is taken back stays ahead";
}

}  // namespace
}  // namespace vrel
