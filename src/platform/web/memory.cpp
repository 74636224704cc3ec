#include "platform/memory.h"

#include <cstdlib>
#include <cstring>

namespace vrel {

namespace {

constexpr size_t PAGE = 4096;
constexpr uint64_t MOST = UINT32_MAX - PAGE;  // bytes that an address can tell apart

}  // namespace

// What has been given back before still holds what was written to it.
void* AllocatePages(uint64_t bytes) {
    if (bytes > MOST)
        return nullptr;
    const size_t whole_pages = (static_cast<size_t>(bytes) + PAGE - 1) / PAGE * PAGE;
    void* memory = std::aligned_alloc(PAGE, whole_pages);
    if (memory != nullptr)
        std::memset(memory, 0, whole_pages);
    return memory;
}

void FreePages(void* memory, uint64_t /*bytes*/) { std::free(memory); }

}  // namespace vrel
