#include <cstdlib>

#include "board/search_thread.h"
#include "book/book_lookup.h"
#include "interface/board_text.h"
#include "interface/control/command_line.h"
#include "interface/control/game_loop.h"
#include "interface/control/input.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "platform/standard_output.h"
#include "search/search_control.h"
#include "search/start_up.h"
#include "search/thread_pool.h"
#include "tools/epd_analysis.h"
#include "tools/match.h"
#include "tools/pgn_scan.h"
#include "tools/tuner.h"

namespace vrel {

namespace {

constexpr double TOOL_NOISE = 1000.0;  // seconds that a batch search must take before it shows lines

// Starts everything but the tool or the game. False if the program can't run.
bool StartUp(int argc, char** argv, CommandLine* line) {
    poll_input = PollInputForTool;
    OccupyStandardStreams();
    IgnoreBrokenPipe();
    std::srand(TimeOfDaySeed());  // for the book's choice and for matches alone
    OpenLog();
    if (!StartEngine([&] { *line = ReadCommandLine(argc, argv); }))
        return false;
    InitBook();
    return CreateThreadPool(PBlock.nthreads) == 0;
}

// Runs the first tool that was asked for. False if there is none.
bool RunTool(const CommandLine& line) {
    if (line.analyse_epd) {
        Analyze_EPD_File(true);
    } else if (line.scan_kind != 0) {
        Scan_PGN_File(line.file.data(), line.scan_kind);
    } else if (line.match) {
        PBlock.match_file = line.file;
        PBlock.noise = TOOL_NOISE;
        PlayMatch();
    } else if (line.tune) {
        PBlock.noise = TOOL_NOISE;
        Tune();
    } else {
        return false;
    }
    return true;
}

void Play() {
    if (PBlock.mode == MODE_CONSOLE)
        ShowBoard(*GamePosition());
    RunGameLoop();
}

// The workers end before what they use is given back.
void ShutDown() {
    KillBook();
    KillThreadPool(PBlock.nthreads);
    EndEngine();
    CloseLog();
}

}  // namespace

}  // namespace vrel

int main(int argc, char** argv) {
    vrel::CommandLine line;
    if (!vrel::StartUp(argc, argv, &line))
        return 1;
    if (!vrel::RunTool(line))
        vrel::Play();
    vrel::ShutDown();
    return 0;
}
