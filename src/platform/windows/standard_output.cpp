#include "platform/standard_output.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "platform/windows/console.h"

namespace vrel {

namespace {

constexpr size_t MOST_AT_ONCE = 1U << 20;  // bytes

bool ReaderIsGone(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
}

bool WriteBytes(HANDLE output, const char* text, size_t size) {
    while (size > 0) {
        DWORD written = 0;
        if (WriteFile(output, text, static_cast<DWORD>(std::min(size, MOST_AT_ONCE)), &written, nullptr) == 0)
            return !ReaderIsGone(GetLastError());
        // A pipe that has been set not to block takes nothing while it is full.
        if (written == 0)
            Sleep(1);
        text += written;
        size -= written;
    }
    return true;
}

void OccupyStream(DWORD stream) {
    const HANDLE handle = GetStdHandle(stream);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE)
        SetStdHandle(stream, CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, 0, nullptr));
}

}  // namespace

bool WriteOutput(const char* text, size_t size, const char* end, size_t end_size) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    const std::string whole = std::string(text, size).append(end, end_size);
    if (!IsConsole(output))
        return WriteBytes(output, whole.data(), whole.size());
    // A console has no reader who could go.
    WriteToConsole(output, whole);
    return true;
}

bool ErrorOutputIsTerminal() { return IsConsole(GetStdHandle(STD_ERROR_HANDLE)); }

void OccupyStandardStreams() {
    for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE})
        OccupyStream(stream);
}

// Such a write fails here in any case. What must not happen is that a drive without a disk is asked for in a window.
void IgnoreBrokenPipe() { SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); }

}  // namespace vrel
