#include "interface/control/input.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <deque>
#include <string>
#include <utility>

#include "interface/control/console.h"
#include "interface/control/uci.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/standard_input.h"
#include "search/search_control.h"
#include "search/thread_pool.h"

namespace vrel {

namespace {

constexpr size_t LONGEST_LINE = 65536;
constexpr size_t QUEUE = 2 * LONGEST_LINE;  // bytes taken in ahead of their turn; more stays in the pipe

struct Line {
    std::string text;
    bool too_long = false;  // stands for a line longer than can be handled, which is refused whole
    bool tried = false;     // it has been shown, and waits
};

// The state of the input, the main thread's alone.
std::deque<Line> lines;     // in order of arrival
std::string beginning;      // of a line whose end hasn't come
bool passing_over = false;  // the rest of an overlong line
size_t bytes = 0;           // in `lines`
bool ended = false;         // no more bytes will come
size_t seen_by_tool = 0;    // so many of the first lines wait for a tool to end
int ready_owed = 0;

bool EndsLine(char c) { return c == '\n' || c == '\0' || c == '@'; }

void Enqueue(Line line) {
    bytes += line.text.size() + 1;
    lines.push_back(std::move(line));
}

// The characters up to a line end of any kind; a line without a character is none.
void FinishLine() {
    if (!beginning.empty()) {
        beginning.resize(std::min(beginning.find_first_of("\r\n"), beginning.size()));
        Enqueue({std::exchange(beginning, {})});
    }
    passing_over = false;
}

void TakeIn(const char* text, size_t size) {
    for (const char* end = text + size; text != end;) {
        const char* stop = std::find_if(text, end, EndsLine);
        if (!passing_over)
            beginning.append(text, stop);
        if (beginning.size() > LONGEST_LINE) {
            Enqueue({{}, true});
            beginning.clear();
            passing_over = true;
        }
        if (stop == end)
            return;
        FinishLine();
        text = stop + 1;
    }
}

// Without room the rest waits in the pipe, and whoever writes to it waits as well.
bool HasRoom() { return bytes + beginning.size() < QUEUE; }

// Takes in what has arrived, or waits until there is something.
void ReadInputChunk(bool wait) {
    static std::array<char, 16384> chunk;
    if (ended || !HasRoom())
        return;
    const int room = static_cast<int>(chunk.size());
    const int received = wait ? WaitForInput(chunk.data(), room) : ReadInput(chunk.data(), room);
    ended = received == INPUT_ENDED;
    if (received > 0)
        TakeIn(chunk.data(), received);
    // The last line before the end needs no end.
    if (ended)
        FinishLine();
}

Line TakeOut(size_t place) {
    Line line = std::move(lines[place]);
    lines.erase(lines.begin() + static_cast<ptrdiff_t>(place));
    bytes -= line.text.size() + 1;
    seen_by_tool = std::min(seen_by_tool, place);
    return line;
}

bool IsForUci(const std::string& text) { return PBlock.mode == MODE_UCI || text == "uci"; }

// Asked anew each turn: an earlier line may have changed mode, position and options. To refuse a line needs nothing.
Need NeedOf(const Line& line) {
    if (line.text.empty())
        return BESIDE;
    return IsForUci(line.text) ? UciNeed(line.text.c_str()) : ConsoleNeed(line.text.c_str());
}

// The first time that it is its turn, a line is shown, if lines are.
void Try(Line* line) {
    if (!line->tried && !line->text.empty() && IsForUci(line->text))
        EchoUciLine(line->text.c_str());
    line->tried = true;
}

void Handle(size_t place) {
    Try(&lines[place]);
    // It is out of the queue before it acts, since it may ask for further lines itself, as a dialogue does.
    const Line line = TakeOut(place);
    if (line.too_long)
        ShowFormatted("info string line of more than %d characters refused", static_cast<int>(LONGEST_LINE));
    else if (line.text.empty())
        return;
    else if (IsForUci(line.text))
        UciCommand(line.text.c_str());
    else
        ConsoleCommand(line.text.c_str());
}

// True if a line may be handled now; else what is in its way has been asked to go.
bool MakeWay(Need need) {
    switch (need) {
        case WHEN_OVER:
            return EngineIsFree();
        case IDLE_WORKERS:
            if (!WorkersIdle())
                StopSearch(STOP_COMMAND);
            return WorkersIdle();
        case FREE_ENGINE:
            if (!EngineIsFree())
                EndRunningSearch();
            return EngineIsFree();
        default:
            return true;
    }
}

// The first line waits for a search to be over: those behind it that may act at once do, and one that would end the
// search if it came first ends it now.
void LookBehindFirst() {
    for (size_t i = 1; i < lines.size();) {
        const Need need = NeedOf(lines[i]);
        if (need == AT_ONCE) {
            Handle(i);
        } else if (need != BESIDE && need != NO_TOOL && need != WHEN_OVER) {
            EndRunningSearch();
            return;
        } else {
            ++i;
        }
    }
}

}  // namespace

void UserInput() {
    ReadInputChunk(false);
    PayReadyOk();
    if (lines.empty())
        return;
    Try(&lines.front());
    const Need need = NeedOf(lines.front());
    if (MakeWay(need))
        Handle(0);
    else if (need == WHEN_OVER)
        LookBehindFirst();
}

void PollInputForTool() {
    ReadInputChunk(false);
    PayReadyOk();
    // What needs nothing but its turn has it only while no line waits in front of it.
    while (seen_by_tool < lines.size() && !PBlock.quit) {
        const size_t place = seen_by_tool;
        const Need need = NeedOf(lines[place]);
        if (need == AT_ONCE || need == ENDS_PROGRAM)
            Handle(place);
        else
            ++seen_by_tool;
    }
    // Whoever ends the input at a terminal is done with the tool; behind a pipe the tool works on.
    if (ended && InputIsTerminal())
        PBlock.quit = 1;
}

bool InputIsOver() { return ended && (lines.empty() || (LineIsHeld() && NeedOf(lines.front()) == WHEN_OVER)); }

bool LineIsWaiting() { return !lines.empty(); }

bool LineIsHeld() { return !lines.empty() && lines.front().tried; }

void OweReadyOk() {
    ++ready_owed;
    PayReadyOk();
}

void PayReadyOk() {
    if (!WorkersIdle())
        return;
    for (; ready_owed > 0; --ready_owed)
        ShowMessage("readyok");
}

void UI_Sleep(int milliseconds) { SleepUntilWoken(milliseconds * 1000, false); }

void SleepForInput(int microseconds) {
    // With a whole line at hand, or no room, what arrives changes nothing.
    SleepUntilWoken(microseconds, !ended && HasRoom() && !LineIsWaiting());
}

bool ReadDialogueLine(char* line, int size) {
    assert(size > 1);
    // Lines that arrived with the command that has begun the dialogue belong to the dialogue.
    while (lines.empty() || lines.front().too_long) {
        if (!lines.empty())
            Handle(0);
        else if (ended || PBlock.quit)
            return false;
        else
            ReadInputChunk(true);
    }
    // As much as fits; the rest is the next line.
    std::string& text = lines.front().text;
    const size_t taken = std::min(text.size(), static_cast<size_t>(size - 1));
    std::memcpy(line, text.data(), taken);
    line[taken] = '\0';
    if (taken == text.size()) {
        TakeOut(0);
    } else {
        text.erase(0, taken);
        bytes -= taken;
    }
    return true;
}

}  // namespace vrel
