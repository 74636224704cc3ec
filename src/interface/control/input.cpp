#include "interface/control/input.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

#include "interface/control/console.h"
#include "interface/control/requests.h"
#include "interface/control/uci.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "platform/standard_input.h"

namespace vrel {

namespace {

constexpr size_t LONGEST_LINE = 65536;
constexpr size_t QUEUE = 2 * LONGEST_LINE;

// Bytes that have arrived and not been handled yet. What has no room stays in the pipe.
std::array<char, QUEUE> inbuf;
size_t used = 0;
size_t searched = 0;    // so many bytes of them hold no line end
bool ended = false;     // no more bytes will come
bool too_long = false;  // the rest of an overlong line is being read over

// A line that has been taken from the queue and waits for a free engine; it goes before all others.
std::string held_line;
bool held = false;

int dispatching = 0;  // lines in work: a tool started by one may ask for input itself

bool EndsLine(char c) { return c == '\n' || c == '\0' || c == '@'; }

void TakeIn(int received) {
    if (received == INPUT_ENDED)
        ended = true;
    else
        used += static_cast<size_t>(received);
}

void ReadInputChunk(bool wait) {
    if (ended || used == QUEUE)
        return;
    char* free = inbuf.data() + used;
    const int room = static_cast<int>(QUEUE - used);
    TakeIn(wait ? WaitForInput(free, room) : ReadInput(free, room));
}

void DropBytes(size_t count) {
    std::memmove(inbuf.data(), inbuf.data() + count, used - count);
    used -= count;
    searched = 0;
}

// Ends of lines without a character.
void DropEmptyLines() {
    const char* first = std::find_if_not(inbuf.data(), inbuf.data() + used, EndsLine);
    const auto count = static_cast<size_t>(first - inbuf.data());
    if (count > 0)
        DropBytes(count);
}

// Length of the first line without its end, or `used` if its end hasn't come.
size_t FirstLineLength() {
    const char* end = std::find_if(inbuf.data() + searched, inbuf.data() + used, EndsLine);
    searched = static_cast<size_t>(end - inbuf.data());
    return searched;
}

// A line longer than can be handled is refused whole.
bool RefusedOverlong(size_t length) {
    const bool complete = length < used;
    if (!too_long && length > LONGEST_LINE) {
        ShowFormatted("info string line of more than %d characters refused", static_cast<int>(LONGEST_LINE));
        too_long = true;
    }
    if (!too_long)
        return false;
    DropBytes(complete ? length + 1 : used);
    too_long = !complete && !ended;
    return true;
}

// Finds the first line of the queue, cut at its first line end of any kind, and how many bytes it takes there. The last
// line before the end of the input needs no end.
bool FindLine(std::string* line, size_t* length) {
    if (!too_long)
        DropEmptyLines();
    const size_t n = FirstLineLength();
    if (RefusedOverlong(n))
        return false;
    if (n == used && !(ended && n > 0))
        return false;
    line->assign(inbuf.data(), n);
    line->resize(std::min(line->find_first_of("\r\n"), n));
    *length = std::min(n + 1, used);
    return true;
}

// The line that is next in turn, taken out of the queue.
bool NextLine(std::string* line) {
    if (held) {
        held = false;
        *line = std::move(held_line);
        return true;
    }
    size_t length = 0;
    if (!FindLine(line, &length))
        return false;
    DropBytes(length);
    return true;
}

// `again` if the line was held back before.
void Dispatch(const std::string& line, bool again) {
    if (line.empty())
        return;
    if (PBlock.mode == MODE_UCI || line == "uci")
        UciCommand(line.c_str(), !again);
    else
        ConsoleCommand(line.c_str());
}

}  // namespace

void UserInput() {
    // A tool may be run by a line that another tool has read, but not deeper.
    if (dispatching == 2)
        return;
    ReadInputChunk(false);
    PayReadyOk();
    const bool again = held;
    std::string line;
    if (!NextLine(&line))
        return;
    // Nobody brings a line of a tool within a command again.
    const bool may_wait = LetLinesWait(false);
    LetLinesWait(may_wait && dispatching == 0);
    ++dispatching;
    Dispatch(line, again);
    --dispatching;
    LetLinesWait(may_wait);
    if (LineWasHeld()) {
        held_line = std::move(line);
        held = true;
    }
}

bool InputIsOver() { return ended && used == 0 && !held; }

bool LineIsWaiting() { return held || FirstLineLength() < used || (ended && used > 0); }

bool LineIsHeld() { return held; }

void UI_Sleep(int milliseconds) { SleepMilliseconds(milliseconds); }

void SleepForInput(int microseconds) {
    // With a whole line at hand, or no room, what arrives changes nothing.
    if (ended || used == QUEUE || LineIsWaiting())
        SleepMicroseconds(microseconds);
    else
        SleepUntilInput(microseconds);
}

bool ReadDialogueLine(char* line, int size) {
    std::string text;
    size_t length = 0;
    while (!FindLine(&text, &length)) {
        if (InputIsOver() || PBlock.quit)
            return false;
        ReadInputChunk(true);
    }
    // As much as fits; the rest is the next line.
    const auto room = static_cast<size_t>(size - 1);
    const bool whole = text.size() <= room;
    const size_t taken = whole ? text.size() : room;
    std::memcpy(line, text.data(), taken);
    line[taken] = '\0';
    DropBytes(whole ? length : taken);
    return true;
}

}  // namespace vrel
