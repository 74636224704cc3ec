#include "interface/numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace vrel {

int ReadInteger(const char* text, int lowest, int highest) {
    return static_cast<int>(ReadLongInteger(text, lowest, highest));
}

// strtoll stops at the limits of its type for what lies beyond them.
long long ReadLongInteger(const char* text, long long lowest, long long highest) {
    return std::clamp(std::strtoll(text, nullptr, 10), lowest, highest);
}

double ReadReal(const char* text, double lowest, double highest) {
    const double value = std::strtod(text, nullptr);
    return std::clamp(std::isfinite(value) ? value : 0.0, lowest, highest);
}

// A number of up to 15 digits is a quotient of two that a double holds exactly: it is rounded once, as its text is.
double ReadDecimal(const char* text) {
    static constexpr std::array<double, 16> powers = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                      1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr int most_digits = 15;
    const char* at = *text == '+' || *text == '-' ? text + 1 : text;
    int64_t digits = 0;
    int count = 0;
    int places = 0;
    bool point = false;
    for (; count <= most_digits && ((*at >= '0' && *at <= '9') || (*at == '.' && !point)); ++at) {
        if (*at == '.') {
            point = true;
            continue;
        }
        digits = digits * 10 + (*at - '0');
        places += point;
        ++count;
    }
    // Exponents, hexadecimal numbers, and what is no number at all.
    const bool goes_on = *at == 'e' || *at == 'E' || *at == 'x' || *at == 'X';
    if (count == 0 || count > most_digits || goes_on)
        return std::strtod(text, nullptr);
    const double value = static_cast<double>(digits) / powers[places];
    return *text == '-' ? -value : value;
}

}  // namespace vrel
