#pragma once

namespace vrel {

// Reads a PGN of engine games and writes what a kind of scan, 1 to ScanKinds(), makes of them: an annotated listing or
// training positions. The position of the game record is lost. False, with a word about it, if it couldn't begin or not
// everything could be read and written; the counts shown are those of what stands in the file.
bool Scan_PGN_File(const char* file, int kind);

}  // namespace vrel
