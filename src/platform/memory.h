#pragma once

#include <cstdint>

namespace vrel {

// Zeroed pages that take no memory until they are touched; null if there are none. Large blocks ask for huge pages.
void* AllocatePages(uint64_t bytes);

// Gives back what AllocatePages gave, with the same size; null is fine.
void FreePages(void* memory, uint64_t bytes);

}  // namespace vrel
