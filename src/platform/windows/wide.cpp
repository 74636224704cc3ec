#include "platform/windows/wide.h"

#include <windows.h>

#include <cstring>

namespace vrel {

namespace {

// Empty if the text can't be read so.
std::wstring ReadAs(unsigned int code_page, DWORD flags, const char* text, size_t size) {
    const int bytes = static_cast<int>(size);
    const int length = MultiByteToWideChar(code_page, flags, text, bytes, nullptr, 0);
    std::wstring wide(length, L'\0');
    MultiByteToWideChar(code_page, flags, text, bytes, wide.data(), length);
    return wide;
}

}  // namespace

std::wstring WideText(const char* text, size_t size) {
    std::wstring wide = ReadAs(CP_UTF8, MB_ERR_INVALID_CHARS, text, size);
    return wide.empty() ? ReadAs(CP_ACP, 0, text, size) : wide;
}

std::wstring WideText(const char* text) { return WideText(text, std::strlen(text)); }

std::string Utf8Text(const wchar_t* text, size_t size) {
    const int units = static_cast<int>(size);
    const int length = WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string bytes(length, '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, units, bytes.data(), length, nullptr, nullptr);
    return bytes;
}

}  // namespace vrel
