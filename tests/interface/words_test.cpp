#include "interface/words.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cstdlib>
#include <string>

#include "interface/numbers.h"

namespace vrel {
namespace {

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

TEST(Numbers, DecimalsAreReadToTheLastBit) {
    for (const char* text :
         {"0.35", "-1.255", "+0.29/12", "7", "-0.0", "1.", ".5", "1.2.3", "1e2/5", "0x1p4", "", "+", "-x",
          "123456789012345", "1234567890123456", "0.000000000000001", "99999999999999999999.5", " 2"})
        EXPECT_EQ(std::bit_cast<uint64_t>(ReadDecimal(text)), std::bit_cast<uint64_t>(std::strtod(text, nullptr)))
            << text;
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
