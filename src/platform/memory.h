#pragma once

#include <cstddef>

namespace vrel {

// Zeroed pages that take no memory until they are touched; null if there are none. Large blocks ask for huge pages.
void* AllocatePages(size_t bytes);

// Gives back what AllocatePages gave, with the same size; null is fine.
void FreePages(void* memory, size_t bytes);

}  // namespace vrel
