#include "board/generate.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "board/fen.h"
#include "board/legality.h"
#include "support/engine.h"
#include "support/moves.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

using GenerateTest = EngineTest;
using Generator = MoveEntry* (*)(const Position&, int, MoveEntry*);

std::vector<MoveEntry> Generated(const Position& pos, Generator generator) {
    static std::array<MoveEntry, 1024> list;
    MoveEntry* end = generator(pos, pos.stm, list.data());
    return {list.data(), end};
}

MoveEntry* AllPromotions(const Position& pos, int side, MoveEntry* list) {
    return GeneratePromotions(pos, side, true, list);
}
MoveEntry* QueenPromotions(const Position& pos, int side, MoveEntry* list) {
    return GeneratePromotions(pos, side, false, list);
}

std::vector<Move> MovesOf(const std::vector<MoveEntry>& entries) {
    std::vector<Move> moves;
    for (const MoveEntry& entry : entries)
        moves.push_back(entry.move);
    return moves;
}

std::string Texts(const std::vector<MoveEntry>& entries) {
    std::string text;
    for (const MoveEntry& entry : entries)
        text += oracle::MoveText(OracleMove(entry.move)) + ' ';
    return text;
}

TEST_F(GenerateTest, GivesTheMovesOfTheRulesEachOnce) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(2000, 2000)) {
        pos.Set(fen);
        std::vector<oracle::Move> expected = oracle::PseudoLegalMoves(OracleBoard(*pos));
        std::vector<oracle::Move> generated;
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            generated.push_back(OracleMove(entry.move));
            ASSERT_EQ(entry.piece, pos->board[static_cast<size_t>(FromSquare(entry.move))]) << fen;
            ASSERT_EQ(entry.captured, pos->board[static_cast<size_t>(ToSquare(entry.move))]) << fen;
        }
        std::sort(expected.begin(), expected.end());
        std::sort(generated.begin(), generated.end());
        ASSERT_EQ(generated, expected) << fen;
    }
}

TEST_F(GenerateTest, AllIsTheFourKindsOneAfterTheOther) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(500, 500)) {
        pos.Set(fen);
        std::vector<Move> parts;
        for (const Generator generator :
             {&GeneratePawnCaptures, &GeneratePieceCaptures, &AllPromotions, &GenerateNonCaptures})
            for (const Move move : MovesOf(Generated(*pos, generator)))
                parts.push_back(move);
        ASSERT_EQ(MovesOf(AllMoves(pos.get())), parts) << fen;
    }
}

TEST_F(GenerateTest, KindsHoldWhatTheirNameSays) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(500, 500)) {
        pos.Set(fen);
        for (const MoveEntry& entry : Generated(*pos, &GeneratePawnCaptures)) {
            ASSERT_TRUE(entry.captured != 0 || IsEnPassant(*pos, entry)) << fen;
            ASSERT_FALSE(entry.move & PROMOTION_BITS) << fen;
        }
        for (const MoveEntry& entry : Generated(*pos, &GeneratePieceCaptures))
            ASSERT_TRUE(entry.captured != 0 && TypeOf(entry.piece) != PAWN) << fen;
        for (const MoveEntry& entry : Generated(*pos, &AllPromotions))
            ASSERT_TRUE(entry.move & PROMOTION_BITS) << fen;
        for (const MoveEntry& entry : Generated(*pos, &GenerateNonCaptures))
            ASSERT_TRUE(entry.captured == 0 && !(entry.move & PROMOTION_BITS) && !IsEnPassant(*pos, entry)) << fen;
    }
}

TEST_F(GenerateTest, QueensAloneAreEveryFourthPromotion) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(500, 1000)) {
        pos.Set(fen);
        const std::vector<Move> all = MovesOf(Generated(*pos, &AllPromotions));
        const std::vector<Move> queens = MovesOf(Generated(*pos, &QueenPromotions));
        ASSERT_EQ(all.size(), 4 * queens.size()) << fen;
        for (size_t i = 0; i < queens.size(); ++i) {
            const Move plain = static_cast<Move>(queens[i] & ~PROMOTION_BITS);
            ASSERT_EQ(queens[i], plain | PROMOTE_QUEEN);
            ASSERT_EQ(all[4 * i], queens[i]);
            ASSERT_EQ(all[4 * i + 1], plain | PROMOTE_KNIGHT);
            ASSERT_EQ(all[4 * i + 2], plain | PROMOTE_BISHOP);
            ASSERT_EQ(all[4 * i + 3], plain | PROMOTE_ROOK);
        }
    }
}

