#include "board/legality.h"

#include "board/attacks.h"
#include "board/fen.h"
#include "support/engine.h"
#include "support/moves.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using AttacksTest = EngineTest;
using LegalityTest = EngineTest;

// The squares that a slider reaches in four directions, walked one by one.
uint64_t SlowAttacks(int sq, uint64_t occ, bool diagonal) {
    constexpr int kSteps[2][4][2] = {{{0, 1}, {0, -1}, {1, 0}, {-1, 0}}, {{1, 1}, {1, -1}, {-1, 1}, {-1, -1}}};
    uint64_t set = 0;
    for (const auto& step : kSteps[diagonal ? 1 : 0]) {
        int file = sq % 8 + step[0];
        int rank = sq / 8 + step[1];
        while (file >= 0 && file < 8 && rank >= 0 && rank < 8) {
            const uint64_t bit = 1ULL << (rank * 8 + file);
            set |= bit;
            if (occ & bit)
                break;
            file += step[0];
            rank += step[1];
        }
    }
    return set;
}

TEST_F(AttacksTest, SlidersReachTheFirstPieceOfEachLine) {
    std::mt19937_64 random(5);
    for (int round = 0; round < 200; ++round) {
        // Thin and dense boards.
        const uint64_t occ = round % 2 ? random() & random() & random() : random();
        for (int sq = 0; sq < 64; ++sq) {
            const uint64_t straight = SlowAttacks(sq, occ, false);
            const uint64_t diagonal = SlowAttacks(sq, occ, true);
            ASSERT_EQ(GenAttacksR(sq, occ), straight) << sq << ' ' << occ;
            ASSERT_EQ(GenAttacksB(sq, occ), diagonal) << sq << ' ' << occ;
            ASSERT_EQ(GetAtakr(sq, BISHOP, occ, occ), diagonal & occ);
            ASSERT_EQ(GetAtakr(sq, ROOK, occ, occ), straight & occ);
            ASSERT_EQ(GetAtakr(sq, QUEEN, occ, occ), (diagonal | straight) & occ);
            ASSERT_EQ(GetAtakr(sq, KNIGHT, occ, occ), BB_KnightRays[static_cast<size_t>(sq)] & occ);
        }
    }
}

TEST_F(AttacksTest, EverySquareIsAttackedAsTheRulesSay) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(1000, 1000)) {
        pos.Set(fen);
        const oracle::Board board = OracleBoard(*pos);
        for (int sq = 0; sq < 64; ++sq) {
            ASSERT_EQ(SqAtakd(*pos, sq, WHITE), oracle::Attacked(board, sq, true)) << fen << ' ' << sq;
            ASSERT_EQ(SqAtakd(*pos, sq, BLACK), oracle::Attacked(board, sq, false)) << fen << ' ' << sq;
        }
    }
}

// Walks from `sq` in all directions: a piece with an enemy slider next behind it is pinned. `queens` tells whether
// queens pin as well.
uint64_t SlowPins(const oracle::Board& board, int sq, bool by_white, bool queens) {
    uint64_t pinned = 0;
    for (int direction = 0; direction < 9; ++direction) {
        const int file = direction % 3 - 1;
        const int rank = direction / 3 - 1;
        if (file == 0 && rank == 0)
            continue;
        const char slider = file != 0 && rank != 0 ? 'b' : 'r';
        int first = NO_SQUARE;
        for (int f = sq % 8 + file, r = sq / 8 + rank; f >= 0 && f < 8 && r >= 0 && r < 8; f += file, r += rank) {
            const char piece = board.squares[static_cast<size_t>(r * 8 + f)];
            if (piece == '.')
                continue;
            if (first == NO_SQUARE) {
                first = r * 8 + f;
                continue;
            }
            const char kind = static_cast<char>(piece | 0x20);
            if (oracle::IsWhite(piece) == by_white && (kind == slider || (queens && kind == 'q')))
                pinned |= Bit(first);
            break;
        }
    }
    return pinned;
}

