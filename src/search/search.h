#pragma once

#include <array>

#include "board/position.h"
#include "board/search_thread.h"

// Node types, score constants and the chain of calls: SearchIterations, SearchRoot, Search, then FW_Search or
// Q_Search, and back to Search for each child. Scores are centipawns from the side to move.
namespace vrel {

// What a node is expected to be: one of unknown outcome, one of the principal variation, one that fails high, one that
// fails low. Pruning rests on the expectation alone.
enum NodeType : int { NODE_ANY = 0, NODE_PV = 1, NODE_CUT = 2, NODE_ALL = 3 };

// Type of the first child.
inline constexpr std::array<NodeType, 4> node_opp = {NODE_ANY, NODE_PV, NODE_ALL, NODE_CUT};

inline constexpr int MATE_BOUND = 9898;  // scores above it, and below -MATE_BOUND - 1, are mates
inline constexpr Ply MAX_PLY = 65;       // deepest ply whose moves are made

// Nodes of one quiescence tree. Chess positions stay below a thousand; only boards crowded with queens reach the
// limit, whose trees would not end in a lifetime.
inline constexpr uint64_t QUIET_TREE_LIMIT = 200000;

// A line of moves from pv[1] on, closed by 0. The shared form is looked at by other threads.
using PvLine = std::array<Move, FRAMES>;
using SharedLine = std::array<Relaxed<Move>, FRAMES>;

// What each worker runs for one search.
void SearchIterations(int id);

// One pass over the root list from place `first_index` on.
void SearchRoot(Position* pos, Side side, Depth depth, int first_index);

// A node below the root. The result lies in [alpha, beta] after the mate-distance clip, unless it is the score of a
// draw or the 0 of a node in check at the end of the frames.
int Search(Position* pos, Side side, Ply ply, Depth depth, int alpha, int beta, NodeType node_type, Move* pv);

// Move loop of a node that Search doesn't settle by itself; the result may lie outside the window.
int FW_Search(Position* pos, Side side, Ply ply, Depth depth, int alpha, int beta, bool in_check, NodeType node_type,
              Move* pv);

// Quiescence: settles a node at depth 0 or below that isn't in check. Evaluate has run for this ply.
int Q_Search(Position* pos, Side side, Ply ply, Depth depth, int alpha, int beta, NodeType node_type, Move* pv);

}  // namespace vrel
