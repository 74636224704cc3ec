#pragma once

namespace vrel {

// Takes what has arrived on standard input and handles at most one line of it. Never blocks on a pipe.
void UserInput();

// True if the input has ended and all of it has been handled.
bool InputIsOver();

// True if a whole line is there for UserInput.
bool LineIsWaiting();

// True if the next line has been tried and waits for the engine to be free.
bool LineIsHeld();

// Sleeps for so many milliseconds.
void UI_Sleep(int milliseconds);

// Sleeps for so many microseconds, but wakes for input that UserInput can take in. Lines that have arrived already wait
// their turn.
void SleepForInput(int microseconds);

// Blocking read of one line for a dialogue, its end cut off: false at the end of the input.
bool ReadDialogueLine(char* line, int size);

}  // namespace vrel
