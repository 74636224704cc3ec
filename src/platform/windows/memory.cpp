#include "platform/memory.h"

#include <windows.h>

namespace vrel {

// Committed at once, so that what is too large is refused here and not when it is used.
void* AllocatePages(uint64_t bytes) { return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE); }

void FreePages(void* memory, uint64_t /*bytes*/) {
    if (memory != nullptr)
        VirtualFree(memory, 0, MEM_RELEASE);
}

}  // namespace vrel
