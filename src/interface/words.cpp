#include "interface/words.h"

#include <array>
#include <cassert>
#include <cstddef>

#include "board/letters.h"

namespace vrel {

namespace {

constexpr size_t LONGEST_WORD = 128;
constexpr size_t PGN_WORD = 256;

bool IsBracket(char c) { return c == '{' || c == '}' || c == '(' || c == ')'; }

// Characters of move text; control characters and what lies beyond ASCII don't enter a word.
bool BelongsToWord(char c) { return static_cast<unsigned char>(c) >= 32 && static_cast<unsigned char>(c) <= 127; }

}  // namespace

const char* GetWord(const char* text) {
    assert(text != nullptr);
    static std::array<char, LONGEST_WORD + 1> word;
    text = SkipBlanks(text);
    size_t n = 0;
    while (n < LONGEST_WORD && *text != '\0' && *text != '\n' && *text != '\r' && *text != ' ')
        word[n++] = *text++;
    word[n] = '\0';
    return word.data();
}

const char* NextWord(const char* text) {
    static const char* position = "";
    static std::array<char, PGN_WORD> word;
    if (text != nullptr)
        position = text;
    position = SkipBlanks(position);
    if (*position == '\0')
        return nullptr;
    size_t n = 0;
    if (IsBracket(*position)) {
        word[n++] = *position++;
    } else {
        // What doesn't fit is read over.
        for (; *position != '\0' && *position != ' ' && !IsBracket(*position); ++position)
            if (BelongsToWord(*position) && n < PGN_WORD - 1)
                word[n++] = *position;
    }
    word[n] = '\0';
    return word.data();
}

}  // namespace vrel
