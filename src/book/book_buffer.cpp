#include "book/book_buffer.h"

#include <algorithm>
#include <cassert>
#include <functional>

namespace vrel {

void ClearBuffer(BookBuffer* buffer) {
    buffer->count = 0;
    buffer->slots.fill(0);
}

BookRecord* FindOrInsert(BookBuffer* buffer, uint16_t key, uint32_t second) {
    const uint64_t order = BookOrder(key, second);
    assert(buffer->count <= BOOK_BUFFER_RECORDS);
    // At most a third of the slots is in use, so that an empty one always ends the walk.
    auto slot = static_cast<uint16_t>((order * 0x9e3779b97f4a7c15ULL) >> 48);
    for (; buffer->slots[slot] != 0; ++slot) {
        BookRecord& record = buffer->records[buffer->slots[slot] - 1U];
        if (BookOrder(record) == order)
            return &record;
    }
    if (buffer->count == BOOK_BUFFER_RECORDS)
        return nullptr;
    BookRecord& record = buffer->records[buffer->count++];
    record = {key, static_cast<uint16_t>(second & 0xffff), static_cast<uint16_t>(second >> 16), 0, 0, 0, 0};
    buffer->slots[slot] = static_cast<uint16_t>(buffer->count);
    return &record;
}

void SortBuffer(BookBuffer* buffer) {
    // Order and number of a record fill 64 bits exactly: sorting those is quicker than moving records about.
    static_assert(BOOK_BUFFER_RECORDS < 65536);
    for (size_t i = 0; i < buffer->count; ++i)
        buffer->order[i] = BookOrder(buffer->records[i]) << 16 | i;
    const auto end = buffer->order.begin() + static_cast<std::ptrdiff_t>(buffer->count);
    std::sort(buffer->order.begin(), end, std::greater<>());
    for (size_t i = 0; i < buffer->count; ++i)
        buffer->sorted[i] = buffer->records[buffer->order[i] & 0xffff];
}

}  // namespace vrel
