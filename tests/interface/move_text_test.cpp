#include "interface/move_text.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/generate.h"
#include "board/legality.h"
#include "interface/pblock.h"
#include "support/engine.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

class MoveTextTest : public EngineTest {
protected:
    void SetUp() override { PBlock.mode = MODE_CONSOLE; }
    void TearDown() override { PBlock.mode = MODE_UCI; }
};

std::string Text(Move move) {
    MoveText text;
    return MoveToStr(move, text.data());
}

// The move that reads so in coordinates, from the list of the game record.
Move FindMove(const std::string& coordinates) {
    for (const MoveEntry& entry : AllMoves(GamePosition()))
        if (Text(entry.move) == coordinates)
            return entry.move;
    return NO_MOVE;
}

std::vector<std::string> FormsOf(Move move) {
    MoveText coord, san, file_form, rank_form;
    GenMoveStrings(*GamePosition(), move, coord.data(), san.data(), file_form.data(), rank_form.data());
    return {coord.data(), san.data(), file_form.data(), rank_form.data()};
}

struct Reading {
    int valid;
    std::string move;        // in coordinates, "null" for none
    std::string normalised;  // what became of the text
    int printed = 0;         // how often a text was called ambiguous, where that is known
};

Reading Read(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.resize(text.size() + 2);
    Move move = 1;
    const int valid = IsValidMove(buffer.data(), &move);
    return {valid, Text(move), buffer.data()};
}

std::string PrintedWhileReading(const std::string& text) {
    testing::internal::CaptureStdout();
    Read(text);
    return testing::internal::GetCapturedStdout();
}

TEST_F(MoveTextTest, CoordinatesInBothModes) {
    const Move e7e8 = MakeMoveValue(52, 60);
    const struct {
        Move move;
        const char* console;
        const char* uci;
    } rows[] = {
        {NO_MOVE, "null", "null"},
        {MakeMoveValue(12, 28), "e2e4", "e2e4"},
        {MakeMoveValue(63, 0), "h8a1", "h8a1"},
        {static_cast<Move>(e7e8 | PROMOTE_QUEEN), "e7e8=Q", "e7e8q"},
        {static_cast<Move>(e7e8 | PROMOTE_KNIGHT), "e7e8=N", "e7e8n"},
        {static_cast<Move>(e7e8 | PROMOTE_BISHOP), "e7e8=B", "e7e8b"},
        {static_cast<Move>(e7e8 | PROMOTE_ROOK), "e7e8=R", "e7e8r"},
    };
    for (const auto& row : rows) {
        PBlock.mode = MODE_CONSOLE;
        EXPECT_EQ(Text(row.move), row.console);
        PBlock.mode = MODE_UCI;
        EXPECT_EQ(Text(row.move), row.uci);
    }
}

