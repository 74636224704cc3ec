#pragma once

#include "board/position.h"

namespace vrel {

// Allocates the tables and indexes PBlock.book_file; a missing file is no error.
void InitBook();
void KillBook();

// Chooses a book move and leaves it in pv[1] of PBlock, with pv[2] 0; pv[1] is 0 if there is none. `verbose` prints
// what is considered.
void GetCandidates(Position* pos, bool verbose);

}  // namespace vrel
