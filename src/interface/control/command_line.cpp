#include "interface/control/command_line.h"

#include <cstring>

#include "interface/control/options.h"
#include "interface/messages.h"
#include "interface/numbers.h"
#include "interface/words.h"
#include "tools/bench.h"
#include "tools/match.h"
#include "tools/scanned_game.h"

namespace vrel {

namespace {

constexpr int OPENINGS = 1000;  // unless a number is named
constexpr int MOST_OPENINGS = 100000;

// The words that haven't been read.
struct Words {
    int count;
    char** next;

    // The next word; there has to be one.
    const char* Take() {
        --count;
        return *next++;
    }
    // A number is optional: what doesn't look like one is the next option.
    bool NumberIsNext() const { return count > 0 && (*next)[0] >= '0' && (*next)[0] <= '9'; }
    int TakeNumber(int lowest, int highest, int otherwise) {
        return NumberIsNext() ? ReadInteger(Take(), lowest, highest) : otherwise;
    }
    std::optional<uint32_t> TakeSeed() {
        if (!NumberIsNext())
            return std::nullopt;
        return static_cast<uint32_t>(ReadInteger(Take(), 0, INT32_MAX));
    }
};

// A path that is too long for its field is refused whole: a cut one may be another file's.
void TakeFile(Words* words, std::array<char, FILE_NAME>* field, CommandLine* line) {
    const char* name = words->Take();
    if (!CopyText(field, name))
        line->fault = std::string(name) + ": path longer than " + std::to_string(FILE_NAME - 1) + " characters";
}

// The same time for each move.
void FixTime(double seconds) {
    PBlock.level_moves = 1;
    PBlock.level_time = seconds;
}

void TakeScan(Words* words, CommandLine* line, int kind) {
    TakeFile(words, &line->file, line);
    line->scan_kind = kind;
}

// The two columns of the help page.
void ShowUsage(const char* name, const char* help) {
    const int width = static_cast<int>(std::strcspn(help, "\t"));
    const std::string usage = name + std::string(" ") + std::string(help, help + width);
    Print("  %-26s%s\n", usage.c_str(), help + width + 1);
}

// A word that the command line knows. It takes further words by itself.
struct Option {
    const char* name;
    bool takes_word;   // which has to be there
    const char* help;  // what follows the name, a tab, what it does; null for another name of the option before
    void (*apply)(Words* words, CommandLine* line);
};

// In the order of the help page.
constexpr Option options[] = {
    {"-uci", false, "\tspeak UCI (the default)", [](Words*, CommandLine*) { PBlock.mode = MODE_UCI; }},
    {"-c", false, "\tconsole: commands for a person at the keyboard",
     [](Words*, CommandLine*) { PBlock.mode = MODE_CONSOLE; }},
    {"-d", true, "N\tsearch to depth N, 66 at most",
     [](Words* words, CommandLine*) {
         FixTime(10000.0);
         PBlock.max_depth = static_cast<int8_t>(ReadInteger(words->Take(), 0, MAX_DEPTH));
     }},
    {"-t", true, "SECONDS\ttime for each move",
     [](Words* words, CommandLine*) { FixTime(ReadReal(words->Take(), 0.0, 1e9)); }},
    {"-hash", true, "MIB\tsize of the transposition table",
     [](Words* words, CommandLine*) {
         PBlock.hash_mb = static_cast<int16_t>(ReadOption(*FindOption("Hash"), words->Take()));
     }},
    {"-threads", true, "N\tnumber of threads that search",
     [](Words* words, CommandLine*) {
         PBlock.nthreads = static_cast<int8_t>(ReadOption(*FindOption("Threads"), words->Take()));
     }},
    {"-noise", true, "SECONDS\tno search output before so many seconds",
     [](Words* words, CommandLine*) { PBlock.noise = ReadReal(words->Take(), -1e9, 1e9); }},
    {"-quiet", false, "\tno search output and no log; the answer still comes",
     [](Words*, CommandLine*) {
         PBlock.log = 0;
         PBlock.noise = SILENT;
     }},
    {"-nolog", false, "\tno log", [](Words*, CommandLine*) { PBlock.log = 0; }},
    {"-uci_extra", false, "\tlonger info lines", [](Words*, CommandLine*) { uci_extra = 1; }},
    {"-anepd", true, "FILE\trun a suite of test positions, for example with -d 9",
     [](Words* words, CommandLine* line) {
         TakeFile(words, &PBlock.epd_file, line);
         line->analyse_epd = true;
     }},
    {"-figures", true, "FILE\tof each position of a suite, into a file: solved, seconds, nodes, depth, bf, error",
     [](Words* words, CommandLine* line) { TakeFile(words, &PBlock.figures_file, line); }},
    {nullptr, true, nullptr, nullptr},  // the place of the kinds of scans, which have a table of their own
    {"-match", true, "FILE [N] [SEED]\tplay a match of the engine against itself, N games at most, into the file",
     [](Words* words, CommandLine* line) {
         TakeFile(words, &line->file, line);
         line->match = true;
         line->games = words->TakeNumber(1, MATCH_GAMES, MATCH_GAMES);
         line->seed = words->TakeSeed();
     }},
    {"-tune", true, "FILE\ttune the evaluation to the positions of the file",
     [](Words* words, CommandLine* line) {
         TakeFile(words, &PBlock.epd_file, line);
         line->tune = true;
     }},
    {"bench", false, "[DEPTH]\tsearch a set of positions; the node total is the same on every machine",
     [](Words* words, CommandLine* line) { line->bench_depth = words->TakeNumber(1, MAX_DEPTH, BENCH_DEPTH); }},
    {"openings", true, "FILE [N] [SEED]\twrite N short random openings as PGN, for mkbook",
     [](Words* words, CommandLine* line) {
         TakeFile(words, &line->file, line);
         line->openings = words->TakeNumber(1, MOST_OPENINGS, OPENINGS);
         line->seed = words->TakeSeed();
     }},
    {"tune_spec", false, nullptr, [](Words*, CommandLine* line) { line->tune_spec = true; }},  // for a tuning build
    {"--help", false, "\tthis page", [](Words*, CommandLine* line) { line->help = true; }},
    {"-help", false, nullptr, [](Words*, CommandLine* line) { line->help = true; }},
    {"--version", false, "\tname and version", [](Words*, CommandLine* line) { line->version = true; }},
};

// The kind of scan that a word asks for, 0 if it asks for none.
int FindScanKind(const char* word) {
    // Kinds are counted from 1, as they are named.
    for (int kind = 1; kind <= ScanKinds(); ++kind)
        if (std::strcmp(word, scan_kinds[kind - 1].option) == 0)
            return kind;
    return 0;
}

}  // namespace

CommandLine ReadCommandLine(int argc, char** argv) {
    CommandLine line;
    Words words = {argc - 1, argv + 1};
    while (words.count > 0) {
        const char* word = words.Take();
        const Option* option = FindRow(options, word);
        const int scan_kind = FindScanKind(word);
        // A later word wins over an earlier one.
        if (option != nullptr && words.count >= (option->takes_word ? 1 : 0))
            option->apply(&words, &line);
        else if (scan_kind != 0 && words.count > 0)
            TakeScan(&words, &line, scan_kind);
    }
    return line;
}

void ShowCommandLineHelp() {
    Print("%s, a chess engine. Chess interfaces start it and talk UCI to it; vrel -c talks to a person.\n\n", version);
    Print("usage: vrel [OPTION...]\n\n");
    // Second names aren't told, and the scans stand where their place is kept.
    for (const Option& option : options) {
        if (option.help != nullptr)
            ShowUsage(option.name, option.help);
        if (option.name == nullptr)
            for (const ScanKind& kind : scan_kinds)
                ShowUsage(kind.option, kind.help);
    }
}

}  // namespace vrel
