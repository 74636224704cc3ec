#pragma once

namespace vrel {

// The first word of a text, cut to 128 characters; empty if there is none. The buffer is overwritten by the next call.
const char* GetWord(const char* text);

// Tokeniser of PGN move text: a pointer starts a new text, null goes on in the old one. Brackets are words of their
// own. Null at the end of the text. The buffer is overwritten by the next call.
const char* NextWord(const char* text);

}  // namespace vrel
