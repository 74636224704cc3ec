#include "search/search_thread.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace vrel {

std::array<std::atomic<SearchThread*>, MAX_THREADS + 1> ThreadData;

namespace {

void FreeThread(int id) { std::free(ThreadData[static_cast<size_t>(id)].exchange(nullptr, std::memory_order_acq_rel)); }

// Zeroed memory that is touched only when it is used. The record holds plain data and atomics of plain data alone,
// for which all bits zero are a valid start.
void* AllocateZeroed(size_t size, size_t alignment) {
    void* memory = std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    if (memory != nullptr)
        std::memset(memory, 0, size);
    return memory;
}

}  // namespace

int InitNewThread(int id) {
    FreeThread(id);
    void* memory = AllocateZeroed(sizeof(SearchThread), alignof(SearchThread));
    if (memory == nullptr)
        return -1;
    auto* thread = static_cast<SearchThread*>(memory);
    thread->id = static_cast<int8_t>(id);
    thread->pos.thread_index = static_cast<uint8_t>(id);
    thread->seed = 123u * static_cast<uint32_t>(id);
    thread->pos.undo = thread->undo.data();
    thread->pos.frames = thread->frames.data();
    thread->frames[0].first = thread->move_stack.data();
    thread->frames[1].first = thread->move_stack.data();
    thread->pos.ply = 1;
    for (auto& rows : thread->pos.plist)
        for (auto& row : rows)
            row[0] = NO_SQUARE;
    thread->pos.ep_square = NO_SQUARE;
    ThreadData[static_cast<size_t>(id)].store(thread, std::memory_order_release);
    return 0;
}

void FreeThreads() {
    for (int id = 0; id <= MAX_THREADS; ++id)
        FreeThread(id);
}

}  // namespace vrel
