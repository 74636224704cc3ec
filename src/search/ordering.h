#pragma once

#include "board/position.h"
#include "board/search_thread.h"

// Move ordering inside a node: the staged picker, and what remembers good moves between nodes. Everything here belongs
// to one thread and starts cold with each search. Moves are ordered by an unsigned byte, whose ranges also carry
// meaning for pruning: above 149 the hash move and winning captures, above 31 remembered moves and high history, 3 or
// below quiet moves without merit.
namespace vrel {

// Values of captured pieces by type, less the mover's type; 20 stands for no piece.
inline constexpr std::array<uint8_t, 8> capture_value = {20, 210, 220, 220, 230, 240, 250, 0};

// Cold start: history, refutations, followups, killers and hash moves of all frames.
void InitMoveOrderingTables(SearchThread* thread);

// Place of an entry's ordering score. The pickers keep the scores of a list side by side, where the highest is found
// sixteen at a time; an entry's sort_value is set when it is picked.
inline uint8_t* OrderOf(SearchThread* thread, const MoveEntry* entry) {
    return thread->order.data() + (entry - thread->move_stack.data());
}

// Exchanges the entry with the highest score, the earliest of equals, with the one at `head`, scores included.
// `end` is the list's terminator, behind `head`.
void PickHighest(SearchThread* thread, MoveEntry* head, const MoveEntry* end);

// Terminator of the list of the ply that is being picked from.
inline MoveEntry* EndOfList(const PlyFrame* frame) { return frame[1].first - 1; }

// Next entry of frames[pos->ply], or null at the end; `current` is left on it. An entry with move 0 is void: the
// caller passes over it. Generation is lazy, stage by stage.
MoveEntry* GetNextMoveFW(Position* pos, bool in_check);

Move GetRefutation(const Position& pos);
// For the move that led here, which isn't a null move.
void SetRefutation(Position* pos, Move move);

// The quiet move that last cut after the last two moves; only beyond ply 2.
Move GetFollowup(const Position& pos);
void SetFollowup(Position* pos, Move move);

// For a quiet move that caused a cut.
void UpdateKillers(Position* pos, int ply, Move move, bool in_check);

// Gravity: a step towards the ceiling or towards 0, smaller the nearer it is.
inline int16_t& HistoryOf(SearchThread* thread, const MoveEntry& entry) {
    return thread->history[static_cast<size_t>((ToSquare(entry.move) << 4) + entry.piece)];
}
inline void HistoryInc(SearchThread* thread, const MoveEntry& entry) {
    int16_t& h = HistoryOf(thread, entry);
    h = static_cast<int16_t>(h + (8192 - h) / 64);
}
inline void HistoryDec(SearchThread* thread, const MoveEntry& entry) {
    int16_t& h = HistoryOf(thread, entry);
    h = static_cast<int16_t>(h - h / 128);
}

}  // namespace vrel