int PlaceInRow(const Position& pos, const MoveEntry& entry) {
    const auto& row = pos.plist[pos.stm][static_cast<size_t>(TypeOf(entry.piece))];
    return static_cast<int>(std::find(row.begin(), row.end(), FromSquare(entry.move)) - row.begin());
}

// Equal scores are decided by the place in the list, so these orders are part of what the engine plays.
TEST_F(GenerateTest, PieceMovesGoByTypeThenRowThenSquare) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(500, 500)) {
        pos.Set(fen);
        for (const Generator generator : {&GeneratePieceCaptures, &GenerateNonCaptures}) {
            using Place = std::tuple<int, int, int>;
            Place last{};
            for (const MoveEntry& entry : Generated(*pos, generator)) {
                // Of a pawn's two steps the longer comes second; castling comes last of all, the short side first.
                const int type = IsCastling(entry) ? KING + 1 : TypeOf(entry.piece);
                const int to = type == PAWN  ? RelativeRank(pos->stm, ToSquare(entry.move))
                               : type > KING ? -ToSquare(entry.move)
                                             : ToSquare(entry.move);
                const Place place{type, PlaceInRow(*pos, entry), type > KING ? to + 64 : to};
                ASSERT_LT(last, place) << fen << ' ' << oracle::MoveText(OracleMove(entry.move));
                last = place;
            }
        }
    }
}

TEST_F(GenerateTest, PawnCapturesGoByDirectionThenSquare) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(1000, 1000)) {
        pos.Set(fen);
        std::tuple<int, int> last{0, -1};
        for (const MoveEntry& entry : Generated(*pos, &GeneratePawnCaptures)) {
            const int step = std::abs(ToSquare(entry.move) - FromSquare(entry.move));
            const std::tuple<int, int> place{step, FromSquare(entry.move)};
            ASSERT_LT(last, place) << fen;
            last = place;
        }
    }
}

// Direct checks by quiet moves: all but a pawn's double step, and the king's.
bool IsWantedCheck(const Position& pos, const MoveEntry& entry) {
    const bool double_step =
        TypeOf(entry.piece) == PAWN && std::abs(ToSquare(entry.move) - FromSquare(entry.move)) == 16;
    return !double_step && MoveGivesCheck(pos, pos.stm, entry) == 1;
}

TEST_F(GenerateTest, ChecksAreTheQuietMovesThatCheckDirectly) {
    TestPosition pos(fen_opn);
    size_t checks = 0;
    for (const std::string& fen : ManyPositions(2000, 3000)) {
        pos.Set(fen);
        if (oracle::InCheck(OracleBoard(*pos), pos->stm != WHITE))
            continue;
        std::vector<Move> expected;
        for (const MoveEntry& entry : Generated(*pos, &GenerateNonCaptures))
            if (IsWantedCheck(*pos, entry))
                expected.push_back(entry.move);
        // Pawns come by square here and by row there.
        const auto pawns_end = std::stable_partition(expected.begin(), expected.end(), [&](Move move) {
            return TypeOf(pos->board[static_cast<size_t>(FromSquare(move))]) == PAWN;
        });
        std::sort(expected.begin(), pawns_end);
        ASSERT_EQ(MovesOf(Generated(*pos, &GenerateChecks)), expected) << fen;
        checks += expected.size();
    }
    EXPECT_GT(checks, 2000U);
}

TEST_F(GenerateTest, ListsOfTheNextPliesBeginBehindThisOne) {
    TestPosition pos(fen_opn);
    GenerateAll(pos.get());
    const MoveEntry* end = pos->frames[1].first + 20;
    EXPECT_EQ(end->move, END_OF_LIST);
    EXPECT_EQ(pos->frames[2].first, end + 1);
    EXPECT_EQ(pos->frames[3].first, end + 2);
}

TEST_F(GenerateTest, LeavesOrderingFieldsAsTheyWere) {
    TestPosition pos(fen_opn);
    for (int i = 0; i < 30; ++i) {
        pos->frames[1].first[i].sort_value = static_cast<uint8_t>(200 + i);
        pos->frames[1].first[i].flags = static_cast<uint8_t>(100 + i);
    }
    GenerateAll(pos.get());
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(pos->frames[1].first[i].sort_value, 200 + i);
        EXPECT_EQ(pos->frames[1].first[i].flags, 100 + i);
    }
}

