#include <cstdlib>
#include <string>

#include "board/search_thread.h"
#include "book/book_lookup.h"
#include "interface/board_text.h"
#include "interface/control/command_line.h"
#include "interface/control/game_loop.h"
#include "interface/control/input.h"
#include "interface/control/tuning_options.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/arguments.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/standard_output.h"
#include "search/search_control.h"
#include "search/start_up.h"
#include "search/thread_pool.h"
#include "tools/bench.h"
#include "tools/epd_analysis.h"
#include "tools/match.h"
#include "tools/openings.h"
#include "tools/pgn_scan.h"
#include "tools/tuner.h"

namespace vrel {

namespace {

constexpr double TOOL_NOISE = 1000.0;  // seconds that a batch search must take before it shows lines

constexpr int FAILED = 1;  // exit status

// What needs neither workers nor a log of its own.
bool IsAnsweredAtOnce(const CommandLine& line) {
    return !line.fault.empty() || line.help || line.version || line.tune_spec || line.bench_depth > 0;
}

// The file that a tool would read while it or the log is written to it, or the other way round; null if there is none.
const char* FileUsedTwice(const CommandLine& line) {
    const char* positions = PBlock.epd_file.data();
    const char* file = line.file.data();
    const char* book = PBlock.book_file.data();
    const char* figures = PBlock.figures_file.data();
    // Names may differ and mean one file all the same.
    if (NameOneFile(positions, logfile) || (line.tune && NameOneFile(positions, "tune.log")))
        return positions;
    if (NameOneFile(file, logfile) || (line.match && (NameOneFile(file, "player2.par") || NameOneFile(file, book))))
        return file;
    if (NameOneFile(figures, positions) || NameOneFile(figures, logfile) || NameOneFile(figures, "unsolved.epd"))
        return figures;
    return nullptr;
}

// Builds the engine as the command line wants it, without its workers. False if there is no memory.
bool StartUp(int argc, char** argv, CommandLine* line) {
    poll_input = PollInputForTool;
    // Before any file is opened.
    OccupyStandardStreams();
    IgnoreBrokenPipe();
    std::srand(TimeOfDaySeed());  // for the book's choice and for matches alone
    // Settings are read once the control record has its defaults, and before what they give the size of.
    const auto configure = [&] {
        *line = ReadCommandLine(argc, argv);
        if (const char* file = FileUsedTwice(*line))
            line->fault = std::string(file) + ": would be read and written at once";
        if (!IsAnsweredAtOnce(*line))
            OpenLog();
    };
    if (!StartEngine(configure))
        return false;
    InitBook();
    return true;
}

// Returns the exit status.
int AnswerTuneSpec() {
    if (ShowTuneSpec())
        return 0;
    Complain("tune_spec: weights are options of the tuning build alone, cmake -DVREL_TUNE=ON");
    return FAILED;
}

// The same.
int AnswerAtOnce(const CommandLine& line) {
    if (!line.fault.empty()) {
        Complain("%s", line.fault.c_str());
        return FAILED;
    }
    if (line.help)
        ShowCommandLineHelp();
    else if (line.version)
        Print("%s\n", version);
    else if (line.tune_spec)
        return AnswerTuneSpec();
    else if (RunBench(line.bench_depth) == 0)
        return FAILED;
    return 0;
}

// Runs the first tool that was asked for. False if there is none; `status` is the exit status.
bool RunTool(const CommandLine& line, int* status) {
    // Scans tell the outcome by their files alone.
    if (line.analyse_epd) {
        bool complete = false;
        Analyze_EPD_File(true, &complete);
        *status = complete ? 0 : FAILED;
    } else if (line.scan_kind != 0) {
        *status = Scan_PGN_File(line.file.data(), line.scan_kind) ? 0 : FAILED;
    } else if (line.match) {
        PBlock.match_file = line.file;
        PBlock.noise = TOOL_NOISE;
        if (line.seed)
            std::srand(*line.seed);
        *status = PlayMatch(line.games) ? 0 : FAILED;
    } else if (line.tune) {
        PBlock.noise = TOOL_NOISE;
        *status = Tune() ? 0 : FAILED;
    } else if (line.openings > 0) {
        *status = WriteOpenings(line.file.data(), line.openings, line.seed.value_or(1)) ? 0 : FAILED;
    } else {
        return false;
    }
    return true;
}

// Gives everything back. Returns the exit status.
int End(int status) {
    if (PBlock.failed)
        status = FAILED;
    KillBook();
    KillThreadPool(PBlock.nthreads);  // before what the workers use is given back
    EndEngine();
    CloseLog();
    return status;
}

// For an interface nothing is said before it asks; a person wants to see the board.
int Play() {
    if (PBlock.mode == MODE_CONSOLE)
        ShowBoard(*GamePosition());
    return RunGameLoop([] { return End(0); });
}

}  // namespace

// The whole life of the process. Returns the exit status.
int Run(int argc, char** argv) {
    CommandLine line;
    if (!StartUp(argc, argv, &line))
        return FAILED;
    if (IsAnsweredAtOnce(line))
        return AnswerAtOnce(line);
    if (CreateThreadPool(PBlock.nthreads) != 0)
        return FAILED;
    int status = 0;
    return RunTool(line, &status) ? End(status) : Play();
}

}  // namespace vrel

int main(int argc, char** argv) {
    argv = vrel::ArgumentsInUtf8(&argc, argv);
    return vrel::Run(argc, argv);
}
