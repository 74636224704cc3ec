#include "board/search_thread.h"

#include "platform/memory.h"
#include "platform/narrow.h"

namespace vrel {

std::array<std::atomic<SearchThread*>, MAX_THREADS + 1> ThreadData;

namespace {

// A slot without a record has no worker.
bool IsSearching(const SearchThread* thread) {
    return thread != nullptr && thread->work_flag.load(std::memory_order_acquire) == WORK_SEARCH;
}

}  // namespace

void FreeThread(int id) {
    assert(!IsSearching(GetThread(id)));
    SearchThread* thread = ThreadData[id].exchange(nullptr, std::memory_order_acq_rel);
    FreePages(thread, sizeof(SearchThread));
}

int InitNewThread(int id) {
    FreeThread(id);
    // The record holds plain data and atomics of plain data alone, for which zeroed pages are a valid start.
    auto* thread = static_cast<SearchThread*>(AllocatePages(sizeof(SearchThread)));
    if (thread == nullptr)
        return -1;
    thread->id = Narrow(id);
    thread->pos.thread_index = Narrow(id);
    thread->seed = 123u * static_cast<uint32_t>(id);
    thread->pos.undo = thread->undo.data();
    thread->pos.frames = thread->frames.data();
    // The frame before the root, which the root looks back at, has no list of its own.
    thread->frames[0].first = thread->move_stack.data();
    thread->frames[1].first = thread->move_stack.data();
    thread->pos.ply = 1;
    for (auto& rows : thread->pos.plist)
        for (auto& row : rows)
            row[0] = NO_SQUARE;
    thread->pos.ep_square = NO_SQUARE;
    // Whoever finds the record finds it complete.
    ThreadData[id].store(thread, std::memory_order_release);
    return 0;
}

void FreeThreads() {
    for (int id = 0; id <= MAX_THREADS; ++id)
        FreeThread(id);
}

bool NobodySearches() {
    for (int id = 0; id <= MAX_THREADS; ++id)
        if (IsSearching(GetThread(id)))
            return false;
    return true;
}

}  // namespace vrel
