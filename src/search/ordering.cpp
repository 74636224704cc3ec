#include "search/ordering.h"

#include <cassert>
#include <cstddef>
#include <utility>

#include "board/generate.h"
#include "board/keys.h"
#include "board/move_kind.h"
#include "platform/vector.h"

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

constexpr int16_t HISTORY_START = 2048;

Square LastTo(const Position& pos) { return pos.last_move ? ToSquare(pos.last_move) : NO_SQUARE; }

uint32_t MoveHash(Move move) { return static_cast<uint32_t>(rtable[ToSquare(move)] ^ rtable[FromSquare(move)]); }

size_t FollowupHash(const Position& pos) {
    const PlyFrame* frame = pos.frames + pos.ply;
    const uint32_t both = MoveHash(frame[-1].current->move) ^ MoveHash(frame[-2].current->move);
    return (both & 0x7ff) + (pos.stm == BLACK ? 0x800 : 0);
}

int RefutationIndex(const Position& pos) {
    const Square to = ToSquare(pos.last_move);
    return (to << 4) + pos.board[to];
}

void PrescoreActive(Position* pos, MoveEntry* list, const MoveEntry* end) {
    const Move hash_move = pos->frames[pos->ply].hash_move;
    const Square last_to = LastTo(*pos);
    uint8_t* order = OrderOf(ThreadOf(pos), list);
    for (MoveEntry* entry = list; entry != end; ++entry, ++order) {
        if (entry->move == hash_move) {
            entry->move = NO_MOVE;
            *order = 0;
            continue;
        }
        int value = ORDER_OTHER_ACTIVE;
        if (entry->captured)
            value = capture_value[TypeOf(entry->captured)] - TypeOf(entry->piece);
        else if (entry->move & PROMOTE_QUEEN)
            value = ORDER_QUEEN_PROMOTION;
        if (ToSquare(entry->move) == last_to)
            value += ORDER_RECAPTURE;
        *order = static_cast<uint8_t>(value);
    }
}

// To-square of a remembered move as a set, empty for none.
uint64_t MarkOf(Move move) { return move ? Bit(ToSquare(move)) : 0; }

void PrescoreQuiet(Position* pos, MoveEntry* list, const MoveEntry* end) {
    SearchThread* thread = ThreadOf(pos);
    const PlyFrame& frame = pos->frames[pos->ply];
    const Move refutation = GetRefutation(*pos);
    const Move followup = GetFollowup(*pos);
    // Most moves go to a square that no remembered move goes to and needn't be compared with them.
    const uint64_t marked = MarkOf(frame.hash_move) | MarkOf(frame.null_killer) | MarkOf(frame.killer1) |
                            MarkOf(frame.killer2) | MarkOf(refutation) | MarkOf(followup);
    uint8_t* order = OrderOf(thread, list);
    for (MoveEntry* entry = list; entry != end; ++entry, ++order) {
        const Move move = entry->move;
        const unsigned history = static_cast<unsigned>(HistoryOf(thread, *entry)) / 128;
        unsigned value = history + 1;
        if ((marked >> ToSquare(move)) & 1) {
            if (move == frame.hash_move) {
                entry->move = NO_MOVE;
                value = 0;
            } else if (move == frame.null_killer || move == frame.killer1) {
                value = history / 2 + ORDER_KILLER;
            } else if (move == frame.killer2 || move == refutation) {
                value = history / 2 + ORDER_SECOND_KILLER;
            } else if (move == followup) {
                value = history / 2 + ORDER_FOLLOWUP;
            }
        }
        *order = static_cast<uint8_t>(value);
    }
}

// A flat scale without history: what isn't remembered stays in generation order.
void PrescoreInCheck(Position* pos, MoveEntry* list, const MoveEntry* end) {
    const PlyFrame& frame = pos->frames[pos->ply];
    const Move refutation = GetRefutation(*pos);
    uint8_t* order = OrderOf(ThreadOf(pos), list);
    for (MoveEntry* entry = list; entry != end; ++entry, ++order) {
        if (entry->move == frame.hash_move) {
            entry->move = NO_MOVE;
            *order = 0;
        } else {
            *order = entry->move == frame.check_killer ? ORDER_CHECK_KILLER
                     : entry->move == refutation       ? ORDER_CHECK_REFUTATION
                                                       : 1;
        }
    }
}

MoveEntry* HashMoveEntry(Position* pos, PlyFrame* frame) {
    MoveEntry* entry = frame->first;
    const Move move = frame->hash_move;
    *entry = {move, pos->board[FromSquare(move)], pos->board[ToSquare(move)], ORDER_HASH_MOVE, 0};
    CloseList(pos, entry + 1);
    return entry;
}

// The list starts behind the hash move, whose terminator is overwritten.
void GenerateActive(Position* pos, MoveEntry* list) {
    const Side side = pos->stm;
    MoveEntry* end = GeneratePawnCaptures(*pos, side, list);
    end = GeneratePieceCaptures(*pos, side, end);
    end = GeneratePromotions(*pos, side, true, end);
    CloseList(pos, end);
    PrescoreActive(pos, list, end);
}

