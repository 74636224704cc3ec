#pragma once

namespace vrel {

// Builds "book.opn" from "book.pgn", on the game record, with all workers idle.
void CreateBook();

}  // namespace vrel
