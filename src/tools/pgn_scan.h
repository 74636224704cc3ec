#pragma once

namespace vrel {

// Reads a PGN of engine games and writes what a kind of scan, 1 to ScanKinds(), makes of them: an annotated listing or
// training positions. The position of the game record is lost.
void Scan_PGN_File(const char* file, int kind);

}  // namespace vrel
