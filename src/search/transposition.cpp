#include "search/transposition.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstring>

#include "board/keys.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/pblock.h"
#include "platform/memory.h"
#include "search/search.h"

namespace vrel {

TTEntry* hashtable = nullptr;
uint64_t entries = 0;

namespace {

constexpr int BUCKET = 4;
constexpr uint64_t SPARE_ENTRIES = 16;
constexpr uint64_t ENTRIES_OF_PAGE = 4096 / sizeof(TTEntry);  // of the smallest page that a system has

// Up to 256 MiB a table has all its memory from the first clearing on, so that no search waits for it.
constexpr uint64_t SMALL_TABLE = (uint64_t{256} << 20) / sizeof(TTEntry);
// Up to 1 GiB one that has been used everywhere keeps its memory when it is cleared.
constexpr uint64_t LARGE_TABLE = (uint64_t{1024} << 20) / sizeof(TTEntry);

constexpr uint64_t LOCK_MASK = 0xffffffff00000000ULL;

// Results of a probe that finds an entry which can't be used, in `depth`.
constexpr int8_t TORN = -98;        // its words are those of two writers
constexpr int8_t WRONG_MOVE = -97;  // another position's, with the same key

// A deeper result of this search is not given up for one that is more than this many plies shallower ...
constexpr int PROTECTED_MARGIN = 2;
// ... if it is not much shallower than the iteration.
constexpr int PROTECTED_BELOW_ITERATION = 6;

// Starts of the halves for white and for black to move, and the slots of each half.
std::array<TTEntry*, 2> htable;
uint64_t slots = 0;
uint64_t slot_mask = 0;        // slots - 1 if that has all lower bits set, else 0
uint64_t slot_reciprocal = 0;  // 2^64 / slots, rounded down
uint64_t block_bytes = 0;

// Entries that were empty when stored into, by thread: each counter has one writer and a cache line of its own.
struct alignas(64) FillCounter {
    Relaxed<uint64_t> count;
};
std::array<FillCounter, MAX_THREADS + 1> ttcnt;

// In memory the depth stands 50 above its value, so that zeroed pages are empty entries and a new table costs nothing
// until it is used.
uint64_t Pack(TTData data) {
    data.depth = static_cast<int8_t>(data.depth - TT_EMPTY);
    return std::bit_cast<uint64_t>(data);
}

TTData Unpack(uint64_t word) {
    auto data = std::bit_cast<TTData>(word);
    data.depth = static_cast<int8_t>(data.depth + TT_EMPTY);
    return data;
}
static_assert(sizeof(TTData) == sizeof(uint64_t));

TTData Load(const TTEntry& entry) { return Unpack(entry.data.load(std::memory_order_relaxed)); }
uint64_t LoadCheck(const TTEntry& entry) { return entry.check.load(std::memory_order_relaxed); }

// Binds move and score to the low half of the key.
uint64_t CheckWord(const TTData& data, uint64_t key) {
    return ((static_cast<uint64_t>(data.move) << 16) + static_cast<uint64_t>(data.score + 15000)) ^ key;
}

bool LockMatches(uint64_t check, uint64_t key) { return ((check ^ key) & LOCK_MASK) == 0; }

void SetSlots(uint64_t number) {
    slots = number;
    slot_mask = std::has_single_bit(slots) ? slots - 1 : 0;
    slot_reciprocal = slots ? UINT64_MAX / slots : 0;
}

uint64_t HighWord(uint64_t a, uint64_t b) {
    __extension__ using Product = unsigned __int128;
    // cppcheck-suppress shiftTooManyBits ; the product has twice as many bits
    return static_cast<uint64_t>((Product{a} * b) >> 64);
}

// First entry of the bucket of a key. Buckets overlap: a slot may be any entry of its half.
TTEntry* Bucket(uint64_t key, Side stm) { return htable[stm] + SlotOf(key); }

// One game ply counts as much as 32 plies of depth.
int ValueOf(const TTData& data) { return static_cast<int16_t>(data.age) * 32 + data.depth; }

uint64_t Filled() {
    uint64_t filled = 0;
    for (const FillCounter& counter : ttcnt)
        filled += counter.count;
    return filled;
}

// Claims the memory of a table of this size, empty. False, and no table, if there is none.
bool Claim(uint64_t wanted) {
    entries = wanted;
    block_bytes = (entries + SPARE_ENTRIES) * sizeof(TTEntry);
    hashtable = static_cast<TTEntry*>(AllocatePages(block_bytes));
    if (hashtable == nullptr)
        return false;
    SetSlots(entries / 2);
    htable[WHITE] = hashtable;
    htable[BLACK] = hashtable + slots + BUCKET;
    return true;
}

// Has the system put memory behind every page of an empty table.
void TouchPages() {
    for (uint64_t i = 0; i < entries; i += ENTRIES_OF_PAGE)
        hashtable[i].data.store(0, std::memory_order_relaxed);
}

void ForgetFill() {
    for (FillCounter& counter : ttcnt)
        counter.count = 0;
    PBlock.hash_fill = 0.0;
    PBlock.tt_age = 0;
}

// The entry of a position, null if it has none. It is the only one: a store overwrites it in place.
TTEntry* FindInBucket(TTEntry* bucket, uint64_t key) {
    for (TTEntry* entry = bucket; entry != bucket + BUCKET; ++entry)
        if (LockMatches(LoadCheck(*entry), key))
            return entry;
    return nullptr;
}

// The oldest and shallowest entry, of equals the first.
TTEntry* LeastOfBucket(TTEntry* bucket) {
    TTEntry* least = bucket;
    int value = ValueOf(Load(*bucket));
    for (TTEntry* entry = bucket + 1; entry != bucket + BUCKET; ++entry) {
        const int other = ValueOf(Load(*entry));
        if (other < value) {
            least = entry;
            value = other;
        }
    }
    return least;
}

void Find(const Position& pos, TTData* result) {
    const uint64_t key = GetFullHash(pos);
    TTEntry* entry = FindInBucket(Bucket(key, pos.stm), key);
    if (entry == nullptr)
        return;
    const uint64_t check = LoadCheck(*entry);
    *result = Load(*entry);
    RefreshAge(entry, result, PBlock.tt_age);
    if (CheckWord(*result, key) != check)
        result->depth = TORN;
    else if (result->move && !MoveCanBeMade(pos, result->move))
        result->depth = WRONG_MOVE;
}

}  // namespace

uint64_t SlotOf(uint64_t key) {
    if (slot_mask)
        return key & slot_mask;
    // The reciprocal falls short of 2^64 / slots by at most 1, so that the product falls short of key / slots by less
    // than 1: the quotient is right or one too small.
    const uint64_t rest = key - HighWord(key, slot_reciprocal) * slots;
    return rest < slots ? rest : rest - slots;
}

// Only the age changes, and only if the entry is still what was read: an older first word put back under another
// writer's check word would pass for its own.
void RefreshAge(TTEntry* entry, TTData* data, uint16_t age) {
    if (data->age == age)
        return;
    uint64_t read = Pack(*data);
    data->age = age;
    entry->data.compare_exchange_strong(read, Pack(*data), std::memory_order_relaxed);
}

int InitTTable() {
    KillTTable();
    const auto megabytes = static_cast<uint64_t>(PBlock.hash_mb);
    if (!Claim((megabytes << 20) / sizeof(TTEntry)))
        return -1;
    ForgetFill();
    FillKeyTables();
    return 0;
}

// Zeroed words are empty entries, as Pack has it.
void ClearTTable() {
    const uint64_t size = entries;
    const uint64_t filled = Filled();
    const bool small = size <= SMALL_TABLE;
    if (filled == 0) {
        if (small)
            TouchPages();
    } else if (small || (size <= LARGE_TABLE && filled > size / ENTRIES_OF_PAGE)) {
        std::memset(static_cast<void*>(hashtable), 0, block_bytes);
    } else {
        // To write where no search has written would claim the memory there, which can take seconds.
        KillTTable();
        Claim(size);  // should it fail, searches find no table
    }
    ForgetFill();
}

void KillTTable() {
    FreePages(hashtable, block_bytes);
    hashtable = nullptr;
    // Without slots nothing is looked up or stored.
    entries = 0;
    SetSlots(0);
}

void CheckTTable() { PBlock.hash_fill = entries ? static_cast<double>(Filled()) / static_cast<double>(entries) : 0.0; }

void ProbeTTable(Position* pos, TTData* result) {
    *result = TT_NOT_THERE;
    if (PBlock.use_hash && slots)
        Find(*pos, result);
    SearchThread* thread = ThreadOf(pos);
    thread->tt_probes.Add(1);
    if (result->depth >= TT_FOUND)
        thread->tt_hits.Add(1);
}

void StoreInTTable(Position* pos, Ply ply, Depth depth, int score, BoundType type, Move move) {
    if (!PBlock.use_hash || !slots)
        return;
    assert(score >= -10000 && score <= 10000);
    const uint64_t key = GetFullHash(*pos);
    const uint16_t age = PBlock.tt_age;
    TTEntry* bucket = Bucket(key, pos->stm);
    // The key first: values are compared only where the position has no entry yet.
    TTEntry* target = FindInBucket(bucket, key);
    const bool known = target != nullptr;
    if (!known)
        target = LeastOfBucket(bucket);
    TTData old = Load(*target);
    if (known)
        RefreshAge(target, &old, age);
    if (old.depth > depth + PROTECTED_MARGIN && old.depth >= PBlock.depth - PROTECTED_BELOW_ITERATION && old.age == age)
        return;
    // The fill is counted as it grows; nobody goes through the table for it.
    if (old.depth == TT_EMPTY)
        ttcnt[pos->thread_index].count.Add(1);
    const TTData data{move, static_cast<int16_t>(CompressScore(score, ply)), static_cast<uint8_t>(type),
                      static_cast<int8_t>(std::min(depth, 127)), age};
    // Two plain stores: whoever reads between them finds words that don't go together and passes them over.
    target->data.store(Pack(data), std::memory_order_relaxed);
    target->check.store(CheckWord(data, key), std::memory_order_relaxed);
}

void PrefetchTTable(uint64_t key, Side stm) {
    if (!slots)
        return;
    // Most buckets lie across two lines.
    const TTEntry* bucket = Bucket(key, stm);
    __builtin_prefetch(bucket);
    __builtin_prefetch(bucket + BUCKET - 1);
}

// Other scores than mates are the same at every ply.
int CompressScore(int score, Ply ply) {
    if (score > MATE_BOUND)
        return score + ply;
    if (score < -MATE_BOUND - 1)
        return score - ply;
    return score;
}

int ExpandScore(int score, Ply ply) {
    if (score > MATE_BOUND)
        return score - ply;
    if (score < -MATE_BOUND - 1)
        return score + ply;
    return score;
}

}  // namespace vrel
