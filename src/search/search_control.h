#pragma once

namespace vrel {

// Keeps the input alive while a tool works in the place of the game loop. The program sets it once at its start; until
// then nothing is read.
extern void (*poll_input)();

}  // namespace vrel
