#pragma once

namespace vrel {

// Self-play games of two parameter sets, written to PBlock.match_file. False, with a word about it, if it couldn't
// begin or not all games could be written.
bool PlayMatch();

}  // namespace vrel
