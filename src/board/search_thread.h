#pragma once

#include <array>
#include <atomic>
#include <cassert>
#include <cstdint>
#include <type_traits>

#include "board/eval_records.h"
#include "board/position.h"
#include "platform/relaxed.h"

namespace vrel {

inline constexpr int MAX_THREADS = 64;
inline constexpr int EVAL_CACHE_SIZE = 16384;
inline constexpr int PAWN_CACHE_SIZE = 8192;

// Entries for the lists of all plies. No position has more than about 250 pseudo-legal moves in play; the rest is
// the reserve that MOVE_STACK_RESERVE keeps free for whatever a set-up board may hold.
inline constexpr int MOVE_STACK_RESERVE = 2048;
inline constexpr int MOVE_STACK = 66 * 256 + MOVE_STACK_RESERVE;

// Values of root_state.
enum RootState : uint8_t { ROOT_AT_WORK = 0, ROOT_GAVE_UP = 99 };

// Values of work_flag.
enum WorkFlag : int { WORK_IDLE = 0, WORK_SEARCH = 1, WORK_END = 99 };

// Everything that one thread writes during a search. Slot 0 of ThreadData is the game record: it belongs to the main
// thread and holds the position of the game. Slots 1 to 64 are the workers.
struct alignas(64) SearchThread {
    Position pos;
    std::array<PlyFrame, FRAMES> frames;
    std::array<UndoRecord, UNDO_RECORDS> undo;
    std::array<MoveEntry, MOVE_STACK> move_stack;
    std::array<uint8_t, MOVE_STACK + 32> order;  // ordering scores of the entries of move_stack, side by side
    std::array<int16_t, 1024> history;           // (to << 4) + piece: 127..8129
    std::array<Move, 1024> refutation;           // (to << 4) + piece of the previous move
    std::array<Move, 4096> followup;             // by FollowupHash
    alignas(64) std::array<EvalHashEntry, EVAL_CACHE_SIZE> eval_cache;
    alignas(64) std::array<PawnHashEntry, PAWN_CACHE_SIZE> pawn_cache;

    int8_t id;                   // equal to pos.thread_index
    std::atomic<int> work_flag;  // the main thread sets it (release), the worker clears it
    RootState root_state;        // whether this worker gave up the iteration
    int8_t ext_count;            // path counter of the accumulated extension
    uint64_t quiet_limit;        // value of `nodes` at which the quiescence tree in work is cut short
    uint32_t seed;               // random state for root perturbation
    int16_t root_eval;           // static evaluation of the root

    // Written by this thread, read by others: they only steer policies and reports.
    Relaxed<int8_t> depth;        // iteration in progress
    Relaxed<int16_t> best_depth;  // iteration of score and pv
    Relaxed<int16_t> score;
    Relaxed<uint64_t> nodes;  // calls of Search
    Relaxed<uint64_t> evals, eval_hits;
    Relaxed<uint64_t> tt_probes, tt_hits;
    Relaxed<uint64_t> pawn_probes, pawn_hits;
    std::array<Relaxed<uint64_t>, FRAMES> iter_nodes;  // nodes at the end of an iteration
    std::array<int16_t, FRAMES> iter_score;
    std::array<Relaxed<Move>, FRAMES> pv;  // pv[1] is the root's move; closed by 0
};

extern std::array<std::atomic<SearchThread*>, MAX_THREADS + 1> ThreadData;

// The record of a slot, null if there is none. Pairs with the release in InitNewThread.
inline SearchThread* GetThread(int slot) { return ThreadData[slot].load(std::memory_order_acquire); }

// The position of the game. Its record is the first thing that a program makes.
inline Position* GamePosition() {
    assert(GetThread(0) != nullptr);
    return &GetThread(0)->pos;
}

// The record that a position belongs to: a Position is the first member of its SearchThread.
inline SearchThread* ThreadOf(Position* pos) { return reinterpret_cast<SearchThread*>(pos); }
inline const SearchThread* ThreadOf(const Position& pos) { return reinterpret_cast<const SearchThread*>(&pos); }
static_assert(std::is_standard_layout_v<SearchThread>);

// Makes the record of slot `id`, replacing an earlier one. 0, or -1 if there is no memory.
int InitNewThread(int id);

// Frees the record of a slot, whose worker is idle or gone, or all of them for the end of the program.
void FreeThread(int id);
void FreeThreads();

// True if no worker is in a search, so that what all threads read may be changed.
bool NobodySearches();

}  // namespace vrel
