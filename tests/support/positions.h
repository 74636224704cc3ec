#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Positions that tests try things on. The same seed gives the same positions on any machine.
namespace vrel {

// The positions of a file of tests/data, one FEN a line; what follows a "#" tells what each is good for.
std::vector<std::string> ReadPositions(const std::string& name);

// So many positions from random games, which begin in the start position and in tricky ones. Half of the games prefer
// captures, so that endings come up too.
std::vector<std::string> RandomPositions(size_t count, uint32_t seed);

// A board with random pieces on random squares, a king for each side, rights and en passant square that fit: quite
// unlike those from games. Either side may stand in check.
std::string RandomSetup(uint32_t seed);

// A board of any letters on any square, with any rights and any en passant square.
std::string AnySetup(uint32_t seed);

// The tricky positions, `games` from random games and `setups` random boards: what most properties are tried on.
std::vector<std::string> ManyPositions(size_t games, size_t setups);

}  // namespace vrel
