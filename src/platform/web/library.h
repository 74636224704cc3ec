#pragma once

// Included ahead of every source: what the library that comes with the compiler for the web may lack.

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdio>
#include <version>

namespace std {

#ifndef __cpp_lib_bit_cast
template <typename To, typename From>
constexpr To bit_cast(const From& from) noexcept {
    return __builtin_bit_cast(To, from);
}
#endif

#ifndef __cpp_lib_to_chars
// With so many digits behind the point, the one format that is asked for.
inline to_chars_result to_chars(char* text, char* end, double number, chars_format /*fixed*/, int digits) {
    char shown[400];
    const int length = snprintf(shown, sizeof shown, "%.*f", digits, number);
    if (length > end - text)
        return {end, errc::value_too_large};
    return {std::copy_n(shown, length, text), errc{}};
}
#endif

}  // namespace std
