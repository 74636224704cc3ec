#include "interface/input.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include "interface/console.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "interface/requests.h"
#include "interface/uci.h"
#include "platform/clock.h"
#include "platform/standard_input.h"

namespace vrel {

namespace {

constexpr size_t LONGEST_LINE = 65536;
constexpr size_t QUEUE = 2 * LONGEST_LINE;

// Bytes that have arrived and not been handled yet. What has no room stays in the pipe.
std::array<char, QUEUE> inbuf;
size_t used = 0;
bool ended = false;     // no more bytes will come
bool too_long = false;  // the rest of an overlong line is being read over
bool held = false;      // the first line has been tried and waits for the engine

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
}

// Length of the first line without its end, or `used` if its end hasn't come.
size_t FirstLineLength() {
    return static_cast<size_t>(std::find_if(inbuf.begin(), inbuf.begin() + used, EndsLine) - inbuf.begin());
}

// A line longer than can be handled is refused whole.
bool RefusedOverlong(size_t length) {
    const bool complete = length < used;
    if (too_long) {
        DropBytes(complete ? length + 1 : used);
        too_long = !complete && !ended;
        return true;
    }
    if (length <= LONGEST_LINE)
        return false;
    ShowFormatted("info string line of more than %d characters refused", static_cast<int>(LONGEST_LINE));
    too_long = true;
    return true;
}

// The first line of the queue without taking it out. The last line before the end of the input needs no end.
bool NextLine(std::string* line, size_t* length) {
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

void Dispatch(const std::string& line) {
    if (line.empty())
        return;
    if (PBlock.mode == MODE_UCI || line == "uci")
        UciCommand(line.c_str(), !held);
    else
        ConsoleCommand(line.c_str());
}

}  // namespace

void UserInput() {
    ReadInputChunk(false);
    std::string line;
    size_t length = 0;
    if (!NextLine(&line, &length))
        return;
    Dispatch(line);
    held = LineWasHeld();
    if (!held)
        DropBytes(length);
}

bool InputIsOver() { return ended && used == 0; }

bool LineIsHeld() { return held; }

void UI_Sleep(int milliseconds) { SleepMilliseconds(milliseconds); }

bool ReadDialogueLine(char* line, int size) {
    std::string text;
    size_t length = 0;
    while (!NextLine(&text, &length)) {
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
