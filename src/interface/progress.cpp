#include "interface/progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "interface/messages.h"
#include "platform/clock.h"
#include "platform/standard_output.h"

namespace vrel {

namespace {

constexpr double INTERVAL = 0.2;  // seconds
constexpr double TELLING = 0.5;   // seconds; what took less says nothing about the speed
constexpr int MINUTE = 60;
constexpr int HOUR = 3600;
constexpr double LONGEST = 360000.0;  // seconds; what takes longer shows as this

using Text = std::array<char, 96>;  // what doesn't fit on a usual terminal isn't wanted

struct Scale {
    double size;
    const char* name;
};

Scale ScaleOf(const char* unit, int64_t all) {
    if (std::string_view(unit) != "bytes")
        return {1.0, unit};
    return all < 1000000 ? Scale{1e3, "kB"} : Scale{1e6, "MB"};
}

// How fast it goes, and the time that the rest takes at that speed: what is slower than one a second is told by the
// minute. Nothing as long as it can't be told.
void WriteSpeed(double done, double rest, double seconds, const char* unit, Text* text) {
    if (done <= 0.0 || seconds < TELLING) {
        text->front() = '\0';
        return;
    }
    const double rate = done / seconds;
    const int left = static_cast<int>(std::min(rest / rate, LONGEST));
    const bool slow = rate < 1.0;
    std::snprintf(text->data(), text->size(), ", %.1f %s/%s, %d:%02d:%02d left", slow ? rate * MINUTE : rate, unit,
                  slow ? "min" : "s", left / HOUR, left % HOUR / MINUTE, left % MINUTE);
}

}  // namespace

Progress::Progress(const char* unit, int64_t all)
    : unit_(unit), all_(ErrorOutputIsTerminal() ? std::max<int64_t>(all, 0) : 0) {
    start_ = next_ = all_ > 0 ? MonotonicSeconds() : 0.0;
}

Progress::~Progress() {
    if (all_ > 0)
        ShowProgressLine("");
}

bool Progress::IsDue() const { return all_ > 0 && SecondsSince(next_) >= 0.0; }

void Progress::Show(int64_t done) {
    if (!IsDue())
        return;
    next_ = MonotonicSeconds() + INTERVAL;
    const Scale scale = ScaleOf(unit_, all_);
    const double share = static_cast<double>(done) / scale.size;
    const double whole = static_cast<double>(all_) / scale.size;
    const int places = scale.size > 1.0 ? 1 : 0;
    Text speed;
    std::array<char, 2 * sizeof(Text)> line;
    WriteSpeed(share, whole - share, SecondsSince(start_), scale.name, &speed);
    std::snprintf(line.data(), line.size(), "%3.0f %%, %.*f of %.*f %s%s", 100.0 * share / whole, places, share, places,
                  whole, scale.name, speed.data());
    ShowProgressLine(line.data());
}

}  // namespace vrel
