// The reader of moves against its definition: a text names the one legal move that has it among its forms.
#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <sstream>

#include "board/fen.h"
#include "board/legality.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

struct Reading {
    int valid;
    Move move;
    std::string text;  // as it is left
    bool operator==(const Reading&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Reading& reading) {
    return out << reading.valid << ' ' << reading.move << " '" << reading.text << "'";
}

Reading Read(const std::string& text) {
    std::string buffer = text + std::string(2, '\0');
    Move move = 1;
    const int valid = IsValidMove(buffer.data(), &move);
    return {valid, move, buffer.c_str()};
}

std::vector<std::string> FormsOf(Move move) {
    MoveText coord, san, file_form, rank_form;
    GenMoveStrings(*GamePosition(), move, coord.data(), san.data(), file_form.data(), rank_form.data());
    return {coord.data(), san.data(), file_form.data(), rank_form.data()};
}

std::string WithoutCheck(const std::string& text) { return text.substr(0, text.find('+')); }

// Writes all forms of all moves and compares. Exactly two matches are told of.
Reading ReadSlowly(const std::string& given, std::string* told) {
    std::string text = WithoutCheck(given);
    if (!text.empty()) {
        const char last = static_cast<char>(std::toupper(static_cast<unsigned char>(text.back())));
        if (std::string("BNQR").find(last) != std::string::npos) {
            text.pop_back();
            text += text.ends_with('=') ? std::string(1, last) : std::string("=") + last;
        }
    }
    for (char& c : text)
        if (c == 'O' || c == '0')
            c = 'o';
    Position* pos = GamePosition();
    int count = 0;
    Move found = NO_MOVE;
    for (const MoveEntry& entry : AllMoves(pos))
        for (const std::string& form : FormsOf(entry.move))
            if (WithoutCheck(form) == text && MoveIsLegal(*pos, pos->stm, entry.move)) {
                found = entry.move;
                ++count;
                break;
            }
    *told += count == 2 ? "ambiguous move\n" : "";
    return {count == 1, found, text};
}

// Every form of every move, and texts made of them by small changes.
std::vector<std::string> TextsToTry(std::mt19937* random) {
    static const std::string letters = "abcdefgh12345678xNBRQKPqnrko0O-=+#!";
    std::vector<std::string> texts = {"", "e4+" + std::string(300, 'x'), std::string(70000, 'q')};
    std::istringstream words("+ q B = =Q =q+ x o-o 0-0-0 O-0-o o e K ab a=b Kx exe3 \xe9 null a1a1 -- 0-1 e8==Q");
    for (std::string word; words >> word;)
        texts.push_back(word);
    for (const MoveEntry& entry : AllMoves(GamePosition()))
        for (const std::string& form : FormsOf(entry.move)) {
            std::string changed = WithoutCheck(form);
            const size_t at = (*random)() % (changed.size() + 1);
            switch ((*random)() % 3) {
                case 0:
                    changed.insert(at, 1, letters[(*random)() % letters.size()]);
                    break;
                case 1:
                    changed.erase(at, 1);
                    break;
                default:
                    for (char& c : changed)
                        c = static_cast<char>(std::tolower(c));
            }
            texts.insert(texts.end(), {form, changed});
        }
    return texts;
}

TEST(Reading, IsAsDefined) {
    PBlock.mode = MODE_CONSOLE;
    std::mt19937 random(5);
    std::vector<std::string> fens = ManyPositions(40, 20);
    for (const std::string& fen : ReadPositions("boards.txt"))
        fens.push_back(fen);
    for (const std::string& fen : fens) {
        SCOPED_TRACE(fen);
        SetPosition(GamePosition(), fen.c_str());
        const Position before = *GamePosition();
        std::string told;
        testing::internal::CaptureStdout();
        for (const std::string& text : TextsToTry(&random))
            EXPECT_EQ(Read(text), ReadSlowly(text, &told)) << text.substr(0, 20);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), told);
        EXPECT_TRUE(SamePosition(*GamePosition(), before));
    }
}

}  // namespace
}  // namespace vrel
