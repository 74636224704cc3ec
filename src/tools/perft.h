#pragma once

#include "board/search_thread.h"

namespace vrel {

// Adds the leaves of the legal move tree to the nodes of the thread; a depth below 1 counts nothing.
void Perft(SearchThread* thread, int side, int ply, int depth);

}  // namespace vrel
