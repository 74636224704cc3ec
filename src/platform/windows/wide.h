#pragma once

#include <cstddef>
#include <string>

// The system's own text is UTF-16, the engine's is bytes.
namespace vrel {

// The text as UTF-8 or, if it isn't that, in the system's code page.
std::wstring WideText(const char* text, size_t size);
std::wstring WideText(const char* text);

// UTF-8; halves of a pair of units become the character that stands for the unknown.
std::string Utf8Text(const wchar_t* text, size_t size);

}  // namespace vrel
