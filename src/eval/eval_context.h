#pragma once

#include <array>
#include <cstdint>

#include "board/eval_records.h"
#include "board/position.h"

// The scratch record of one evaluation, shared by the terms alone. It is filled from top to bottom as they run.
//
// The terms are templates on side and on `Root`: at the root each writes its share into the report as well. All are
// inlined into the frame, which keeps the record in registers as far as they go; so no function that isn't inlined
// may be given its address.
namespace vrel {

using PerSide = std::array<uint64_t, 2>;

struct EvalContext {
    const Position* pos;
    const PawnHashEntry* pawn;  // the thread's cache entry for this position
    EvalReport* report;         // for the root only
    Side side;                  // to move
    int stage;                  // 0 opening to 24 ending
    std::array<Square, 2> king_sq;
    uint64_t occupied;
    std::array<int, 2> weight;  // remaining force: knights and bishops 1, rooks 2, queens 4
    std::array<ScorePair, 2> material;
    std::array<ScorePair, 2> score;  // positional sums

    std::array<int, 2> race_rank;       // how far a passed pawn is that nobody stops in a pawn ending
    std::array<int, 2> free_pawn_rank;  // highest rank of a passed pawn with a free path
    std::array<int, 2> hung_value;      // centipawns, by owner

    std::array<PerSide, 7> attacks;  // by type of the attacker and side; row 0 joins all types
    PerSide double_attacks;          // squares attacked at least twice
    PerSide mobility_area;           // squares that count for mobility
    PerSide outpost;
    std::array<int, 2> king_attackers;  // against the king of the side
    PerSide king_zone;                  // the box around the king, moved off the rim
    PerSide king_lines;                 // open ground on the files of the king
    PerSide knight_checks;              // squares from which the enemy would check the king of the side
    PerSide bishop_checks;
    PerSide rook_checks;
    uint64_t hung;    // of both sides
    uint64_t pinned;  // of both sides
};

}  // namespace vrel
