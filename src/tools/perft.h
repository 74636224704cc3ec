#pragma once

#include "board/search_thread.h"

namespace vrel {

// Adds the leaves of the legal move tree to the nodes of the thread; a depth below 1 counts nothing.
void Perft(SearchThread* thread, Side side, Ply ply, Depth depth);

}  // namespace vrel
