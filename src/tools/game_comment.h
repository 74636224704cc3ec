#pragma once

namespace vrel {

// Scores of moves that have none.
inline constexpr int NO_COMMENT = -30000;
inline constexpr int UNREADABLE_SCORE = -29999;

// The score that the comment behind a move gives it, in centipawns as the mover sees it. UNREADABLE_SCORE if the
// comment tells none, 0 for a book move. `black` tells who made the move: some comments are written as white sees it.
int ScoreOfComment(const char* comment, bool black);

}  // namespace vrel
