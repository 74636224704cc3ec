#pragma once

#include <atomic>
#include <cstdint>

#include "board/position.h"

// The transposition table, shared by all workers without a lock: each entry carries a check word.
namespace vrel {

enum BoundType : int { BOUND_UPPER = 1, BOUND_LOWER = 2, BOUND_EXACT = 3 };

// First word of an entry.
struct TTData {
    Move move;
    int16_t score;  // mates as a distance from the node
    uint8_t type;   // a BoundType
    int8_t depth;   // TT_EMPTY in an empty entry
    uint16_t age;
};

inline constexpr int TT_EMPTY = -50;
inline constexpr int TT_FOUND = -49;                                 // depth of a probe's result from here on: found
inline constexpr TTData TT_NOT_THERE{NO_MOVE, NO_SCORE, 0, -99, 0};  // result of a probe that finds nothing

// Two words, each read and written whole.
struct TTEntry {
    std::atomic<uint64_t> data;   // TTData
    std::atomic<uint64_t> check;  // ((move << 16) + (score + 15000)) ^ key
};

extern TTEntry* hashtable;
extern uint64_t entries;  // that hash_mb pays for, 0 if there is no table

// (Re)allocates the table of hash_mb MiB, clears it and draws new keys. 0, or -1 without memory. No search may run.
int InitTTable();
void ClearTTable();
void KillTTable();

// Refreshes hash_fill.
void CheckTTable();

// A private copy of the entry of this position, its score still in table form. `depth` is below TT_FOUND if there is
// none.
void ProbeTTable(Position* pos, TTData* result);

// Gives an entry that was read, and the copy, the age of now: what is in use stays young. Nothing if another thread has
// written the entry since.
void RefreshAge(TTEntry* entry, TTData* data, uint16_t age);

// `score` as the search sees it at `ply`.
void StoreInTTable(Position* pos, Ply ply, Depth depth, int score, BoundType type, Move move);

// The slot of a key in the half of its side to move: the key modulo the slots of a half. There must be a table.
uint64_t SlotOf(uint64_t key);

// Brings the bucket of a key into the cache ahead of its probe.
void PrefetchTTable(uint64_t key, Side stm);

// Mates go into the table as a distance from this node, so that an entry holds at any ply.
int CompressScore(int score, Ply ply);
int ExpandScore(int score, Ply ply);

}  // namespace vrel