TEST_F(MoveTextTest, FourFormsOfAMove) {
    using Forms = std::vector<std::string>;
    const struct {
        const char* name;
        const char* fen;
        const char* move;
        Forms forms;
    } rows[] = {
        {"pawn step", fen_opn, "e2e4", {"e2e4", "e4", "", ""}},
        {"pawn takes", "4k3/8/8/3p4/4P3/8/8/4K3 w - -", "e4d5", {"e4d5", "exd5", "ed", ""}},
        {"en passant", "4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6", {"e5d6", "exd6", "ed", ""}},
        {"promotion", "8/4P3/8/8/k7/8/8/4K3 w - -", "e7e8=N", {"e7e8=N", "e8=N", "=N", ""}},
        {"promotion with check", "k7/4P3/8/8/8/8/8/4K3 w - -", "e7e8=Q", {"e7e8=Q+", "e8=Q+", "=Q+", "+"}},
        {"promotion takes", "3n4/4P3/8/8/k7/8/8/4K3 w - -", "e7d8=R", {"e7d8=R", "exd8=R", "ed=R", ""}},
        {"pawn check", "8/8/3k4/8/4P3/8/8/4K3 w - -", "e4e5", {"e4e5+", "e5+", "+", "+"}},
        {"knight", fen_opn, "g1f3", {"g1f3", "Nf3", "Ngf3", "N1f3"}},
        {"knight takes", "4k3/8/8/8/8/5p2/8/4K1N1 w - -", "g1f3", {"g1f3", "Nxf3", "Ngxf3", "N1xf3"}},
        {"rival on the file", "4k3/8/8/6N1/8/8/8/4K1N1 w - -", "g1f3", {"g1f3", "N1f3", "Ngf3", "N1f3"}},
        {"rival on the rank", "4k3/8/8/8/8/8/8/2N1K1N1 w - -", "g1e2", {"g1e2", "Nge2", "Nge2", "N1e2"}},
        {"rivals on both", "7k/8/8/8/Q6Q/8/8/Q3K3 w - -", "a4d4", {"a4d4+", "Q4d4+", "Qad4+", "Q4d4+"}},
        {"rival elsewhere", "4k3/8/8/8/8/5N2/8/1N2K3 w - -", "b1d2", {"b1d2", "Nd2", "Nbd2", "N1d2"}},
        {"pinned rival", "k7/8/8/b7/8/2N5/8/2N1K3 w - -", "c1e2", {"c1e2", "N1e2", "Nce2", "N1e2"}},
        {"rival behind a piece", "4k3/8/8/8/8/8/4K3/RP5R w - -", "h1c1", {"h1c1", "Rc1", "Rhc1", "R1c1"}},
        {"rival behind the mover", "4k3/8/8/8/8/8/4K3/R2R4 w - -", "d1f1", {"d1f1", "Rf1", "Rdf1", "R1f1"}},
        {"king", "4k3/8/8/8/8/8/8/4K3 w - -", "e1e2", {"e1e2", "Ke2", "Kee2", "K1e2"}},
        {"short", "4k3/8/8/8/8/8/8/4K2R w K -", "e1g1", {"e1g1", "o-o", "O-O", "0-0"}},
        {"long", "r3k3/8/8/8/8/8/8/4K3 b q -", "e8c8", {"e8c8", "o-o-o", "O-O-O", "0-0-0"}},
        {"uncovered check", "4k3/8/8/8/4N3/8/8/4RK2 w - -", "e4c5", {"e4c5+", "Nc5+", "Nec5+", "N4c5+"}},
    };
    for (const auto& row : rows) {
        SetPosition(GamePosition(), row.fen);
        const Move move = FindMove(row.move);
        ASSERT_NE(move, NO_MOVE) << row.name;
        EXPECT_EQ(FormsOf(move), row.forms) << row.name;
        PBlock.mode = MODE_UCI;  // the forms are the same there
        EXPECT_EQ(FormsOf(move), row.forms) << row.name;
        PBlock.mode = MODE_CONSOLE;
    }
}

constexpr const char* kCastling = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";
constexpr const char* kPromotion = "3n4/4P3/8/8/k7/8/8/4K3 w - -";
constexpr const char* kKnights = "4k3/8/8/8/8/5N2/8/1N2K3 w - -";
constexpr const char* kRooks = "4k3/8/8/8/8/8/4K3/R6R w - -";
constexpr const char* kQueens = "6k1/8/8/Q6Q/8/8/8/Q3K3 w - -";