struct ListRow {
    const char* name;
    const char* fen;
    Generator generator;
    const char* moves;
};

TEST_F(GenerateTest, NamedLists) {
    const ListRow kRows[] = {
        {"promotions, push first", "1r2k3/P7/8/8/8/8/8/4K3 w - -", &AllPromotions,
         "a7a8q a7a8n a7a8b a7a8r a7b8q a7b8n a7b8b a7b8r "},
        {"queens alone", "1r2k3/P7/8/8/8/8/8/4K3 w - -", &QueenPromotions, "a7a8q a7b8q "},
        {"no quiet moves of a pawn that promotes", "1r6/P7/8/8/8/8/8/7k w - -", &GenerateNonCaptures, ""},
        {"no captures of a pawn that promotes", "1r6/P7/8/8/8/8/8/7k w - -", &GeneratePawnCaptures, ""},
        {"en passant among the captures", "4k3/8/8/3pP3/8/8/8/4K3 w - d6", &GeneratePawnCaptures, "e5d6 "},
        {"black's captures towards the h-file first", "4k3/8/8/8/8/1ppp4/N1N1N3/4K3 b - -", &GeneratePawnCaptures,
         "b3c2 d3e2 b3a2 d3c2 "},
        {"castling through an attacked square", "4k3/8/8/8/8/5r2/8/R3K2R w KQ -", &GenerateNonCaptures,
         "a1b1 a1c1 a1d1 a1a2 a1a3 a1a4 a1a5 a1a6 a1a7 a1a8 h1f1 h1g1 h1h2 h1h3 h1h4 h1h5 h1h6 h1h7 h1h8 "
         "e1d1 e1f1 e1d2 e1e2 e1f2 e1g1 e1c1 "},
    };
    for (const ListRow& row : kRows) {
        const TestPosition pos(row.fen);
        EXPECT_EQ(Texts(Generated(*pos, row.generator)), row.moves) << row.name;
    }
}

TEST_F(GenerateTest, FilterKeepsTheOrderOfWhatIsLegal) {
    TestPosition pos(fen_opn);
    for (const std::string& fen : ManyPositions(300, 300)) {
        pos.Set(fen);
        std::vector<Move> expected;
        for (const MoveEntry& entry : AllMoves(pos.get()))
            if (oracle::IsLegal(OracleBoard(*pos), OracleMove(entry.move)))
                expected.push_back(entry.move);
        RemoveIllegalMoves(*pos, pos->frames[1].first);
        std::vector<Move> kept;
        for (const MoveEntry* entry = pos->frames[1].first; entry->move != END_OF_LIST; ++entry)
            kept.push_back(entry->move);
        ASSERT_EQ(kept, expected) << fen;
    }
}

TEST_F(GenerateTest, PickTakesTheFirstOfTheHighest) {
    std::vector<MoveEntry> list = {
        {10, 0, 0, 5, 0}, {11, 0, 0, 200, 0}, {12, 0, 0, 127, 0}, {13, 0, 0, 200, 0}, {END_OF_LIST, 0, 0, 255, 0}};
    PickNextMove(list.data());
    EXPECT_EQ(MovesOf(list), (std::vector<Move>{11, 10, 12, 13, END_OF_LIST}));
    PickNextMove(list.data() + 1);
    EXPECT_EQ(MovesOf(list), (std::vector<Move>{11, 13, 12, 10, END_OF_LIST}));
}

TEST_F(GenerateTest, PickLeavesEqualsAndEmptyListsAlone) {
    std::vector<MoveEntry> equal = {{10, 0, 0, 7, 0}, {11, 0, 0, 7, 0}, {END_OF_LIST, 0, 0, 0, 0}};
    PickNextMove(equal.data());
    EXPECT_EQ(MovesOf(equal), (std::vector<Move>{10, 11, END_OF_LIST}));
    MoveEntry empty = {END_OF_LIST, 0, 0, 0, 0};
    PickNextMove(&empty);
    EXPECT_EQ(empty.move, END_OF_LIST);
}

}  // namespace
}  // namespace vrel
