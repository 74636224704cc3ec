#pragma once

#include <concepts>

namespace vrel {

// A number on its way into a narrower field: `frame->eval = Narrow(score)`. The field's type says how much of it is
// kept; what doesn't fit is cut off without a word, since scores are told to live in fields of sixteen bits.
class Narrow {
public:
    constexpr explicit Narrow(int number) : number_(number) {}

    template <std::integral Field>
    constexpr operator Field() const {
        return static_cast<Field>(number_);
    }

private:
    int number_;
};

}  // namespace vrel
