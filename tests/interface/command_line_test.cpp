#include "interface/control/command_line.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "interface/pblock.h"

namespace vrel {
namespace {

CommandLine Read(std::vector<std::string> words) {
    SetDefaults();
    uci_extra = 0;
    words.insert(words.begin(), "vrel");
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return ReadCommandLine(static_cast<int>(words.size()), pointers.data());
}

TEST(Defaults, AreThoseOfAFreshStart) {
    Read({});
    EXPECT_EQ(PBlock.mode, MODE_UCI);
    EXPECT_EQ(PBlock.log, 1);
    EXPECT_EQ(PBlock.nthreads, 1);
    EXPECT_EQ(PBlock.hash_mb, 64);
    EXPECT_EQ(PBlock.max_depth, 66);
    EXPECT_EQ(PBlock.level_moves, 1);
    EXPECT_EQ(PBlock.level_time, 5.0);
    EXPECT_EQ(PBlock.clock[0], 5.0);
    EXPECT_EQ(PBlock.clock[1], 5.0);
    EXPECT_EQ(PBlock.overhead, 0.025);
    EXPECT_EQ(PBlock.trg_time, 1.0);
    EXPECT_EQ(PBlock.book_random, 20);
    EXPECT_EQ(PBlock.use_hash, 1);
    EXPECT_EQ(PBlock.ponder, 1);
    EXPECT_EQ(PBlock.multipv, 1);
    EXPECT_STREQ(PBlock.book_file.data(), "vrel.opn");
    EXPECT_STREQ(PBlock.epd_file.data(), "");
}

TEST(CommandLine, SetsModesAndLevels) {
    Read({"-c", "-nolog", "-noise", "2.5", "-threads", "3", "-hash", "16", "-uci_extra"});
    EXPECT_EQ(PBlock.mode, MODE_CONSOLE);
    EXPECT_EQ(PBlock.log, 0);
    EXPECT_EQ(PBlock.noise, 2.5);
    EXPECT_EQ(PBlock.nthreads, 3);
    EXPECT_EQ(PBlock.hash_mb, 16);
    EXPECT_EQ(uci_extra, 1);
    Read({"-c", "-uci"});
    EXPECT_EQ(PBlock.mode, MODE_UCI);
    Read({"-quiet"});
    EXPECT_EQ(PBlock.log, 0);
    EXPECT_EQ(PBlock.noise, SILENT);
    Read({"-d", "7"});
    EXPECT_EQ(PBlock.max_depth, 7);
    EXPECT_EQ(PBlock.level_moves, 1);
    EXPECT_EQ(PBlock.level_time, 10000.0);
    Read({"-t", "0.5"});
    EXPECT_EQ(PBlock.level_time, 0.5);
}

TEST(CommandLine, ClampsNumbers) {
    const struct {
        const char* hash;
        int mib;
        const char* threads;
        int workers;
        const char* depth;
        int plies;
    } rows[] = {
        {"-1", 0, "-1", 1, "-1", 0},
        {"0", 0, "0", 1, "0", 0},
        {"8192", 8192, "64", 64, "66", 66},
        {"8193", 8192, "65", 64, "67", 66},
        {"2147483648", 8192, "4294967297", 64, "99999999999999999999", 66},
        {"x", 0, "", 1, "five", 0},
    };
    for (const auto& row : rows) {
        Read({"-hash", row.hash, "-threads", row.threads, "-d", row.depth});
        EXPECT_EQ(PBlock.hash_mb, row.mib) << row.hash;
        EXPECT_EQ(PBlock.nthreads, row.workers) << row.threads;
        EXPECT_EQ(PBlock.max_depth, row.plies) << row.depth;
    }
}

TEST(CommandLine, NamesTools) {
    CommandLine line = Read({"-scan_pgn1", "a.pgn", "-match", "b.pgn"});
    EXPECT_EQ(line.scan_kind, 1);
    EXPECT_TRUE(line.match);
    EXPECT_STREQ(line.file.data(), "b.pgn");
    line = Read({"-anepd", "suite.epd"});
    EXPECT_TRUE(line.analyse_epd);
    EXPECT_STREQ(PBlock.epd_file.data(), "suite.epd");
    line = Read({"-tune", "tune.epd"});
    EXPECT_TRUE(line.tune);
    EXPECT_STREQ(PBlock.epd_file.data(), "tune.epd");
    EXPECT_EQ(Read({"-scan_pgn3", "x"}).scan_kind, 3);
}

TEST(CommandLine, CutsALongFileName) {
    const CommandLine line = Read({"-match", std::string(5000, 'm'), "-anepd", std::string(5000, 'e')});
    EXPECT_EQ(std::strlen(line.file.data()), 139u);
    EXPECT_EQ(std::strlen(PBlock.epd_file.data()), 139u);
}

TEST(CommandLine, PassesOverWhatItDoesNotKnow) {
    const CommandLine line = Read({"-C", "nolog", "-threadss", "4", "-scan_pgn4", "x", "--c", ""});
    EXPECT_EQ(PBlock.mode, MODE_UCI);
    EXPECT_EQ(PBlock.log, 1);
    EXPECT_EQ(PBlock.nthreads, 1);
    EXPECT_EQ(line.scan_kind, 0);
}

TEST(CommandLine, TakesTheNextWordAsArgumentWhateverItIs) {
    Read({"-hash", "-c", "-nolog"});
    EXPECT_EQ(PBlock.hash_mb, 0);
    EXPECT_EQ(PBlock.mode, MODE_UCI);
    EXPECT_EQ(PBlock.log, 0);
}

TEST(CommandLine, PassesOverAnOptionWithoutItsArgument) {
    for (const char* option : {"-noise", "-d", "-t", "-hash", "-threads", "-anepd", "-scan_pgn1", "-match", "-tune"}) {
        const CommandLine line = Read({"-c", option});
        EXPECT_EQ(PBlock.hash_mb, 64);
        EXPECT_EQ(PBlock.max_depth, 66);
        EXPECT_FALSE(line.analyse_epd || line.scan_kind || line.match || line.tune) << option;
    }
}

}  // namespace
}  // namespace vrel
