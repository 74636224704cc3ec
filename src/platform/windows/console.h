#pragma once

#include <string>

// A console hands over and takes characters, whatever code page it is set to.
namespace vrel {

bool IsConsole(void* handle);

// Waits for a finished line and reads it, its end included, as UTF-8; of a very long one, a part. Empty at the end of
// the input.
std::string ReadFromConsole(void* handle);

void WriteToConsole(void* handle, const std::string& text);

}  // namespace vrel
