#pragma once

namespace vrel {

// The first word of a text, cut to 128 characters; empty if there is none. The buffer is overwritten by the next call.
const char* GetWord(const char* text);

}  // namespace vrel
