#pragma once

#include "board/position.h"
#include "book/book_keys.h"

namespace vrel {

// Indexes PBlock.book_file; a missing file is no error, then there is no book.
void InitBook();

// From here on there is no book.
void KillBook();

// True if there is a book to look moves up in.
bool BookIsThere();

// The record of the position last given to UpdatePosHash, with `side` to move; null if the book doesn't hold it. Good
// until the next call.
const BookRecord* FindPosition(Side side);

// Chooses a book move and leaves it in pv[1] of PBlock, with pv[2] 0; pv[1] is 0 if there is none. `verbose` prints
// what is considered.
void GetCandidates(Position* pos, bool verbose);

}  // namespace vrel
