#pragma once

namespace vrel {

inline constexpr int MATCH_GAMES = 8000;  // of a match whose number isn't told, and the most that one may have

// So many self-play games of two parameter sets, written to PBlock.match_file. False, with a word about it, if it
// couldn't begin or not all games could be written.
bool PlayMatch(int games);

}  // namespace vrel
