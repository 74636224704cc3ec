#pragma once

#include <array>
#include <cstdint>

#include "board/position.h"

namespace vrel {

// True if a pseudo-legal move leaves the own king unattacked; no move is not legal. Castling also asks that the king
// doesn't leave or cross an attacked square.
bool MoveIsLegal(const Position& pos, int side, Move move);

// What a node knows about legality before it looks at a single move.
struct LegalityContext {
    uint64_t tested;   // from these squares every move has to be tested: the king, pinned pieces
    uint64_t targets;  // from all others a move is legal if it goes here; after a check: blocks and captures
};

LegalityContext MakeLegalityContext(const Position& pos, int side, bool in_check);

// The same answer as above with that knowledge. En passant opens lines of its own and is always tested.
inline bool MoveIsLegal(const Position& pos, int side, Move move, const LegalityContext& context) {
    if (move != NO_MOVE && ((context.tested >> FromSquare(move)) & 1) == 0 && ToSquare(move) != pos.ep_square)
        return (context.targets >> ToSquare(move)) & 1;
    return MoveIsLegal(pos, side, move);
}

// Asked before the move is made: 0 no check, 1 direct, 2 discovered. A rook's check after castling and a discovery
// through an en passant victim aren't seen.
int MoveGivesCheck(const Position& pos, int side, const MoveEntry& entry);

// What a node knows about checks before it looks at a single move.
struct CheckContext {
    std::array<uint64_t, 8> check_squares;  // by type: where a piece that arrives gives direct check
    uint64_t discoverers;                   // own pieces alone between an own slider and the enemy king
};

CheckContext MakeCheckContext(const Position& pos, int side);

// The same answer as above with that knowledge.
inline int MoveGivesCheck(const Position& pos, int side, const MoveEntry& entry, const CheckContext& context) {
    const int type = (entry.move & PROMOTION_BITS) ? PromotedType(entry.move) : TypeOf(entry.piece);
    if ((context.check_squares[type] >> ToSquare(entry.move)) & 1)
        return 1;
    if (((context.discoverers >> FromSquare(entry.move)) & 1) == 0)
        return 0;
    return MoveGivesCheck(pos, side, entry);
}

// What a result of MoveGivesCheck says about the position after the move: the moves whose checks it may miss stay open.
inline GivesCheck CheckAfter(const Position& pos, const MoveEntry& entry, int gives_check) {
    if (gives_check)
        return CHECK_YES;
    const int step = ToSquare(entry.move) - FromSquare(entry.move);
    const bool castling = TypeOf(entry.piece) == KING && (step == 2 || step == -2);
    const bool open = castling || ToSquare(entry.move) == pos.ep_square || (entry.move & PROMOTION_BITS);
    return open ? CHECK_UNKNOWN : CHECK_NO;
}

}  // namespace vrel
