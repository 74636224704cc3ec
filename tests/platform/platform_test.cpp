#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "platform/clock.h"
#include "platform/file.h"
#include "platform/memory.h"
#include "platform/threads.h"

namespace vrel {
namespace {

void Write(const char* name, const std::string& text) {
    File out(name, "w");
    ASSERT_TRUE(out.Write(text.data(), text.size()) && out.Close());
}

TEST(Platform, LinesComeInPartsOrWhole) {
    const std::string big(File::LONGEST_LINE - 2, 'x');
    const std::string nul("a\0b\n", 4);
    Write("lines", "abcdefgh\nij\n" + nul + big + "\r\n" + big + "xyz\nlast");
    File in("lines", "r");
    char part[5];
    std::string parts;
    for (int i = 0; i < 4 && in.ReadLine(part, sizeof part); ++i)
        parts += std::string(part) + "|";
    EXPECT_EQ(parts, "abcd|efgh|\n|ij\n|");
    EXPECT_FALSE(in.ReadLine(part, 0));
    for (const std::string& expected : {nul, big + "\r\n", big + "xy", std::string("z\n"), std::string("last")}) {
        std::string line;
        EXPECT_TRUE(in.ReadLine(&line));
        EXPECT_EQ(line, expected);
    }
    std::string line = "old";
    EXPECT_FALSE(in.ReadLine(&line));
    EXPECT_EQ(line, "");
    EXPECT_TRUE(in.Seek(2));
    EXPECT_EQ(in.Read(part, 3), 3U);
    EXPECT_EQ(part[0], 'c');
    EXPECT_EQ(in.Size(), static_cast<long>(12 + 4 + 2 * big.size() + 2 + 4 + 4));
    EXPECT_FALSE(in.Seek(-1));
}

TEST(Platform, WhatIsNoFileDoesNothing) {
    for (const char* name : {"missing", "."}) {
        File none(name, "r");
        char line[8] = "old";
        EXPECT_FALSE(none || none.ReadLine(line, sizeof line) || none.Read(line, 1) || none.WriteText("x") ||
                     none.Print("%d", 1) || none.Flush() || none.Seek(0) || none.Close());
        EXPECT_STREQ(line, "");
        EXPECT_EQ(none.Size(), -1);
    }
    File full("/dev/full", "w");
    full.WriteText("text");
    EXPECT_FALSE(full.Flush());
    EXPECT_FALSE(full.Close()) << "a full disk shows";
}

TEST(Platform, PagesAreZeroAndAllOfThemCanBeUsed) {
    for (const size_t size : {size_t{1}, size_t{5000}, (size_t{4} << 20) + 123}) {
        auto* bytes = static_cast<unsigned char*>(AllocatePages(size));
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(std::count(bytes, bytes + size, 0), static_cast<ptrdiff_t>(size));
        std::fill_n(bytes, size, static_cast<unsigned char>(0xa5));
        FreePages(bytes, size);
    }
    FreePages(nullptr, 4096);
    EXPECT_EQ(AllocatePages(size_t{1} << 62), nullptr);
}

TEST(Platform, SpinLockKeepsThreadsApart) {
    struct Tally {
        SpinLock lock;
        int count = 0;
        std::atomic<int> finished{0};
    } tally;
    ASSERT_EQ(tally.lock.Init(), 0);
    const ThreadBody count_up = [](void* argument) -> void* {
        auto* shared = static_cast<Tally*>(argument);
        for (int i = 0; i < 20000; i++) {
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
    EXPECT_EQ(tally.count, 60000);
    tally.lock.Destroy();
}

TEST(Platform, SleepsAreNoShorterThanAsked) {
    const double start = MonotonicSeconds();
    SleepMilliseconds(1000);
    SleepMilliseconds(20);
    EXPECT_GE(SecondsSince(start), 1.02 - 1e-6);
    SleepMilliseconds(-5);
    SleepMicroseconds(0);
}

}  // namespace
}  // namespace vrel
