#pragma once

namespace vrel {

// Dialogue that sets up the game record piece by piece; blocks until the edit is over or the input ends.
void EditBoard();

}  // namespace vrel
