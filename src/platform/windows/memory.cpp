#include "platform/memory.h"

#include <windows.h>

namespace vrel {

void* AllocatePages(size_t bytes) { return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE); }

void FreePages(void* memory, size_t /*bytes*/) {
    if (memory != nullptr)
        VirtualFree(memory, 0, MEM_RELEASE);
}

}  // namespace vrel