// Best active move at `entry`, or null when only losing or low ones are left. Exchanges are computed only for moves
// that are about to be searched; a losing capture stays in the list and competes with the quiet moves.
MoveEntry* PickActive(Position* pos, PlyFrame* frame) {
    SearchThread* thread = ThreadOf(pos);
    MoveEntry* entry = frame->current;
    const MoveEntry* end = EndOfList(frame);
    while (entry != end) {
        PickHighest(thread, entry, end);
        if (entry->sort_value <= ORDER_GOOD_CAPTURE)
            return nullptr;
        if (MoveIsSafe(*pos, *entry))
            return entry;
        *OrderOf(thread, entry) = static_cast<uint8_t>(ORDER_LOSING_CAPTURE + TypeOf(entry->captured));
    }
    return nullptr;
}

// Appends the quiet moves to what is left of the list.
void GenerateQuiet(Position* pos, PlyFrame* frame, bool in_check) {
    MoveEntry* list = EndOfList(frame);
    MoveEntry* end = GenerateNonCaptures(*pos, pos->stm, list);
    CloseList(pos, end);
    if (in_check)
        PrescoreInCheck(pos, list, end);
    else
        PrescoreQuiet(pos, list, end);
}

MoveEntry* PickRest(Position* pos, PlyFrame* frame) {
    MoveEntry* entry = frame->current;
    const MoveEntry* end = EndOfList(frame);
    if (entry == end)
        return nullptr;
    PickHighest(ThreadOf(pos), entry, end);
    if (entry->sort_value <= ORDER_NO_MERIT)
        frame->stage = STAGE_IN_ORDER;
    return entry;
}

MoveEntry* NextInOrder(Position* pos, PlyFrame* frame) {
    MoveEntry* entry = frame->current;
    if (entry == EndOfList(frame))
        return nullptr;
    entry->sort_value = *OrderOf(ThreadOf(pos), entry);
    return entry;
}

// Place of the first highest of `count` bytes, at least one. Up to 31 bytes behind them are read and ignored: the first
// equal byte lies within the list.
ptrdiff_t FirstHighest(const uint8_t* bytes, ptrdiff_t count) {
    const Vector first = LoadVector(bytes);
    const Vector second = LoadVector(bytes + 16);
    if (count <= 32) [[likely]] {
        const Vector highest = HighestByte(
            HigherBytes(CommonBits(first, FirstPlaces(count)), CommonBits(second, FirstPlaces(count - 16))));
        return FirstPlace(EqualBytes(first, highest), EqualBytes(second, highest));
    }
    Vector highest = HigherBytes(first, second);
    ptrdiff_t i = 32;
    for (; i + 16 < count; i += 16)
        highest = HigherBytes(highest, LoadVector(bytes + i));
    highest = HighestByte(HigherBytes(highest, CommonBits(LoadVector(bytes + i), FirstPlaces(count - i))));
    for (i = 0;; i += 16) {
        const Vector equal = EqualBytes(LoadVector(bytes + i), highest);
        if (AnyPlace(equal))
            return i + FirstPlace(equal);
    }
}

}  // namespace

void InitMoveOrderingTables(SearchThread* thread) {
    thread->history.fill(HISTORY_START);
    thread->refutation.fill(NO_MOVE);
    thread->followup.fill(NO_MOVE);
    for (PlyFrame& frame : thread->frames)
        frame.hash_move = frame.null_killer = frame.killer1 = frame.killer2 = frame.check_killer = NO_MOVE;
}

void PickHighest(SearchThread* thread, MoveEntry* head, const MoveEntry* end) {
    assert(head < end);
    uint8_t* order = OrderOf(thread, head);
    const ptrdiff_t best = FirstHighest(order, end - head);
    const uint8_t value = order[best];
    order[best] = *order;
    *order = value;
    std::swap(*head, head[best]);
    head->sort_value = value;
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
            if (MoveEntry* entry = PickActive(pos, frame))
                return entry;
            GenerateQuiet(pos, frame, in_check);
            frame->stage = STAGE_REST;
            return PickRest(pos, frame);
        case STAGE_REST:
            return PickRest(pos, frame);
        default:
            return NextInOrder(pos, frame);
    }
}

Move GetRefutation(const Position& pos) {
    return pos.last_move ? ThreadOf(pos)->refutation[RefutationIndex(pos)] : NO_MOVE;
}

void SetRefutation(Position* pos, Move move) {
    assert(pos->last_move != NO_MOVE);
    ThreadOf(pos)->refutation[RefutationIndex(*pos)] = move;
}

Move GetFollowup(const Position& pos) { return pos.ply > 2 ? ThreadOf(pos)->followup[FollowupHash(pos)] : NO_MOVE; }

void SetFollowup(Position* pos, Move move) {
    assert(pos->ply > 2);
    ThreadOf(pos)->followup[FollowupHash(*pos)] = move;
}

void UpdateKillers(Position* pos, Ply ply, Move move, bool in_check) {
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
