#pragma once

namespace vrel {

// Self-play games of two parameter sets, written to PBlock.match_file.
void PlayMatch();

}  // namespace vrel
