#include "search/search_report.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "interface/pblock.h"
#include "support/engine.h"

namespace vrel {
namespace {

std::string Shown(int mode, int mpv) {
    SetDefaults();
    PBlock.log = 0;
    PBlock.mode = static_cast<int16_t>(mode);
    PvLine line{};
    std::fill(line.begin() + 1, line.end() - 1, MakeMoveValue(12, 28));
    testing::internal::CaptureStdout();
    DisplaySearchInfo(1, mpv, 5, 0, line.data());
    return testing::internal::GetCapturedStdout();
}

size_t Count(const std::string& text, const std::string& word) {
    size_t count = 0;
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        ++count;
    return count;
}

// A line of moves as long as any.
TEST(Report, LongLinesAreCut) {
    const std::string uci = Shown(MODE_UCI, 0);
    EXPECT_EQ(Count(uci, "e2e4"), 66U);
    EXPECT_EQ(Count(uci, "\n"), 1U);
    const std::string running = Shown(MODE_CONSOLE, -1), finished = Shown(MODE_CONSOLE, 0);
    EXPECT_EQ(Count(running, "e2e4"), 8U);
    EXPECT_EQ(Count(running, "\n"), 1U);
    EXPECT_EQ(Count(finished, "e2e4"), 32U);
    EXPECT_EQ(Count(finished, "\n"), 4U);
    EXPECT_EQ(Count(finished, "\n" + std::string(30, ' ') + "e2e4 e2e4"), 3U);
}

}  // namespace
}  // namespace vrel
