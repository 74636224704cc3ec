#pragma once

#include <string>
#include <vector>

#include "support/oracle.h"

namespace vrel {

// What a game of the engine against itself showed.
struct GameRecord {
    int plies = 0;
    std::string result;               // "1-0", "0-1", "1/2-1/2"
    std::vector<std::string> faults;  // empty for a clean game
    double worst_overrun = -1e9;      // seconds that a move took beyond its target with all extensions
    double least_clock = 0.0;         // seconds that were left at the worst moment
};

struct GameSettings {
    std::string program;
    std::string folder;
    int workers = 1;
    double base = 0.2;  // seconds
    double increment = 0.005;
    unsigned seed = 1;  // of the random opening
};

// Plays one game of two processes and checks every move against the rules, the form of every info line, the legality
// of every line in it, and the clocks.
GameRecord PlayGame(const GameSettings& settings);

// A fault in an `info` or `bestmove` line that answers a position, empty if it is in order. `move` gets the reply.
std::string CheckInfoLine(const oracle::Board& board, const std::string& line);
std::string CheckBestMove(const oracle::Board& board, const std::string& line, std::string* move);

}  // namespace vrel
