#include "search/ordering.h"

#include <array>
#include <cassert>
#include <cstddef>
#include <span>
#include <utility>

#include "board/generate.h"
#include "board/keys.h"
#include "board/move_kind.h"
#include "platform/vector.h"

namespace vrel {

namespace {

constexpr int16_t HISTORY_START = 2048;  // a quarter of the ceiling: a new move stands between good and bad ones

// Where a recapture goes to, NO_SQUARE at the start of a game and behind a null move.
Square LastTo(const Position& pos) { return pos.last_move ? ToSquare(pos.last_move) : NO_SQUARE; }

// A number drawn for each square spreads the pairs of moves over the table.
uint32_t MoveHash(Move move) { return static_cast<uint32_t>(rtable[ToSquare(move)] ^ rtable[FromSquare(move)]); }

size_t FollowupHash(const Position& pos) {
    const PlyFrame* frame = pos.frames + pos.ply;
    // Both sides' last moves; the halves of the table belong to the side that answers.
    const uint32_t both = MoveHash(frame[-1].current->move) ^ MoveHash(frame[-2].current->move);
    return (both & 0x7ff) + (pos.stm == BLACK ? 0x800 : 0);
}

// The last move by where it went and what it put there: where it came from makes little difference to the answer.
int RefutationIndex(const Position& pos) {
    const Square to = ToSquare(pos.last_move);
    return (to << 4) + pos.board[to];
}

// Most valuable victim first, least valuable attacker among equals. The hash move has been searched and is made void.
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
        // An under-promotion stays low, and so does an en passant capture, whose victim isn't on the to-square.
        else if (entry->move & PROMOTE_QUEEN)
            value = ORDER_QUEEN_PROMOTION;
        if (ToSquare(entry->move) == last_to)
            value += ORDER_RECAPTURE;
        *order = static_cast<uint8_t>(value);
    }
}

// To-square of a remembered move as a set, empty for none.
uint64_t MarkOf(Move move) { return move ? Bit(ToSquare(move)) : 0; }

// Remembered moves first, each in its own range, within which history decides; then the others by history alone.
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

// A flat scale without history: what isn't remembered stays in generation order. Gives the new end of the list, since
// what neither blocks nor steps aside is dropped at once. Drawing a remembered move exchanges it with the head of the
// list, so these and the first two moves keep their places: the order of the others doesn't change.
MoveEntry* PrescoreInCheck(Position* pos, MoveEntry* list, const MoveEntry* end, const LegalityContext& legality) {
    const PlyFrame& frame = pos->frames[pos->ply];
    const Move refutation = GetRefutation(*pos);
    uint8_t* order = OrderOf(ThreadOf(pos), list);
    MoveEntry* kept = list;
    for (const MoveEntry* entry = list; entry != end; ++entry) {
        const Move move = entry->move;
        const bool answers = (legality.tested >> FromSquare(move) | legality.targets >> ToSquare(move)) & 1;
        int value = 1;
        if (move == frame.hash_move)
            value = 0;
        else if (move == frame.check_killer)
            value = ORDER_CHECK_KILLER;
        else if (move == refutation)
            value = ORDER_CHECK_REFUTATION;
        else if (!answers && entry >= list + 2)
            continue;
        *kept = *entry;
        if (value == 0)
            kept->move = NO_MOVE;
        ++kept;
        *order++ = static_cast<uint8_t>(value);
    }
    return kept;
}

// A list of the hash move alone: if it cuts, nothing is ever generated.
MoveEntry* HashMoveEntry(Position* pos, PlyFrame* frame) {
    MoveEntry* entry = frame->first;
    const Move move = frame->hash_move;
    // The table may have it from another position: the node asks whether it is legal like any other move.
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
        // What has been lowered isn't picked here again.
        static_assert(ORDER_LOSING_CAPTURE + int{KING} <= ORDER_GOOD_CAPTURE);
        *OrderOf(thread, entry) = static_cast<uint8_t>(ORDER_LOSING_CAPTURE + TypeOf(entry->captured));
    }
    return nullptr;
}

// Appends the quiet moves to what is left of the list, where the losing captures have come to lie.
void GenerateQuiet(Position* pos, PlyFrame* frame, bool in_check, const LegalityContext& legality) {
    MoveEntry* list = EndOfList(frame);
    MoveEntry* end;
    if (in_check) {
        const uint64_t answers = legality.targets | MarkOf(frame->check_killer) | MarkOf(GetRefutation(*pos));
        end = GenerateEvasions(*pos, pos->stm, answers, list);
        end = PrescoreInCheck(pos, list, end, legality);
    } else {
        end = GenerateNonCaptures(*pos, pos->stm, list);
        PrescoreQuiet(pos, list, end);
    }
    CloseList(pos, end);
}

