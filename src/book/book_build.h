#pragma once

namespace vrel {

// Builds "book.opn" from "book.pgn", on the game record, with all workers idle. Without games to read it does nothing.
// False, with a word about it, if another program builds a book here or the work was broken off; an older book then
// stays as it was.
bool CreateBook();

}  // namespace vrel
