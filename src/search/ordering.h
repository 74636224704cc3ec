#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "board/legality.h"
#include "board/position.h"
#include "board/search_thread.h"

// Move ordering inside a node: the staged picker, and what remembers good moves between nodes. Everything here belongs
// to one thread and starts cold with each search.
namespace vrel {

// The scale of the ordering byte, highest first. Its ranges also carry meaning for pruning.
enum OrderValue : int {
    ORDER_HASH_MOVE = 255,
    ORDER_QUEEN_PROMOTION = 200,
    ORDER_GOOD_CAPTURE = 179,  // active moves above it are tried before the quiet ones
    ORDER_SURE = 149,          // above it: the hash move and winning active moves
    ORDER_KILLER = 81,         // plus half the history, as for the next three
    ORDER_CHECK_KILLER = 75,   // in check, where history doesn't count
    ORDER_CHECK_REFUTATION = 70,
    ORDER_SECOND_KILLER = 61,  // and the refutation
    ORDER_FOLLOWUP = 41,
    ORDER_REMEMBERED = 31,     // above it: the remembered moves, and high history
    ORDER_OTHER_ACTIVE = 10,   // en passant and under-promotions
    ORDER_LOSING_CAPTURE = 8,  // plus the type of the victim
    ORDER_RECAPTURE = 6,       // bonus for a move to the square of the last one
    ORDER_NO_MERIT = 3,        // from here on down the order no longer matters
};

// Values of frame.stage: what the next call of a picker does.
enum PickerStage : uint16_t {
    STAGE_HASH = 0,  // where a node starts
    STAGE_GENERATE = 1,
    STAGE_ACTIVE = 2,    // captures and promotions
    STAGE_CHECKS = 3,    // of the quiescence: quiet moves that give check, in generation order
    STAGE_REST = 4,      // what remains, best first
    STAGE_IN_ORDER = 5,  // what remains, in generation order
};

// Values of captured pieces by type, less the mover's type; 20 stands for no piece.
inline constexpr std::array<uint8_t, 8> capture_value = {20, 210, 220, 220, 230, 240, 250, 0};

// Cold start: history, refutations, followups, killers and hash moves of all frames.
void InitMoveOrderingTables(SearchThread* thread);

// Place of an entry's ordering score. The pickers keep the scores of a list side by side, where the highest is found
// sixteen at a time; an entry's sort_value is set when it is picked.
inline uint8_t* OrderOf(SearchThread* thread, const MoveEntry* entry) {
    assert(entry >= thread->move_stack.data() && entry < thread->move_stack.data() + MOVE_STACK);
    return thread->order.data() + (entry - thread->move_stack.data());
}

// Exchanges the entry with the highest score, the earliest of equals, with the one at `head`, scores included.
// `end` is the list's terminator, behind `head`.
void PickHighest(SearchThread* thread, MoveEntry* head, const MoveEntry* end);

// Terminator of the list of the ply that is being picked from.
inline MoveEntry* EndOfList(const PlyFrame* frame) { return frame[1].first - 1; }

// Brings the best of what remains to `entry`. Remembered and promising moves are worth the search for the best; the
// tail is taken as it comes, which is cheaper.
inline void PickRest(SearchThread* thread, PlyFrame* frame, MoveEntry* entry) {
    PickHighest(thread, entry, EndOfList(frame));
    if (entry->sort_value <= ORDER_NO_MERIT)
        frame->stage = STAGE_IN_ORDER;
}

// The part of GetNextMoveFW in which moves are generated: hash move, active moves, and the first of what remains. Only
// that function calls it.
MoveEntry* GetEarlyMoveFW(Position* pos, bool in_check, const LegalityContext& legality);

// Next entry of what remains, or null.
inline MoveEntry* DrawRest(Position* pos) {
    PlyFrame* frame = pos->frames + pos->ply;
    MoveEntry* entry = ++frame->current;
    if (entry == EndOfList(frame))
        return nullptr;
    SearchThread* thread = ThreadOf(pos);
    // The scores stay beside the list until a move is drawn.
    if (frame->stage == STAGE_IN_ORDER)
        entry->sort_value = *OrderOf(thread, entry);
    else
        PickRest(thread, frame, entry);
    return entry;
}

// Next entry of frames[pos->ply], or null at the end; `current` is left on it. An entry with move 0 is void: the
// caller passes over it. Generation is lazy, stage by stage; what can't answer a check is left out.
inline MoveEntry* GetNextMoveFW(Position* pos, bool in_check, const LegalityContext& legality) {
    return pos->frames[pos->ply].stage < STAGE_REST ? GetEarlyMoveFW(pos, in_check, legality) : DrawRest(pos);
}

// Takes the void moves out of what is left to be drawn, unless more than a few others are left. These come in the same
// order as before.
inline constexpr size_t MAX_KEPT = 16;
void DropVoidMoves(Position* pos);

Move GetRefutation(const Position& pos);
// For the move that led here.
void SetRefutation(Position* pos, Move move);

// The quiet move that last cut after the last two moves; only beyond ply 2.
Move GetFollowup(const Position& pos);
void SetFollowup(Position* pos, Move move);

// For a quiet move that caused a cut.
void UpdateKillers(Position* pos, Ply ply, Move move, bool in_check);

// Gravity: a step towards the ceiling or towards 0, smaller the nearer it is.
inline int16_t& HistoryOf(SearchThread* thread, const MoveEntry& entry) {
    return thread->history[(ToSquare(entry.move) << 4) + entry.piece];
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
