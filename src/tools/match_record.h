#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "board/position.h"
#include "interface/pgn_text.h"

// What a self-play match keeps of a game, and its statistics.
namespace vrel {

inline constexpr int MATCH_MOVES = 700;

struct MatchMove {
    std::array<char, 8> text;  // the names of two squares; promotions aren't told
    int16_t score;             // centipawns, as the mover sees it
    int16_t depth;
};

struct MatchGame {
    int number = 1;
    int white = 0;  // the player with the white pieces: 0 or 1
    Winner winner = NOBODY_WON;
    int count = 0;
    std::array<MatchMove, MATCH_MOVES> moves;
};

// From the view of the first player.
struct MatchScore {
    int wins = 0;
    int losses = 0;
    int draws = 0;
};

void RecordMove(MatchGame* game, Move move, int score, Depth depth);
void CountResult(const MatchGame& game, MatchScore* score);

// Tells games apart by their moves.
uint64_t MovesSignature(const MatchGame& game);

// Share of the points that the first player has taken in `games` games.
double MatchRate(const MatchScore& score, int games);
// How far from one half the rate of equal players may well lie.
double MatchMargin(int games);
// '*' if the rate tells one player from the other, else a blank.
char MatchMark(double rate, int games);

// The game as PGN, each move with its score in pawns and its depth.
std::string GameText(const MatchGame& game);

}  // namespace vrel
