#include "platform/memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

namespace vrel {
namespace {

// A little over a page, many pages, and more than a huge page.
constexpr size_t kSizes[] = {1, 5000, 100000, (4U << 20) + 123};

bool AllZero(const unsigned char* bytes, size_t size) {
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

TEST(Memory, PagesAreZeroAndAllOfThemCanBeUsed) {
    for (const size_t size : kSizes) {
        auto* bytes = static_cast<unsigned char*>(AllocatePages(size));
        ASSERT_NE(bytes, nullptr) << size;
        EXPECT_TRUE(AllZero(bytes, size)) << size;
        std::fill_n(bytes, size, static_cast<unsigned char>(0xa5));
        FreePages(bytes, size);
    }
}

TEST(Memory, NothingIsFreedQuietly) { FreePages(nullptr, 4096); }

TEST(Memory, MoreThanThereIsGivesNull) { EXPECT_EQ(AllocatePages(static_cast<size_t>(1) << 62), nullptr); }

}  // namespace
}  // namespace vrel
