#pragma once

#include <algorithm>

#include "board/legality.h"
#include "board/position.h"
#include "search/search.h"

namespace vrel {

// Bits of MoveEntry::flags.
enum MoveFlags : int { FLAG_CAPTURE = 1, FLAG_CHECK = 2, FLAG_PUSH7 = 4, FLAG_QUEEN = 8, ANY_FLAG = 15 };

// Place of a depth in the margins of Personality.
constexpr int MarginDepth(Depth depth) { return std::clamp(depth, 0, 7); }

// The flags of a move that gives such a check.
inline int FlagsOf(const Position& pos, const MoveEntry& entry, CheckKind check) {
    int flags = check != NO_CHECK ? FLAG_CHECK : 0;
    if (static_cast<int>(TypeOf(entry.piece) == PAWN) & (RelativeRank(pos.stm, ToSquare(entry.move)) == SEVENTH_RANK))
        flags |= FLAG_PUSH7;
    if (entry.captured)
        flags |= FLAG_CAPTURE;
    if (entry.move & PROMOTE_QUEEN)
        flags |= FLAG_QUEEN;
    return flags;
}

// True for a move that has one.
inline bool MoveIsActive(const Position& pos, const MoveEntry& entry, const CheckContext& checks) {
    return FlagsOf(pos, entry, MoveGivesCheck(pos, pos.stm, entry, checks)) != 0;
}

// Fills entry->flags and gives the extension, 0 or 1.
int Extension(const Position& pos, MoveEntry* entry, const CheckContext& checks);

// What speaks for dropping quiet moves of a node, whichever they are.
struct DropLimits {
    bool futile;  // the evaluation is so far below alpha that a quiet move won't make up for it
    int late;     // with more moves searched than this, a move is late
};
DropLimits DropLimitsOf(const PlyFrame& frame, Depth depth);

// True if with that many moves searched others may be dropped. It stays true.
bool MayPrune(const DropLimits& limits, int searched);

// True to drop a move that isn't active, if any may be dropped. Not asked where a side has pawns alone.
bool PruneMove(const Position& pos, const MoveEntry& entry, const DropLimits& limits);

// True if the move mustn't be pruned because it decides the kind of ending.
bool EndgamePruneExclusion(const Position& pos, const MoveEntry& entry);

// Reduction in plies, 0 to 3.
int Reduction(const Position& pos, const MoveEntry& entry, Depth depth, int searched, NodeType node_type);

// Prints the two reduction tables on standard output.
void DisplayLMR();

}  // namespace vrel
