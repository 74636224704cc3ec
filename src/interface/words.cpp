#include "interface/words.h"

#include <array>
#include <cassert>
#include <cstddef>

#include "board/letters.h"

namespace vrel {

namespace {

constexpr size_t LONGEST_WORD = 128;

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

}  // namespace vrel
