#pragma once

#include <string_view>

#include "interface/control/input.h"

// The UCI options: one row each, from which the introduction, the limits and the replies follow.
namespace vrel {

enum OptionType { SPIN, CHECK, BUTTON };

struct UciOption {
    const char* name;
    OptionType type;
    int preset, lowest, highest;  // a check is 0 or 1
    const char* reply;            // format for the new value, null for none
    Need (*need)();               // what a change needs of a search that runs
    void (*apply)(int value);
};

// The option of that name, null if there is none.
const UciOption* FindOption(std::string_view name);

// Shows the lines that declare all options.
void DeclareOptions();

// The value that a text gives an option: within its range; a check is on with exactly "true".
int ReadOption(const UciOption& option, const char* text);

// Gives an option a value and tells so.
void SetOption(const UciOption& option, int value);

}  // namespace vrel
