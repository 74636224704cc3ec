#pragma once

namespace vrel {

// Polls input, watches the clock, starts the searches that commands ask for and reports them, until the program is
// told to quit or the input has ended and nothing is left to answer. Then calls end(), whose result is returned.
int RunGameLoop(int (*end)());

// Ends a search or a tool that runs, and then the program. No search is reported any more.
void EndProgram();

}  // namespace vrel
