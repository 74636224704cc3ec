#include "interface/numbers.h"

#include <algorithm>
#include <cmath>
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

}  // namespace vrel
