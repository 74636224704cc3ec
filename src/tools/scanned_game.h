#pragma once

#include <array>
#include <cstdint>

#include "platform/file.h"

// A game of a PGN file with the scores that its moves carry, and what the scanner makes of it.
namespace vrel {

inline constexpr int SCANNED_MOVES = 800;  // what is beyond is passed over

struct ScannedMove {
    std::array<char, 8> text;
    int16_t score;  // centipawns, as the mover sees it
};

enum ScanKind : int { SCAN_LISTING = 1, SCAN_TARGETS = 2, SCAN_POSITIONS = 3 };
enum Winner : int { WHITE_WON = 0, BLACK_WON = 1, NOBODY_WON = 2 };

// Replays a game on the game record up to its end or its first unreadable move, and writes what `kind` asks for.
// `written` receives the number of EPD lines.
void ProcessGame(File* out, ScannedMove* moves, int count, int kind, int winner, int* written);

}  // namespace vrel