TEST_F(MoveTextTest, ReadsTexts) {
    const struct {
        const char* fen;
        const char* text;
        const char* move;  // null: not accepted
        const char* normalised;
    } rows[] = {
        {fen_opn, "e2e4", "e2e4", "e2e4"},
        {fen_opn, "e4", "e2e4", "e4"},
        {fen_opn, "e4+", "e2e4", "e4"},
        {fen_opn, "e4+garbage+", "e2e4", "e4"},
        {fen_opn, "Nf3", "g1f3", "Nf3"},
        {fen_opn, "Ngf3", "g1f3", "Ngf3"},
        {fen_opn, "N1f3", "g1f3", "N1f3"},
        {fen_opn, "g1f3", "g1f3", "g1f3"},
        {fen_opn, "nf3", nullptr, "nf3"},
        {fen_opn, "Nxf3", nullptr, "Nxf3"},
        {fen_opn, "Ng1f3", nullptr, "Ng1f3"},
        {fen_opn, "Pe4", nullptr, "Pe4"},
        {fen_opn, "e4!", nullptr, "e4!"},
        {fen_opn, "e4#", nullptr, "e4#"},
        {fen_opn, "E4", nullptr, "E4"},
        {fen_opn, "e5", nullptr, "e5"},
        {fen_opn, "e1e2", nullptr, "e1e2"},
        {fen_opn, "e2-e4", nullptr, "e2-e4"},
        {fen_opn, "", nullptr, ""},
        {fen_opn, "q", nullptr, "=Q"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3 w - -", "cd", "c4d5", "cd"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3 w - -", "ed", "e4d5", "ed"},
        {"4k3/8/8/3p4/2P1P3/8/8/4K3 w - -", "exd5", "e4d5", "exd5"},
        {"4k3/8/8/1p6/P7/8/8/4K3 w - -", "ab", nullptr, "a=B"},  // read as a promotion
        {"4k3/8/8/1p6/P7/8/8/4K3 w - -", "axb5", "a4b5", "axb5"},
        {kCastling, "O-O", "e1g1", "o-o"},
        {kCastling, "0-0", "e1g1", "o-o"},
        {kCastling, "o-o", "e1g1", "o-o"},
        {kCastling, "O-0-o", "e1c1", "o-o-o"},
        {kCastling, "e1c1", "e1c1", "e1c1"},
        {kCastling, "Kg1", nullptr, "Kg1"},
        {kCastling, "O-O-O-O", nullptr, "o-o-o-o"},
        {kPromotion, "e7e8q", "e7e8=Q", "e7e8=Q"},
        {kPromotion, "e7e8Q", "e7e8=Q", "e7e8=Q"},
        {kPromotion, "e7e8=q", "e7e8=Q", "e7e8=Q"},
        {kPromotion, "e7e8=Q", "e7e8=Q", "e7e8=Q"},
        {kPromotion, "e8n", "e7e8=N", "e8=N"},
        {kPromotion, "exd8=R+", "e7d8=R", "exd8=R"},
        {kPromotion, "edb", "e7d8=B", "ed=B"},
        {kPromotion, "b", "e7e8=B", "=B"},
        {kPromotion, "e8", nullptr, "e8"},
        {kPromotion, "e7e8", nullptr, "e7e8"},
        {kPromotion, "e8=K", nullptr, "e8=K"},
        {kPromotion, "e8==Q", nullptr, "e8==Q"},
        {kPromotion, "=", nullptr, "="},
        {kKnights, "Nbd2", "b1d2", "Nbd2"},
        {kKnights, "N3d2", "f3d2", "N3d2"},
        {kRooks, "Rad1", "a1d1", "Rad1"},
        {kRooks, "Rhd1", "h1d1", "Rhd1"},
        {kRooks, "Rd1", nullptr, "Rd1"},
        {"k7/8/8/b7/8/2N5/8/6N1 w - -", "Ne2", nullptr, "Ne2"},   // either knight may go
        {"k7/8/8/b7/8/2N5/8/4K1N1 w - -", "Ne2", "g1e2", "Ne2"},  // one of them is pinned
        {"4k3/8/8/8/8/p7/P7/4K3 w - -", "", nullptr, ""},
        {"4k3/8/8/8/p7/8/P7/4K3 w - -", "", "a2a3", ""},  // an empty form of the only pawn move
        {"4k3/8/8/8/p7/8/P7/4K3 w - -", "+", "a2a3", ""},
    };
    for (const auto& row : rows) {
        SetPosition(GamePosition(), row.fen);
        const Reading got = Read(row.text);
        EXPECT_EQ(got.valid, row.move != nullptr) << row.text;
        EXPECT_EQ(got.normalised, row.normalised) << row.text;
        if (row.move != nullptr) {
            EXPECT_EQ(got.move, row.move) << row.text;
        }
    }
}

