#include "interface/words.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "interface/numbers.h"

namespace vrel {
namespace {

std::vector<std::string> PgnWords(const char* text) {
    std::vector<std::string> words;
    for (const char* word = NextWord(text); word != nullptr; word = NextWord(nullptr))
        words.emplace_back(word);
    return words;
}

TEST(GetWord, FindsTheFirstWord) {
    const struct {
        const char* name;
        const char* text;
        const char* word;
    } rows[] = {
        {"nothing", "", ""},
        {"blanks alone", "   ", ""},
        {"blanks in front", "  go depth", "go"},
        {"ends at a carriage return", "stop\rgo", "stop"},
        {"ends at a line feed", "stop\ngo", "stop"},
        {"a tab is no blank", "\tgo x", "\tgo"},
        {"brackets are nothing special", "{a}b c", "{a}b"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(GetWord(row.text), row.word) << row.name;
}

TEST(GetWord, CutsALongWord) {
    EXPECT_EQ(GetWord(std::string(128, 'x').c_str()), std::string(128, 'x'));
    EXPECT_EQ(GetWord((std::string(200, 'x') + " y").c_str()), std::string(128, 'x'));
}

TEST(NextWord, WalksThroughMoveText) {
    EXPECT_EQ(PgnWords("1. e4 {best} e5"), (std::vector<std::string>{"1.", "e4", "{", "best", "}", "e5"}));
    EXPECT_EQ(PgnWords("(1...c5)e4 "), (std::vector<std::string>{"(", "1...c5", ")", "e4"}));
    EXPECT_TRUE(PgnWords("   ").empty());
    EXPECT_TRUE(PgnWords("").empty());
}

TEST(NextWord, StaysAtTheEnd) {
    EXPECT_STREQ(NextWord("e4"), "e4");
    EXPECT_EQ(NextWord(nullptr), nullptr);
    EXPECT_EQ(NextWord(nullptr), nullptr);
}

TEST(NextWord, DropsCharactersThatBelongToNoMove) {
    EXPECT_EQ(PgnWords("e\t4\x80\xff! x"), (std::vector<std::string>{"e4!", "x"}));
    EXPECT_EQ(PgnWords("\n"), (std::vector<std::string>{""}));
}

TEST(NextWord, ReadsOverWhatDoesNotFit) {
    const std::string text = std::string(1000, 'x') + " e4";
    EXPECT_EQ(PgnWords(text.c_str()), (std::vector<std::string>{std::string(255, 'x'), "e4"}));
}

TEST(Numbers, AreReadAsFarAsTheyGoAndBroughtIntoRange) {
    const struct {
        const char* text;
        int low, high, value;
    } rows[] = {
        {"12", 0, 100, 12},
        {" -7x", -10, 100, -7},
        {"", -5, 5, 0},
        {"abc", 1, 64, 1},
        {"99999", 0, 8192, 8192},
        {"99999999999999999999999", 0, 8192, 8192},
        {"-99999999999999999999999", 0, 8192, 0},
        {"9223372036854775808", INT_MIN, INT_MAX, INT_MAX},
        {"-9223372036854775809", INT_MIN, INT_MAX, INT_MIN},
        {"0x10", 0, 100, 0},
        {"1e3", 0, 10000, 1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ReadInteger(row.text, row.low, row.high), row.value) << row.text;
}

TEST(Numbers, AreFinite) {
    EXPECT_EQ(ReadReal("2.5s", -10, 10), 2.5);
    EXPECT_EQ(ReadReal("nan", -10, 10), 0.0);
    EXPECT_EQ(ReadReal("inf", -10, 10), 0.0);
    EXPECT_EQ(ReadReal("1e999", 1, 10), 1.0);
    EXPECT_EQ(ReadReal("-1e9", -10, 10), -10.0);
}

}  // namespace
}  // namespace vrel