TEST_F(AttacksTest, PinsAreFoundByWalking) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(1000, 1000)) {
        pos.Set(fen);
        const oracle::Board board = OracleBoard(*pos);
        for (int side = 0; side < 2; ++side) {
            ASSERT_EQ(PinnedToKing(*pos, side), SlowPins(board, KingSquare(*pos, side), side == BLACK, true)) << fen;
            if (CountOf(*pos, side, QUEEN) == 1) {
                const int queen = pos->plist[static_cast<size_t>(side)][QUEEN][0];
                ASSERT_EQ(PinnedToQueen(*pos, side), SlowPins(board, queen, side == BLACK, false)) << fen;
            }
        }
    }
}

TEST_F(LegalityTest, AgreesWithTheRules) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(2000, 2000)) {
        pos.Set(fen);
        const oracle::Board board = OracleBoard(*pos);
        const bool in_check = SqAtakd(*pos, KingSquare(*pos, pos->stm), pos->stm ^ 1);
        const LegalityContext legality = MakeLegalityContext(*pos, pos->stm, in_check);
        // A promotion that a full row undoes is taken for a check that isn't one.
        const LegalityContext false_alarm = MakeLegalityContext(*pos, pos->stm, true);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const bool legal = oracle::IsLegal(board, OracleMove(entry.move));
            const std::string text = fen + ' ' + oracle::MoveText(OracleMove(entry.move));
            ASSERT_EQ(MoveIsLegal(*pos, pos->stm, entry.move), legal) << text;
            ASSERT_EQ(MoveIsLegal(*pos, pos->stm, entry.move, legality), legal) << text;
            ASSERT_EQ(MoveIsLegal(*pos, pos->stm, entry.move, false_alarm), legal) << text;
        }
        EXPECT_FALSE(MoveIsLegal(*pos, pos->stm, NO_MOVE));
        EXPECT_FALSE(MoveIsLegal(*pos, pos->stm, NO_MOVE, legality));
    }
}

struct LegalRow {
    const char* name;
    const char* fen;
    const char* move;
    bool legal;
};

TEST_F(LegalityTest, NamedCases) {
    constexpr LegalRow kRows[] = {
        {"pinned rook along the file", "4r3/8/8/8/4R3/8/8/4K3 w - -", "e4e6", true},
        {"pinned rook off the file", "4r3/8/8/8/4R3/8/8/4K3 w - -", "e4d4", false},
        {"pinned rook takes what pins it", "4r3/8/8/8/4R3/8/8/4K3 w - -", "e4e8", true},
        {"en passant empties the rank", "8/8/8/r2pP2K/8/8/8/4k3 w - d6", "e5d6", false},
        {"long castling past an attacked b1", "1r2k3/8/8/8/8/8/8/R3K3 w Q -", "e1c1", true},
        {"long castling across an attacked d1", "3rk3/8/8/8/8/8/8/R3K3 w Q -", "e1c1", false},
        {"castling into check", "2r1k3/8/8/8/8/8/8/R3K3 w Q -", "e1c1", false},
        {"castling out of check", "4k3/8/8/8/4r3/8/8/R3K2R w KQ -", "e1g1", false},
        {"king takes a defended piece", "4k3/8/8/8/8/5b2/4r3/4K3 w - -", "e1e2", false},
        {"king takes a piece nobody defends", "4k3/8/8/8/8/8/4r3/4K3 w - -", "e1e2", true},
        {"king steps back along the line", "4k3/8/8/8/4r3/4K3/8/8 w - -", "e3e2", false},
    };
    for (const LegalRow& row : kRows) {
        const TestPosition pos(row.fen);
        EXPECT_EQ(MoveIsLegal(*pos, pos->stm, Coord(row.move)), row.legal) << row.name;
    }
}

// What the piece on the to-square attacks by itself: its friends only block.
bool MoverGivesCheck(const oracle::Board& after, int to, int king) {
    const bool white = !after.white_to_move;
    oracle::Board alone = after;
    for (size_t sq = 0; sq < 64; ++sq)
        if (static_cast<int>(sq) != to && alone.squares[sq] != '.' && oracle::IsWhite(alone.squares[sq]) == white)
            alone.squares[sq] = white ? 'X' : 'x';
    return oracle::Attacked(alone, king, white);
}

