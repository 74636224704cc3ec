#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "interface/pblock.h"

namespace vrel {

// What the command line asks for in place of the game loop: the first of these that was asked for is done.
struct CommandLine {
    std::string fault;  // a word that can't be used: told, and the program ends
    bool help = false;
    bool version = false;
    bool tune_spec = false;
    bool analyse_epd = false;
    int scan_kind = 0;  // 0 none
    bool match = false;
    bool tune = false;
    int bench_depth = 0;                 // 0 none
    int openings = 0;                    // how many; 0 none
    int games = 0;                       // of a match
    std::optional<uint32_t> seed;        // of openings or a match
    std::array<char, FILE_NAME> file{};  // of scan, match or openings, whichever was named last
};

// Reads the words behind the program's name into PBlock and the result. Unknown words are passed over, and so is an
// option whose argument is missing.
CommandLine ReadCommandLine(int argc, char** argv);

// Prints a page of the words that the command line knows.
void ShowCommandLineHelp();

}  // namespace vrel
