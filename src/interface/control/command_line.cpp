#include "interface/control/command_line.h"

#include <string>

#include "interface/control/options.h"
#include "interface/numbers.h"

namespace vrel {

namespace {

void SetFlag(const std::string& word) {
    if (word == "-uci") {
        PBlock.mode = MODE_UCI;
    } else if (word == "-c") {
        PBlock.mode = MODE_CONSOLE;
    } else if (word == "-nolog") {
        PBlock.log = 0;
    } else if (word == "-quiet") {
        PBlock.log = 0;
        PBlock.noise = SILENT;
    } else if (word == "-uci_extra") {
        uci_extra = 1;
    }
}

// True if the word is an option with an argument.
bool SetValue(const std::string& word, const char* argument, CommandLine* line) {
    if (word == "-noise") {
        PBlock.noise = ReadReal(argument, -1e9, 1e9);
    } else if (word == "-d") {
        PBlock.level_moves = 1;
        PBlock.level_time = 10000.0;
        PBlock.max_depth = static_cast<int8_t>(ReadInteger(argument, 0, MAX_DEPTH));
    } else if (word == "-t") {
        PBlock.level_moves = 1;
        PBlock.level_time = ReadReal(argument, 0.0, 1e9);
    } else if (word == "-hash") {
        PBlock.hash_mb = static_cast<int16_t>(ReadOption(*FindOption("Hash"), argument));
    } else if (word == "-threads") {
        PBlock.nthreads = static_cast<int8_t>(ReadOption(*FindOption("Threads"), argument));
    } else if (word == "-anepd") {
        CopyText(&PBlock.epd_file, argument);
        line->analyse_epd = true;
    } else if (word == "-scan_pgn1" || word == "-scan_pgn2" || word == "-scan_pgn3") {
        CopyText(&line->file, argument);
        line->scan_kind = word.back() - '0';
    } else if (word == "-match") {
        CopyText(&line->file, argument);
        line->match = true;
    } else if (word == "-tune") {
        CopyText(&PBlock.epd_file, argument);
        line->tune = true;
    } else {
        return false;
    }
    return true;
}

}  // namespace

CommandLine ReadCommandLine(int argc, char** argv) {
    CommandLine line;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (i + 1 < argc && SetValue(word, argv[i + 1], &line))
            ++i;
        else
            SetFlag(word);
    }
    return line;
}

}  // namespace vrel
