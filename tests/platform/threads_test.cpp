#include <gtest/gtest.h>

#include <array>
#include <atomic>

#include "platform/clock.h"
#include "platform/relaxed.h"
#include "platform/threads.h"

namespace vrel {
namespace {

constexpr int kRounds = 20000;

struct Tally {
    SpinLock lock;
    int64_t count = 0;
    std::atomic<int> finished{0};
};

TEST(SpinLock, KeepsThreadsApart) {
    Tally tally;
    ASSERT_EQ(tally.lock.Init(), 0);
    const ThreadBody count_up = [](void* argument) -> void* {
        auto* shared = static_cast<Tally*>(argument);
        for (int i = 0; i < kRounds; i++) {
            const SpinGuard guard(&shared->lock);
            shared->count++;
        }
        shared->finished.fetch_add(1, std::memory_order_release);
        return nullptr;
    };
    for (int i = 0; i < 3; i++)
        ASSERT_EQ(StartThread(count_up, &tally), 0);
    while (tally.finished.load(std::memory_order_acquire) < 3)
        SleepMilliseconds(1);
    EXPECT_EQ(tally.count, 3 * kRounds);
    tally.lock.Destroy();
}

TEST(WorkerThread, GetsItsArgument) {
    static std::array<int, 3> numbers = {1, 2, 3};
    static std::atomic<int> sum{0};
    const ThreadBody add = [](void* argument) -> void* {
        sum.fetch_add(*static_cast<int*>(argument), std::memory_order_relaxed);
        return nullptr;
    };
    for (int& number : numbers)
        ASSERT_EQ(StartThread(add, &number), 0);
    while (sum.load(std::memory_order_relaxed) < 6)
        SleepMilliseconds(1);
    EXPECT_EQ(sum.load(), 6);
}

TEST(Clock, SleepsNoShorterThanAsked) {
    const double start = MonotonicSeconds();
    SleepMilliseconds(20);
    EXPECT_GE(SecondsSince(start), 0.02 - 1e-6);
}

TEST(Clock, NothingToSleepReturns) {
    SleepMilliseconds(0);
    SleepMilliseconds(-5);
}

TEST(Clock, RunsForward) {
    const double start = MonotonicSeconds();
    double last = 0.0;
    for (int i = 0; i < 1000; i++) {
        const double now = SecondsSince(start);
        ASSERT_GE(now, last - 1e-6);  // the unit in the last place of a large clock
        last = now;
    }
}

TEST(Relaxed, ReadsAndAssignsLikeItsValue) {
    Relaxed<int16_t> field{5};
    field = static_cast<int16_t>(field + 2);
    field.Add(-10);
    const Relaxed<int16_t> copy = field;
    EXPECT_EQ(copy, -3);
}

}  // namespace
}  // namespace vrel
