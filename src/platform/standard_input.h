#pragma once

// Standard input as a stream of bytes: a pipe, a file, a null device or a terminal. A terminal is read in its own line
// mode, so its bytes are there once a line is finished. Nothing is kept back here: what a caller has no room for stays
// in the pipe. All readers fill the one buffer of their caller, so no byte is lost between polling and waiting. Only
// the main thread reads.
namespace vrel {

inline constexpr int INPUT_NOTHING = 0;  // no byte is there now
inline constexpr int INPUT_ENDED = -1;   // and none will come any more

// Reads at most `size` bytes that are there now, without waiting: their number, INPUT_NOTHING or INPUT_ENDED. The end
// is reported by every call from then on. A size below 1 reads nothing.
int ReadInput(char* buffer, int size);

// The same, but waits until there is a byte or the end: the number of bytes or INPUT_ENDED.
int WaitForInput(char* buffer, int size);

// Sleeps for so many microseconds, less than a second, or UNTIL_WOKEN, but not beyond a call of WakeMainThread and, if
// `by_input` says so, the arrival of a byte or of the end. It may end early without a reason.
inline constexpr int UNTIL_WOKEN = -1;
void SleepUntilWoken(int microseconds, bool by_input);

// Ends the sleep of the main thread, the next one if it is awake. For any thread.
void WakeMainThread();

// True if a person types at a terminal.
bool InputIsTerminal();

}  // namespace vrel
