#include "platform/standard_input.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

#include "platform/threads.h"
#include "platform/windows/console.h"
#include "platform/windows/wait.h"

// Not every kind of pipe can be asked whether it holds bytes, so a thread of its own reads, one chunk ahead. The chunk
// belongs to the main thread while `arrived` is signalled, and to the reader while it isn't.
namespace vrel {
namespace {

constexpr size_t CHUNK = 65536;  // bytes

// Empty at the end of the input. It outlives the process: the reader may be writing into it while that ends.
std::string& chunk = *new std::string;
size_t taken = 0;  // bytes of it that the main thread has taken
HANDLE arrived = nullptr;
HANDLE wanted = nullptr;  // signalled: the reader may fill the chunk again

// A read without bytes isn't always the end: somebody may have written nothing to a pipe, or have set it not to block.
bool MayGoOn(HANDLE input, bool read) {
    return read ? PeekNamedPipe(input, nullptr, 0, nullptr, nullptr, nullptr) != 0 : GetLastError() == ERROR_NO_DATA;
}

// Reads what is there from anything but a console, and waits until there is something. Nothing at the end.
void ReadBytes(HANDLE input) {
    DWORD count = 0;
    chunk.resize(CHUNK);
    while (true) {
        const bool read = ReadFile(input, chunk.data(), CHUNK, &count, nullptr) != 0;
        if (count > 0 || !MayGoOn(input, read))
            break;
        Sleep(1);
    }
    chunk.resize(count);
}

void* ReadAhead(void* /*unused*/) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    const bool console = IsConsole(input);
    do {
        WaitForSingleObject(wanted, INFINITE);
        if (console)
            chunk = ReadFromConsole(input);
        else
            ReadBytes(input);
        SetEvent(arrived);
    } while (!chunk.empty());
    return nullptr;
}

// The reader starts with the first look at the input; if it can't, there is no input.
void StartReading() {
    if (arrived != nullptr)
        return;
    arrived = CreateEventW(nullptr, /*bManualReset=*/TRUE, FALSE, nullptr);
    wanted = CreateEventW(nullptr, /*bManualReset=*/FALSE, TRUE, nullptr);
    if (StartThread(ReadAhead, nullptr) != 0)
        SetEvent(arrived);
}

// True if bytes or the end have arrived, within `timeout` milliseconds.
bool InputAvailable(DWORD timeout) {
    StartReading();
    return WaitForSingleObject(arrived, timeout) == WAIT_OBJECT_0;
}

int ReadWhenArrived(char* buffer, int size, DWORD timeout) {
    if (!InputAvailable(timeout))
        return INPUT_NOTHING;
    if (chunk.empty())
        return INPUT_ENDED;
    const size_t count = std::min(static_cast<size_t>(std::max(size, 0)), chunk.size() - taken);
    std::memcpy(buffer, chunk.data() + taken, count);
    taken += count;
    if (taken == chunk.size()) {
        taken = 0;
        ResetEvent(arrived);
        SetEvent(wanted);
    }
    return static_cast<int>(count);
}

// Signalled by WakeMainThread, until a sleep has ended by it.
HANDLE WakeEvent() {
    static const HANDLE event = CreateEventW(nullptr, /*bManualReset=*/FALSE, FALSE, nullptr);
    return event;
}

}  // namespace

int ReadInput(char* buffer, int size) { return ReadWhenArrived(buffer, size, 0); }

int WaitForInput(char* buffer, int size) { return ReadWhenArrived(buffer, size, size < 1 ? 0 : INFINITE); }

// A sleep without an end is broken off each second: whoever sleeps looks again and sleeps on, so that a signal that an
// emulator of the system loses costs a moment and no session.
void SleepUntilWoken(int microseconds, bool by_input) {
    constexpr int LONGEST = 1000000;
    const bool may_come = by_input && !(InputAvailable(0) && chunk.empty());
    WaitFor(microseconds < 0 ? LONGEST : microseconds, WakeEvent(), may_come ? arrived : nullptr);
}

void WakeMainThread() { SetEvent(WakeEvent()); }

bool InputIsTerminal() { return IsConsole(GetStdHandle(STD_INPUT_HANDLE)); }

}  // namespace vrel
