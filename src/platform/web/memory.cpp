#include "platform/memory.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace vrel {

namespace {

constexpr size_t PAGE = 4096;
constexpr uint64_t MOST = UINT32_MAX - PAGE;   // bytes that an address can tell apart
constexpr uint64_t LARGE = uint64_t{4} << 20;  // from here on a block is a table, which the main thread claims

// The last table that was given back. Others would settle in its place, and one as large would find none any more:
// memory that was once claimed stays so.
struct Block {
    void* memory = nullptr;
    uint64_t bytes = 0;
};
Block kept;

// Null if the kept block, which is given up then, doesn't suffice.
void* TakeKept(uint64_t bytes) {
    const Block block = std::exchange(kept, {});
    if (block.bytes >= bytes)
        return block.memory;
    std::free(block.memory);
    return nullptr;
}

void* Claim(uint64_t bytes) {
    const size_t whole_pages = (static_cast<size_t>(bytes) + PAGE - 1) / PAGE * PAGE;
    return std::aligned_alloc(PAGE, whole_pages);
}

}  // namespace

// What has been given back before still holds what was written to it.
void* AllocatePages(uint64_t bytes) {
    if (bytes > MOST)
        return nullptr;
    void* memory = bytes >= LARGE ? TakeKept(bytes) : nullptr;
    if (memory == nullptr)
        memory = Claim(bytes);
    if (memory != nullptr)
        std::memset(memory, 0, static_cast<size_t>(bytes));
    return memory;
}

void FreePages(void* memory, uint64_t bytes) {
    if (bytes >= LARGE && memory != nullptr && kept.memory == nullptr)
        kept = {memory, bytes};
    else
        std::free(memory);
}

}  // namespace vrel