TEST_F(MoveTextTest, TellsOfExactlyTwoMatches) {
    const struct {
        const char* fen;
        const char* text;
        const char* printed;
    } rows[] = {
        {kKnights, "Nd2", "ambiguous move\n"},
        {kRooks, "R1d1", "ambiguous move\n"},
        {kRooks, "Rd1", ""},  // no form of either rook
        {kRooks, "Ra1d1", ""},
        {kQueens, "Qd1", "ambiguous move\n"},  // from a1 and h5
        {kQueens, "Qad5", ""},                 // from a5 alone
        {"8/k7/4N3/1N6/5N2/8/8/7K w - -", "Nd4", "ambiguous move\n"},
        {"8/k7/8/2N1N3/1N6/8/8/7K w - -", "Nd3", ""},  // all three have marks but the one on b4
        {"7k/8/4N3/1N6/8/5N2/8/K7 w - -", "Nd4", ""},  // three
    };
    for (const auto& row : rows) {
        SetPosition(GamePosition(), row.fen);
        EXPECT_EQ(PrintedWhileReading(row.text), row.printed) << row.fen << " " << row.text;
    }
}

TEST_F(MoveTextTest, ThreeMatchesAreRefusedInSilence) {
    // Three knights, no two of them on one line.
    SetPosition(GamePosition(), "7k/8/4N3/1N6/8/5N2/8/K7 w - -");
    const Reading got = Read("Nd4");
    EXPECT_EQ(got.valid, 0);
    EXPECT_NE(got.move, "null");
}

TEST_F(MoveTextTest, ReadsTextsOfAnyLength) {
    SetPosition(GamePosition(), fen_opn);
    for (const size_t length : {7U, 8U, 15U, 16U, 17U, 255U, 100000U})
        for (const char c : {'e', '0', '=', 'q', '\x80', '\xff'}) {
            const Reading got = Read(std::string(length, c));
            EXPECT_EQ(got.valid, 0) << length << c;
            EXPECT_EQ(got.move, "null") << length << c;
        }
    EXPECT_EQ(Read("e4+" + std::string(100000, 'x')).move, "e2e4");
}

TEST_F(MoveTextTest, ReadingLeavesThePositionAlone) {
    SetPosition(GamePosition(), kCastling);
    const Position before = *GamePosition();
    Read("O-O");
    Read("nonsense");
    EXPECT_TRUE(SamePosition(*GamePosition(), before));
}

// The reader as it is defined: write every form of every move and compare.
Reading ReadSlowly(std::string text) {
    Position* pos = GamePosition();
    text = text.substr(0, text.find('+'));
    if (!text.empty()) {
        const char last = static_cast<char>(std::toupper(static_cast<unsigned char>(text.back())));
        if (std::string("BNQR").find(last) != std::string::npos) {
            const bool marked = text.size() >= 2 && text[text.size() - 2] == '=';
            text = text.substr(0, text.size() - 1) + (marked ? "" : "=") + last;
        }
    }
    for (char& c : text)
        if (c == 'O' || c == '0')
            c = 'o';
    int count = 0;
    Move found = NO_MOVE;
    for (const MoveEntry& entry : AllMoves(pos)) {
        bool equal = false;
        for (const std::string& form : FormsOf(entry.move))
            equal = equal || form.substr(0, form.find('+')) == text;
        if (equal && MoveIsLegal(*pos, pos->stm, entry.move)) {
            found = entry.move;
            ++count;
        }
    }
    return {count == 1, Text(found), text, count == 2 ? 1 : 0};
}

// The same by its parts: the legal moves that have all of them, of which there must be one.
Reading ReadPartsSlowly(const std::string& text) {
    static const std::regex parts("([KQRBNP]?)([a-h]?)([1-8]?)[-x:]?([a-h][1-8])=?([QRBNqrbn]?)");
    std::smatch part;
    const std::string word = text.substr(0, text.find('+'));
    if (!std::regex_match(word, part, parts))
        return {0, "null", ""};
    const std::string from = part.str(2) + part.str(3);
    Position* pos = GamePosition();
    std::vector<Move> found;
    for (const MoveEntry& entry : AllMoves(pos)) {
        const std::string move = Text(entry.move);  // "e7e8=Q"
        const char letter = " PNBRQK"[TypeOf(entry.piece)];
        const bool is_push = letter != 'P' || move[0] == move[2];
        const bool castles = letter == 'K' && std::abs(move[0] - move[2]) == 2;
        const char wanted = part.length(1) > 0 ? part.str(1)[0] : from.size() == 2 ? letter : 'P';
        const char promotion = part.length(5) > 0 ? static_cast<char>(std::toupper(part.str(5)[0])) : 'Q';
        if (letter == wanted && (part.length(2) == 0 || move[0] == part.str(2)[0]) &&
            (part.length(3) == 0 || move[1] == part.str(3)[0]) && move.substr(2, 2) == part.str(4) &&
            (part.length(2) > 0 || is_push) && (!castles || from.size() == 2) &&
            (move.size() > 4 ? move.back() == promotion : part.length(5) == 0) &&
            MoveIsLegal(*pos, pos->stm, entry.move))
            found.push_back(entry.move);
    }
    return {found.size() == 1, found.size() == 1 ? Text(found[0]) : "null", ""};
}

