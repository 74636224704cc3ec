#include "tools/epd_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "board/letters.h"
#include "interface/move_text.h"
#include "interface/numbers.h"
#include "interface/words.h"

namespace vrel {

namespace {

constexpr int SHORTEST_LINE = 10;  // with its end; what is shorter holds no position
constexpr int TARGET_LENGTH = 7;   // characters of a target that are read

// A result lies between 0 and 1. Sums and slopes of what lies within these limits stay numbers.
constexpr double HIGHEST_TARGET = 1e9;

// Start of the operand of an operation that stands as a word of its own, null if there is none.
const char* FindOperand(const char* line, const char* operation) {
    const size_t length = std::strlen(operation);
    for (const char* at = std::strstr(line, operation); at != nullptr; at = std::strstr(at + 1, operation)) {
        const bool begins_word = at == line || IsBlankOrTab(at[-1]) || at[-1] == ';';
        if (begins_word && IsBlankOrTab(at[length]))
            return at + length + 1;
    }
    return nullptr;
}

}  // namespace

bool EpdFile::Fill() {
    next_ = 0;
    filled_ = file_.Read(buffer_.data(), buffer_.size());
    return filled_ > 0;
}

// A position is one line: the tail of a long one isn't another position. `length` counts what is kept of the line with
// its end.
bool EpdFile::ReadWholeLine(char* line, int* length) {
    int n = 0;
    bool ended = false;
    while (!ended && (next_ < filled_ || Fill())) {
        const char* from = buffer_.data() + next_;
        const char* end = static_cast<const char*>(std::memchr(from, '\n', filled_ - next_));
        ended = end != nullptr;
        const size_t taken = ended ? end - from + 1 : filled_ - next_;
        const size_t kept = std::min(taken, static_cast<size_t>(EPD_LINE - 1 - n));
        std::replace_copy(from, from + kept, line + n, '\0', ' ');
        n += static_cast<int>(kept);
        next_ += taken;
    }
    line[n] = '\0';
    line[std::strcspn(line, "\r\n")] = '\0';
    *length = n;
    return n > 0;
}

bool EpdFile::Next(char* line) {
    int length = 0;
    while (ReadWholeLine(line, &length))
        if (length >= SHORTEST_LINE && line[0] != ' ' && line[0] != '#' && line[0] != ';')
            return true;
    return false;
}

double ReadTarget(const char* line) {
    const char* operand = FindOperand(line, "tune");
    if (operand == nullptr)
        return 0.5;
    std::array<char, TARGET_LENGTH + 1> text{};
    std::strncpy(text.data(), operand, TARGET_LENGTH);
    return ReadReal(text.data(), -HIGHEST_TARGET, HIGHEST_TARGET);
}

Move ReadBestMove(const char* line) {
    const char* operand = FindOperand(line, "bm");
    if (operand == nullptr)
        return NO_MOVE;
    std::string_view text = Trimmed({operand, std::strcspn(operand, ";")}, " \t");
    if (std::any_of(text.begin(), text.end(), IsBlankOrTab))
        return NO_MOVE;
    text = text.substr(0, text.find_first_of("!?#"));
    MoveAsRead read;
    Move move = NO_MOVE;
    return !text.empty() && ReadMoveText(text, &move, &read) ? move : NO_MOVE;
}

File CreateOutput(const char* name, const char* input) {
    FileStamp output_stamp, input_stamp;
    if (ReadFileStamp(name, &output_stamp) && ReadFileStamp(input, &input_stamp) && SameFile(output_stamp, input_stamp))
        DeleteFile(name);
    return OpenOwnFile(name, "w");
}

}  // namespace vrel