// Place of the first highest of `count` bytes, at least one. Up to 31 bytes behind them are read and ignored: the first
// equal byte lies within the list.
ptrdiff_t FirstHighest(const uint8_t* bytes, ptrdiff_t count) {
    const Vector first = LoadVector(bytes);
    if (count <= 16)
        return FirstPlace(EqualBytes(first, HighestByte(CommonBits(first, FirstPlaces(count)))));
    const Vector second = LoadVector(bytes + 16);
    if (count <= 32) {
        const Vector highest = HighestByte(
            HigherBytes(CommonBits(first, FirstPlaces(count)), CommonBits(second, FirstPlaces(count - 16))));
        return FirstPlace(EqualBytes(first, highest), EqualBytes(second, highest));
    }
    // More than 32 moves: the highest of all first, its place by a second look.
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

// Sorts moves by their scores, highest first. False if the scores don't tell the order in which they would be drawn:
// equals, and more than one from where moves come in the order of the list.
bool SortByScore(std::span<MoveEntry> moves) {
    for (size_t i = 1; i < moves.size(); ++i)
        for (size_t j = i; j > 0 && moves[j].sort_value >= moves[j - 1].sort_value; --j) {
            if (moves[j].sort_value == moves[j - 1].sort_value)
                return false;
            std::swap(moves[j], moves[j - 1]);
        }
    return moves.size() < 2 || moves[moves.size() - 2].sort_value > ORDER_NO_MERIT;
}

// Writes moves in place of all that is left to be drawn. They are drawn as they come.
void ReplaceRest(Position* pos, std::span<const MoveEntry> moves) {
    PlyFrame* frame = pos->frames + pos->ply;
    MoveEntry* list = frame->current + 1;
    uint8_t* order = OrderOf(ThreadOf(pos), list);
    for (const MoveEntry& entry : moves) {
        *list++ = entry;
        *order++ = entry.sort_value;
    }
    CloseList(pos, list);
    frame->stage = STAGE_IN_ORDER;
}

}  // namespace

void InitMoveOrderingTables(SearchThread* thread) {
    // A search repeated is the same search: nothing is carried over but the table.
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
    // An exchange, not a rotation: what stood at the head goes to the place of the best.
    const uint8_t value = order[best];
    order[best] = *order;
    *order = value;
    std::swap(*head, head[best]);
    head->sort_value = value;
}

MoveEntry* GetEarlyMoveFW(Position* pos, bool in_check, const LegalityContext& legality) {
    PlyFrame* frame = pos->frames + pos->ply;
    // An internal deepening starts anew at the same frame: the list of whoever used it before is overwritten.
    if (frame->stage == STAGE_HASH) {
        frame->stage = STAGE_GENERATE;
        frame->current = frame->first;
        if (frame->hash_move)
            return HashMoveEntry(pos, frame);
    } else {
        ++frame->current;
    }
    if (frame->stage == STAGE_GENERATE) {
        GenerateActive(pos, frame->current);
        frame->stage = STAGE_ACTIVE;
    }
    // Stages without a move are passed through, so that each call comes back with one as long as there is any.
    assert(frame->stage == STAGE_ACTIVE);
    if (MoveEntry* entry = PickActive(pos, frame))
        return entry;
    GenerateQuiet(pos, frame, in_check, legality);
    frame->stage = STAGE_REST;
    MoveEntry* entry = frame->current;
    if (entry == EndOfList(frame))
        return nullptr;
    PickRest(ThreadOf(pos), frame, entry);
    return entry;
}

void DropVoidMoves(Position* pos) {
    PlyFrame* frame = pos->frames + pos->ply;
    std::array<MoveEntry, MAX_KEPT> kept;
    size_t count = 0;
    const MoveEntry* end = EndOfList(frame);
    for (const MoveEntry* entry = frame->current + 1; entry != end; ++entry) {
        if (entry->move == NO_MOVE)
            continue;
        if (count == MAX_KEPT)
            return;
        kept[count++] = *entry;
    }
    // Of different scores the highest is drawn first; of equals the first, but the draws before have changed places.
    const std::span moves = std::span(kept).first(count);
    if (frame->stage == STAGE_IN_ORDER || SortByScore(moves)) {
        ReplaceRest(pos, moves);
        return;
    }
    MoveEntry* before = frame->current;
    count = 0;
    while (const MoveEntry* entry = DrawRest(pos))
        if (entry->move != NO_MOVE)
            kept[count++] = *entry;
    frame->current = before;
    ReplaceRest(pos, moves);
}

Move GetRefutation(const Position& pos) {
    return pos.last_move ? ThreadOf(pos)->refutation[RefutationIndex(pos)] : NO_MOVE;
}

void SetRefutation(Position* pos, Move move) {
    assert(pos->last_move != NO_MOVE);
    ThreadOf(pos)->refutation[RefutationIndex(*pos)] = move;
}

Move GetFollowup(const Position& pos) { return pos.ply > 2 ? ThreadOf(pos)->followup[FollowupHash(pos)] : NO_MOVE; }

// The two moves before this one are looked up in the frames, of which the first plies have too few.
void SetFollowup(Position* pos, Move move) {
    assert(pos->ply > 2);
    ThreadOf(pos)->followup[FollowupHash(*pos)] = move;
}

// What answers a check or a passed turn is seldom good elsewhere and has a place of its own. The newest two killers are
// kept; a killer that cuts again changes nothing.
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
