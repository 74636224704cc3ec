#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

namespace vrel {

// The first word of a text, cut to 128 characters; empty if there is none. The buffer is overwritten by the next call.
const char* GetWord(const char* text);

constexpr bool Contains(std::string_view text, std::string_view what) {
    return text.find(what) != std::string_view::npos;
}

// A text without the characters of a set, blanks if none is named, that stand at its ends.
constexpr std::string_view Trimmed(std::string_view text, std::string_view set = " ") {
    text.remove_prefix(std::min(text.find_first_not_of(set), text.size()));
    return text.substr(0, text.find_last_not_of(set) + 1);
}

// The row of that name in a table of commands, options or weights; null if there is none. Rows without a name are
// passed over.
template <typename Table>
constexpr auto FindRow(const Table& table, std::string_view name) {
    const auto row = std::find_if(std::begin(table), std::end(table),
                                  [name](const auto& entry) { return entry.name != nullptr && name == entry.name; });
    return row != std::end(table) ? &*row : nullptr;
}

}  // namespace vrel