// Every form of every move, and texts made of them by small changes.
std::vector<std::string> TextsToTry(std::mt19937* random) {
    static const std::string letters = "abcdefgh12345678xNBRQKPqnrko0O-=+#!:";
    std::vector<std::string> texts = {"",      "+",     "q",    "B",    "=",    "=Q", "=q+", "x",  "o-o",
                                      "0-0-0", "O-O-O", "o",    "e",    "K",    "ab", "a=b", "Kx", "e8",
                                      "ee",    "exe3",  "\xe9", "null", "a1a1", "--", "0-1"};
    for (const MoveEntry& entry : AllMoves(GamePosition()))
        for (const std::string& form : FormsOf(entry.move)) {
            const std::string coord = Text(entry.move);
            texts.push_back(form);
            texts.push_back(" PNBRQK"[TypeOf(entry.piece)] + coord);
            texts.push_back(coord.substr(0, 2) + "-x:"[RandomBelow(random, 3)] + coord.substr(2));
            std::string changed = form.substr(0, form.find('+'));
            const size_t at = RandomBelow(random, changed.size() + 1);
            const char letter = letters[RandomBelow(random, letters.size())];
            switch (RandomBelow(random, 4)) {
                case 0:
                    changed.insert(at, 1, letter);
                    break;
                case 1:
                    changed.erase(at, 1);
                    break;
                case 2:
                    changed.replace(at, 1, 1, letter);
                    break;
                default:
                    for (char& c : changed)
                        c = static_cast<char>(std::tolower(c));
            }
            texts.push_back(changed);
        }
    return texts;
}

void ExpectReadAsDefined(const std::string& fen, std::mt19937* random) {
    SetPosition(GamePosition(), fen.c_str());
    std::string expected_output;
    testing::internal::CaptureStdout();
    for (const std::string& text : TextsToTry(random)) {
        const Reading slow = ReadSlowly(text);
        const Reading fast = Read(text);
        EXPECT_EQ(fast.valid, slow.valid) << fen << " '" << text << "'";
        EXPECT_EQ(fast.move, slow.move) << fen << " '" << text << "'";
        EXPECT_EQ(fast.normalised, slow.normalised) << fen << " '" << text << "'";
        if (slow.printed != 0)
            expected_output += "ambiguous move\n";
        // A text of a game is read in either way.
        const Reading parts = slow.valid ? slow : ReadPartsSlowly(text);
        MoveAsRead read;
        Move move;
        EXPECT_EQ(ReadMoveText(text, &move, &read), parts.valid) << fen << " '" << text << "'";
        if (parts.valid) {
            EXPECT_EQ(Text(move), parts.move) << fen << " '" << text << "'";
            EXPECT_EQ(read.data(), slow.valid ? slow.normalised : parts.move) << fen << " '" << text << "'";
        }
        if (slow.printed != 0)
            expected_output += "ambiguous move\n";
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected_output) << fen;
}

TEST_F(MoveTextTest, ReadsAsDefined) {
    std::mt19937 random(5);
    for (const NamedPosition& p : kTrickyPositions)
        ExpectReadAsDefined(p.fen, &random);
    for (const std::string& fen : RandomPositions(40, 77))
        ExpectReadAsDefined(fen, &random);
}

TEST_F(MoveTextTest, ReadsAsDefinedOnBoardsThatNoGameReaches) {
    std::mt19937 random(6);
    for (const NamedPosition& p : kAbsurdPositions)
        ExpectReadAsDefined(p.fen, &random);
    for (uint32_t seed = 0; seed < 20; ++seed)
        ExpectReadAsDefined(RandomSetup(seed), &random);
}

}  // namespace
}  // namespace vrel
