#include "search/ordering.h"

#include <cstddef>

#include "board/generate.h"
#include "board/keys.h"
#include "board/move_kind.h"

namespace vrel {

namespace {

// Values of frame.stage: what the next call does.
enum PickerStage : uint16_t {
    STAGE_HASH = 0,
    STAGE_GENERATE = 1,
    STAGE_ACTIVE = 2,
    STAGE_REST = 4,      // what remains, best first
    STAGE_IN_ORDER = 5,  // what remains, in generation order
};

constexpr int HASH_VALUE = 255;
constexpr int GOOD_CAPTURE = 179;  // active moves above it are tried before the quiet ones
constexpr int NO_MERIT = 3;        // from here on down the order no longer matters
constexpr int QUEEN_PROMOTION = 200;
constexpr int OTHER_ACTIVE = 10;  // en passant and under-promotions
constexpr int RECAPTURE_BONUS = 6;
constexpr int LOSING_CAPTURE = 8;  // plus the type of the victim

constexpr int16_t HISTORY_START = 2048;

int LastTo(const Position& pos) { return pos.last_move ? ToSquare(pos.last_move) : NO_SQUARE; }

uint32_t MoveHash(Move move) {
    return static_cast<uint32_t>(rtable[static_cast<size_t>(ToSquare(move))] ^
                                 rtable[static_cast<size_t>(FromSquare(move))]);
}

size_t FollowupHash(const Position& pos) {
    const PlyFrame* frame = pos.frames + pos.ply;
    const uint32_t both = MoveHash(frame[-1].current->move) ^ MoveHash(frame[-2].current->move);
    return (both & 0x7ff) + (pos.stm == BLACK ? 0x800 : 0);
}

size_t RefutationIndex(const Position& pos) {
    const int to = ToSquare(pos.last_move);
    return static_cast<size_t>((to << 4) + pos.board[static_cast<size_t>(to)]);
}

void VoidEntry(MoveEntry* entry) {
    entry->move = NO_MOVE;
    entry->sort_value = 0;
}

void PrescoreActive(const Position& pos, MoveEntry* list) {
    const Move hash_move = pos.frames[pos.ply].hash_move;
    const int last_to = LastTo(pos);
    for (MoveEntry* entry = list; entry->move != END_OF_LIST; ++entry) {
        if (entry->move == hash_move) {
            VoidEntry(entry);
            continue;
        }
        int value = OTHER_ACTIVE;
        if (entry->captured)
            value = capture_value[static_cast<size_t>(TypeOf(entry->captured))] - TypeOf(entry->piece);
        else if (entry->move & PROMOTE_QUEEN)
            value = QUEEN_PROMOTION;
        if (ToSquare(entry->move) == last_to)
            value += RECAPTURE_BONUS;
        entry->sort_value = static_cast<uint8_t>(value);
    }
}

void PrescoreQuiet(Position* pos, MoveEntry* list) {
    SearchThread* thread = ThreadOf(pos);
    const PlyFrame& frame = pos->frames[pos->ply];
    const Move refutation = GetRefutation(*pos);
    const Move followup = GetFollowup(*pos);
    for (MoveEntry* entry = list; entry->move != END_OF_LIST; ++entry) {
        const Move move = entry->move;
        const int history = HistoryOf(thread, *entry) / 128;
        if (move == frame.hash_move) {
            VoidEntry(entry);
            continue;
        }
        int value = history + 1;
        if (move == frame.null_killer || move == frame.killer1)
            value = history / 2 + 81;
        else if (move == frame.killer2 || move == refutation)
            value = history / 2 + 61;
        else if (move == followup)
            value = history / 2 + 41;
        entry->sort_value = static_cast<uint8_t>(value);
    }
}

// A flat scale without history: what isn't remembered stays in generation order.
void PrescoreInCheck(const Position& pos, MoveEntry* list) {
    const PlyFrame& frame = pos.frames[pos.ply];
    const Move refutation = GetRefutation(pos);
    for (MoveEntry* entry = list; entry->move != END_OF_LIST; ++entry) {
        if (entry->move == frame.hash_move)
            VoidEntry(entry);
        else
            entry->sort_value = entry->move == frame.check_killer ? 75 : entry->move == refutation ? 70 : 1;
    }
}

MoveEntry* HashMoveEntry(Position* pos, PlyFrame* frame) {
    MoveEntry* entry = frame->first;
    const Move move = frame->hash_move;
    *entry = {move, pos->board[static_cast<size_t>(FromSquare(move))], pos->board[static_cast<size_t>(ToSquare(move))],
              HASH_VALUE, 0};
    CloseList(pos, entry + 1);
    return entry;
}

// The list starts behind the hash move, whose terminator is overwritten.
void GenerateActive(Position* pos, MoveEntry* list) {
    const int side = pos->stm;
    MoveEntry* end = GeneratePawnCaptures(*pos, side, list);
    end = GeneratePieceCaptures(*pos, side, end);
    CloseList(pos, GeneratePromotions(*pos, side, true, end));
    PrescoreActive(*pos, list);
}

// Best active move at `entry`, or null when only losing or low ones are left. Exchanges are computed only for moves
// that are about to be searched; a losing capture stays in the list and competes with the quiet moves.
MoveEntry* PickActive(const Position& pos, MoveEntry* entry) {
    while (entry->move != END_OF_LIST) {
        PickNextMove(entry);
        if (entry->sort_value <= GOOD_CAPTURE)
            return nullptr;
        if (MoveIsSafe(pos, *entry))
            return entry;
        entry->sort_value = static_cast<uint8_t>(LOSING_CAPTURE + TypeOf(entry->captured));
    }
    return nullptr;
}

// Appends the quiet moves to what is left of the list.
void GenerateQuiet(Position* pos, MoveEntry* entry, bool in_check) {
    while (entry->move != END_OF_LIST)
        ++entry;
    CloseList(pos, GenerateNonCaptures(*pos, pos->stm, entry));
    if (in_check)
        PrescoreInCheck(*pos, entry);
    else
        PrescoreQuiet(pos, entry);
}

MoveEntry* PickRest(PlyFrame* frame) {
    MoveEntry* entry = frame->current;
    if (entry->move == END_OF_LIST)
        return nullptr;
    PickNextMove(entry);
    if (entry->sort_value <= NO_MERIT)
        frame->stage = STAGE_IN_ORDER;
    return entry;
}

}  // namespace

void InitMoveOrderingTables(SearchThread* thread) {
    thread->history.fill(HISTORY_START);
    thread->refutation.fill(NO_MOVE);
    thread->followup.fill(NO_MOVE);
    for (PlyFrame& frame : thread->frames)
        frame.hash_move = frame.null_killer = frame.killer1 = frame.killer2 = frame.check_killer = NO_MOVE;
}

MoveEntry* GetNextMoveFW(Position* pos, bool in_check) {
    PlyFrame* frame = pos->frames + pos->ply;
    if (frame->stage == STAGE_HASH) {
        frame->stage = STAGE_GENERATE;
        frame->current = frame->first;
        if (frame->hash_move)
            return HashMoveEntry(pos, frame);
    } else {
        ++frame->current;
    }
    switch (frame->stage) {
        case STAGE_GENERATE:
            GenerateActive(pos, frame->current);
            frame->stage = STAGE_ACTIVE;
            [[fallthrough]];
        case STAGE_ACTIVE:
            if (MoveEntry* entry = PickActive(*pos, frame->current))
                return entry;
            GenerateQuiet(pos, frame->current, in_check);
            frame->stage = STAGE_REST;
            return PickRest(frame);
        case STAGE_REST:
            return PickRest(frame);
        default:
            return frame->current->move == END_OF_LIST ? nullptr : frame->current;
    }
}

Move GetRefutation(const Position& pos) {
    return pos.last_move ? ThreadOf(pos)->refutation[RefutationIndex(pos)] : NO_MOVE;
}

void SetRefutation(Position* pos, Move move) { ThreadOf(pos)->refutation[RefutationIndex(*pos)] = move; }

Move GetFollowup(const Position& pos) { return pos.ply > 2 ? ThreadOf(pos)->followup[FollowupHash(pos)] : NO_MOVE; }

void SetFollowup(Position* pos, Move move) { ThreadOf(pos)->followup[FollowupHash(*pos)] = move; }

void UpdateKillers(Position* pos, int ply, Move move, bool in_check) {
    PlyFrame& frame = pos->frames[ply];
    if (in_check) {
        frame.check_killer = move;
    } else if (pos->last_move == NO_MOVE) {
        frame.null_killer = move;
    } else if (move != frame.killer1) {
        frame.killer2 = frame.killer1;
        frame.killer1 = move;
    }
}

}  // namespace vrel
