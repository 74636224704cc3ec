#pragma once

#include <cstdint>

namespace vrel {

// Tells who watches long work at a terminal how much of it is done, how fast it goes, and how long the rest takes: one
// line on standard error, rewritten in place a few times a second and taken away at the end. Where standard error is no
// terminal nothing is written.
class Progress {
public:
    // `unit` names what is counted; "bytes" are shown as kB or MB. With `all` below 1 nothing is shown.
    Progress(const char* unit, int64_t all);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // True if the line may be rewritten: for work whose state isn't known for nothing.
    bool IsDue() const;

    // Rewrites the line, if it is due.
    void Show(int64_t done);

private:
    const char* unit_;
    int64_t all_;  // 0: nothing is shown
    double start_;
    double next_;  // time at which the line is due again
};

}  // namespace vrel