// The test is a fast one: it doesn't see a rook's check after castling, a discovery through an en passant victim, nor
// along the line that a promoting pawn itself has blocked. A king checks nobody, not even a king beside it.
bool IsKnownGap(const Position& pos, const MoveEntry& entry) {
    const int king = KingSquare(pos, pos.stm ^ 1);
    const uint64_t line = BB_Between(ToSquare(entry.move), king);
    if (TypeOf(entry.piece) == KING && distance(ToSquare(entry.move), king) == 1)
        return true;
    const bool behind_itself = (entry.move & PROMOTION_BITS) && (line & Bit(FromSquare(entry.move)));
    return IsCastling(entry) || IsEnPassant(pos, entry) || behind_itself;
}

TEST_F(LegalityTest, ChecksAreSeenButForTheKnownGaps) {
    TestPosition pos(fen_opn);
    int checks = 0;
    int gaps = 0;
    for (const std::string& fen : ManyPositions(2000, 3000)) {
        pos.Set(fen);
        const oracle::Board board = OracleBoard(*pos);
        const bool white = board.white_to_move;
        if (oracle::InCheck(board, !white))
            continue;
        const CheckContext context = MakeCheckContext(*pos, pos->stm);
        const int king = KingSquare(*pos, pos->stm ^ 1);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const oracle::Board after = oracle::AfterMove(board, OracleMove(entry.move));
            const int seen = MoveGivesCheck(*pos, pos->stm, entry);
            const bool direct = TypeOf(entry.piece) != KING && MoverGivesCheck(after, ToSquare(entry.move), king);
            const int expected = direct ? 1 : oracle::InCheck(after, !white) ? 2 : 0;
            const std::string text = fen + ' ' + oracle::MoveText(OracleMove(entry.move));
            ASSERT_EQ(MoveGivesCheck(*pos, pos->stm, entry, context), seen) << text;
            if (seen == 0 && expected != 0 && IsKnownGap(*pos, entry)) {
                ++gaps;
                continue;
            }
            ASSERT_EQ(seen, expected) << text;
            checks += seen != 0;
        }
    }
    EXPECT_GT(checks, 1000);
    EXPECT_GT(gaps, 0);
}

struct CheckRow {
    const char* name;
    const char* fen;
    Move move;
    int check;
};

TEST_F(LegalityTest, NamedChecks) {
    constexpr CheckRow kRows[] = {
        {"knight off a rook's file", "4k3/8/8/8/4N3/8/8/K3R3 w - -", Coord("e4c3"), 2},
        {"knight off a rook's file, itself checking", "4k3/8/8/8/4N3/8/8/K3R3 w - -", Coord("e4f6"), 1},
        {"promotion to a knight", "8/5P1k/8/8/8/8/8/K7 w - -", Coord("f7f8", PROMOTE_KNIGHT), 1},
        {"promotion to a queen, out of sight", "8/5P1k/8/8/8/8/8/K7 w - -", Coord("f7f8", PROMOTE_QUEEN), 0},
        {"castling isn't seen", "5k2/8/8/8/8/8/8/4K2R w K -", Coord("e1g1"), 0},
        {"a victim's line isn't seen", "8/8/8/k2pP2R/8/8/8/K7 w - d6", Coord("e5d6"), 0},
        {"a promoting pawn's own line isn't seen", "8/4P3/4k3/8/8/8/8/K7 w - -", Coord("e7e8", PROMOTE_QUEEN), 0},
        {"a king discovers", "4k3/8/8/8/8/8/4K3/4R3 w - -", Coord("e2d2"), 2},
        {"a king that stays on the line", "4k3/8/8/8/8/8/4K3/4R3 w - -", Coord("e2e3"), 0},
    };
    for (const CheckRow& row : kRows) {
        const TestPosition pos(row.fen);
        const MoveEntry entry = EntryOf(*pos, row.move);
        EXPECT_EQ(MoveGivesCheck(*pos, pos->stm, entry), row.check) << row.name;
        EXPECT_EQ(MoveGivesCheck(*pos, pos->stm, entry, MakeCheckContext(*pos, pos->stm)), row.check) << row.name;
    }
}

}  // namespace
}  // namespace vrel
