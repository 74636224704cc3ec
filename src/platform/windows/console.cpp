#include "platform/windows/console.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/windows/wide.h"

namespace vrel {

namespace {

constexpr size_t MOST_AT_ONCE = 16384;  // characters
constexpr wchar_t END_KEY = L'\x1a';    // at the start of a line it ends the input

}  // namespace

bool IsConsole(void* handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

std::string ReadFromConsole(void* handle) {
    static std::array<wchar_t, MOST_AT_ONCE> typed;
    DWORD count = 0;
    do {
        SetLastError(ERROR_SUCCESS);
        if (ReadConsoleW(handle, typed.data(), MOST_AT_ONCE, &count, nullptr) == 0)
            return {};
    } while (count == 0 && GetLastError() == ERROR_OPERATION_ABORTED);  // by a key that the system has handled
    return count == 0 || typed[0] == END_KEY ? std::string() : Utf8Text(typed.data(), count);
}

void WriteToConsole(void* handle, const std::string& text) {
    const std::wstring wide = WideText(text.data(), text.size());
    size_t done = 0;
    DWORD written = 1;
    while (done < wide.size() && written > 0) {
        const auto count = static_cast<DWORD>(std::min(wide.size() - done, MOST_AT_ONCE));
        if (WriteConsoleW(handle, wide.data() + done, count, &written, nullptr) == 0)
            return;
        done += written;
    }
}

}  // namespace vrel
