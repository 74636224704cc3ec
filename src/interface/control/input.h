#pragma once

// Standard input as lines, and the order in which they are handled while a search or a tool is at work.
namespace vrel {

// What a line needs of a search or a tool that is at work.
enum Need {
    AT_ONCE,       // nothing, and it doesn't queue up: it ends something, or asks for a sign of life
    ENDS_PROGRAM,  // nothing; a line that waits for a search to be over has its turn first, and the search ends
    BESIDE,        // nothing of a search, in its turn: it touches nothing that searches use
    NO_TOOL,       // no tool: it changes position, limits or weights, of which a running search has its own
    ENDS_SEARCH,   // no tool either, and it ends a running search by itself
    WHEN_OVER,     // a free engine, but it isn't worth ending a search: it waits until that is over
    IDLE_WORKERS,  // idle workers: it ends the search, whose report may wait
    FREE_ENGINE,   // a free engine: it ends the search and lets it be reported first
};

// For the game loop: takes what has arrived and handles at most one line of it, the next in order. A line that needs
// more than there is makes way for itself and is handled in a later turn. Never blocks on a pipe.
void UserInput();

// For a tool, which works in the place of the game loop: handles all that have arrived of the lines that may act at
// once. The others wait until the tool has ended, in order.
void PollInputForTool();

// True if the input has ended and nothing of it is left to handle, but for lines that wait for a search to be over.
bool InputIsOver();

// True if a whole line is there for UserInput.
bool LineIsWaiting();

// True if the next line has been tried and waits for the engine to be free.
bool LineIsHeld();

// `isready` is answered once all workers are idle: at once if they are, else when that is seen.
void OweReadyOk();
void PayReadyOk();

// Sleeps for so many milliseconds, but wakes when the workers have ended their search.
void UI_Sleep(int milliseconds);

// Sleeps for so many microseconds, or UNTIL_WOKEN, but wakes when the workers have ended their search and for input
// that UserInput can take in. Lines that have arrived already wait their turn.
void SleepForInput(int microseconds);

// Blocking read of one line for a dialogue, its end cut off: false at the end of the input.
bool ReadDialogueLine(char* line, int size);

}  // namespace vrel
