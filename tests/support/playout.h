#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "support/oracle.h"

// Random games for tests that want many positions. The same seed gives the same positions on any machine.
namespace vrel {

// A number below `bound`, which isn't 0.
size_t RandomBelow(std::mt19937* random, size_t bound);

// A game of random legal moves from `fen`: the board after each of at most `plies` moves. Half of the games prefer
// captures, so that endings with little on the board come up too.
std::vector<oracle::Board> RandomGame(const std::string& fen, uint32_t seed, int plies);

// So many positions as four-field FEN, from random games that begin in the start position and in the tricky ones.
std::vector<std::string> RandomPositions(size_t count, uint32_t seed);

// Boards with random pieces on random squares, a king for each side, rights and en passant square that fit: quite
// unlike those from games. Either side may stand in check.
std::string RandomSetup(uint32_t seed);

// The tricky positions, `games` from random games and `setups` random boards: what most properties are tried on.
std::vector<std::string> ManyPositions(size_t games, size_t setups);

}  // namespace vrel
