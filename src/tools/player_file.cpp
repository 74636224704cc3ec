#include "tools/player_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include "interface/messages.h"
#include "platform/file.h"

namespace vrel {

namespace {

constexpr std::string_view BLANKS = " \t\v\f\r\n";

// The first word of a text, which is taken off it; empty if there is none.
std::string TakeWord(std::string_view* text) {
    text->remove_prefix(std::min(text->find_first_not_of(BLANKS), text->size()));
    std::string word(text->substr(0, text->find_first_of(BLANKS)));
    text->remove_prefix(word.size());
    return word;
}

// True if the whole word is a number that the field can hold.
template <typename Field>
bool ReadValue(const std::string& word, Field* value) {
    char* end = nullptr;
    errno = 0;
    const long number = std::strtol(word.c_str(), &end, 10);
    if (word.empty() || *end != '\0' || errno != 0 || number < std::numeric_limits<Field>::min() ||
        number > std::numeric_limits<Field>::max())
        return false;
    *value = static_cast<Field>(number);
    return true;
}

// Says what differs from the default, so that a match shows which players it was between.
template <typename Field>
bool ChangeField(const std::string& name, const std::string& word, Field* field) {
    const Field old = *field;
    if (!ReadValue(word, field))
        return false;
    if (*field != old)
        ShowFormatted("Player2: %s %d -> %d", name.c_str(), static_cast<int>(old), static_cast<int>(*field));
    return true;
}

// Carries out one line. The result tells what is wrong with it, null if nothing is.
const char* ReadPlayerLine(const std::string& line, PersonalityRecord* record) {
    std::string_view text = std::string_view(line).substr(0, line.find('#'));
    const std::string name = TakeWord(&text);
    const std::string value = TakeWord(&text);
    const bool more = !TakeWord(&text).empty();
    if (name.empty())
        return nullptr;
    int16_t* weight = FindWeight(record, name.c_str());
    int8_t* setting = weight == nullptr ? FindSelectivity(record, name.c_str()) : nullptr;
    if (weight == nullptr && setting == nullptr)
        return "unknown name";
    const bool changed = weight != nullptr ? ChangeField(name, value, weight) : ChangeField(name, value, setting);
    return changed && !more ? nullptr : "no valid number";
}

}  // namespace

// A match between the wrong players would be worth nothing, so that one bad line ends it.
bool ReadPlayerFile(const char* file, PersonalityRecord* record) {
    if (!FileExists(file))
        return true;
    File in = OpenOwnFile(file, "r");
    if (!in) {
        ShowFormatted("can't open %s", file);
        Complain("%s: %s", file, FileTrouble());
        return false;
    }
    std::string line;
    for (int number = 1; in.ReadLine(&line); ++number) {
        line.resize(std::min(line.find_first_of("\r\n"), line.size()));
        if (const char* fault = ReadPlayerLine(line, record)) {
            ShowFormatted("%s, line %d: %s: %s", file, number, fault, line.c_str());
            return false;
        }
    }
    return true;
}

}  // namespace vrel
