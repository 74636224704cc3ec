#pragma once

#include <array>

#include "interface/pblock.h"

namespace vrel {

// The tools that the command line can ask for; the first that was asked for runs in place of the game loop.
struct CommandLine {
    bool analyse_epd = false;
    int scan_kind = 0;  // 0 none
    bool match = false;
    bool tune = false;
    std::array<char, FILE_NAME> file{};  // of the scan or the match, whichever was named last
};

// Reads the words behind the program's name into PBlock and the result. Unknown words are passed over, and so is an
// option whose argument is missing.
CommandLine ReadCommandLine(int argc, char** argv);

}  // namespace vrel
