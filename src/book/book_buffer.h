#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "book/book_keys.h"

// Positions collected in memory until they go to disk as a sorted run.
namespace vrel {

// The positions of 200 games of 50 plies are 10000; this leaves ample room.
inline constexpr size_t BOOK_BUFFER_RECORDS = 20000;

// Records in the order in which their positions first came up, and a table that finds them by their hashes.
struct BookBuffer {
    std::array<BookRecord, BOOK_BUFFER_RECORDS> records;
    size_t count;
    std::array<BookRecord, BOOK_BUFFER_RECORDS> sorted;  // filled by SortBuffer
    std::array<uint64_t, BOOK_BUFFER_RECORDS> order;     // its working space
    std::array<uint16_t, 65536> slots;                   // number of a record plus 1, 0 for an empty slot
};

void ClearBuffer(BookBuffer* buffer);

// The record of a position, made with counters of 0 if it is new; null if the buffer is full.
BookRecord* FindOrInsert(BookBuffer* buffer, uint16_t key, uint32_t second);

// Puts the records into `sorted`, in the order of a book file.
void SortBuffer(BookBuffer* buffer);

}  // namespace vrel
