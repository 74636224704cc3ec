#pragma once

namespace vrel {

// Reads a PGN of engine games: kind 1 writes an annotated listing, 2 and 3 training positions.
void Scan_PGN_File(const char* file, int kind);

}  // namespace vrel
