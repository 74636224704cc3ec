#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "board/position.h"

// A game of a PGN file with the scores that its moves carry, and what the scanner makes of it.
namespace vrel {

inline constexpr int SCANNED_MOVES = 800;  // what is beyond is passed over

struct ScannedMove {
    std::array<char, 8> text;
    int16_t score;  // centipawns, as the mover sees it
};

struct ScannedGame {
    const ScannedMove* moves;
    int count;
    int winner;
    int first_side;  // to move at the start

    int score(int i) const { return moves[i].score; }
    // Plies of which the first is white's, up to the start.
    int plies(int i) const { return i + first_side; }
    int side(int i) const { return plies(i) & 1; }
};

// The opponent's estimate rose across move `i` and stayed up, though the mover saw nothing.
bool IsDoubtful(const ScannedGame& game, int i);

// What a scan makes of the games: a row for each kind, of which kind 1 is the first.
struct ScanKind {
    const char* option;  // on the command line
    const char* help;    // what follows it there, a tab, what it does
    const char* output;  // file
    // Adds what is to be said of move `i`, which is about to be made. True if that is a position to learn from.
    bool (*write)(std::string* out, const ScannedGame& game, int i, const Position& pos);
    bool lists_games;   // with their tags, an empty line behind each
    int decided_score;  // centipawns; behind a move with a score beyond it the game ends
    int8_t max_depth;   // left in PBlock
};
extern const std::span<const ScanKind> scan_kinds;
inline int ScanKinds() { return static_cast<int>(scan_kinds.size()); }

// Replays a game from the position on the game record up to its end or its first unreadable move, and adds what the
// kind asks for to `text`. The result is the number of positions to learn from.
int ProcessGame(ScannedMove* moves, int count, int kind, int winner, std::string* text);

}  // namespace vrel
