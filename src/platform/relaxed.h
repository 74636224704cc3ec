#pragma once

#include <atomic>
#include <type_traits>

namespace vrel {

// A field that one thread writes and others may look at: every read gives some recent value and orders nothing.
// It reads and assigns like a plain T and costs what a plain move costs. Hand-overs use std::atomic itself, with
// release and acquire.
template <typename T>
class Relaxed {
public:
    Relaxed() = default;
    constexpr Relaxed(T value) : value_(value) {}
    Relaxed(const Relaxed& other) : value_(other.Get()) {}
    Relaxed& operator=(const Relaxed& other) {  // NOLINT(cert-oop54-cpp): copying a value onto itself does no harm
        Set(other.Get());
        return *this;
    }
    T operator=(T value) {
        Set(value);
        return value;
    }

    // The one converting store: a number of any type is cut to the width of the field. A real number is made an integer
    // first, where the direction of rounding can be seen.
    template <typename Number>
    requires std::is_integral_v<Number> ||(std::is_floating_point_v<Number>&& std::is_floating_point_v<T>)T operator=(
        Number number) {
        return *this = static_cast<T>(number);
    }

    operator T() const { return Get(); }

    T Get() const { return value_.load(std::memory_order_relaxed); }
    void Set(T value) { value_.store(value, std::memory_order_relaxed); }

    // Adds without a locked instruction: only the one writer of the field may call it.
    void Add(T amount) { Set(static_cast<T>(Get() + amount)); }

private:
    std::atomic<T> value_;
};

}  // namespace vrel
