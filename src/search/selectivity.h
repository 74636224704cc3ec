#pragma once

#include <algorithm>

#include "board/legality.h"
#include "board/position.h"
#include "search/search.h"

namespace vrel {

// Bits of MoveEntry::flags.
enum MoveFlags : int { FLAG_CAPTURE = 1, FLAG_CHECK = 2, FLAG_PUSH7 = 4, FLAG_QUEEN = 8, ANY_FLAG = 15 };

// A pawn's move to its seventh rank.
inline bool MoveIsPushToSeventh(const Position& pos, const MoveEntry& entry) {
    return TypeOf(entry.piece) == PAWN && RelativeRank(pos.stm, ToSquare(entry.move)) == SEVENTH_RANK;
}

// Place of a depth in the margins of Personality.
constexpr int MarginDepth(Depth depth) { return std::clamp(depth, 0, 7); }

// True for a move that has one of the flags.
inline bool MoveIsActive(const Position& pos, const MoveEntry& entry, const CheckContext& checks) {
    return entry.captured || (entry.move & PROMOTE_QUEEN) || MoveIsPushToSeventh(pos, entry) ||
           MoveGivesCheck(pos, pos.stm, entry, checks) != NO_CHECK;
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
