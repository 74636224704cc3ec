#include "platform/memory.h"

#include <sys/mman.h>

namespace vrel {

namespace {

// From this size on a block is worth huge pages: fewer misses of the address cache in random access.
constexpr size_t HUGE_PAGES_FROM = size_t{4} << 20;

}  // namespace

void* AllocatePages(uint64_t bytes) {
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    if (bytes >= HUGE_PAGES_FROM)
        madvise(memory, bytes, MADV_HUGEPAGE);
    return memory;
}

void FreePages(void* memory, uint64_t bytes) {
    if (memory != nullptr)
        munmap(memory, bytes);
}

}  // namespace vrel
