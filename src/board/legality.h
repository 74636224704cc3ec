#pragma once

#include <array>
#include <cstdint>

#include "board/move_kind.h"
#include "board/position.h"

namespace vrel {

// A position that can arise in chess, as far as the kings tell: each side has one, and the side that has just moved
// hasn't left its own to be taken.
bool KingsAreInOrder(const Position& pos);

// True if a pseudo-legal move leaves the own king unattacked; no move is not legal. Castling also asks that the king
// doesn't leave or cross an attacked square.
bool MoveIsLegal(const Position& pos, Side side, Move move);

// What a node knows about legality before it looks at a single move.
struct LegalityContext {
    uint64_t tested;   // from these squares every move has to be tested: the king, pinned pieces
    uint64_t targets;  // from all others a move is legal if it goes here; after a check: blocks and captures
};

// `in_check` is what the node knows of its side to move. Where the board shows no check, no move has to answer one.
LegalityContext MakeLegalityContext(const Position& pos, Side side, bool in_check);

// The same answer as above with that knowledge. En passant opens lines of its own and is always tested.
inline bool MoveIsLegal(const Position& pos, Side side, Move move, const LegalityContext& context) {
    if (move != NO_MOVE && ((context.tested >> FromSquare(move)) & 1) == 0 && ToSquare(move) != pos.ep_square)
        return (context.targets >> ToSquare(move)) & 1;
    return MoveIsLegal(pos, side, move);
}

// How a move gives check, direct before discovered.
enum CheckKind : int { NO_CHECK = 0, DIRECT_CHECK = 1, DISCOVERED_CHECK = 2 };

// Asked before the move is made. A rook's check after castling and a discovery through an en passant victim aren't
// seen.
CheckKind MoveGivesCheck(const Position& pos, Side side, const MoveEntry& entry);

// What a node knows about checks before it looks at a single move.
struct CheckContext {
    std::array<uint64_t, 8> check_squares;  // by type: where a piece that arrives gives direct check
    uint64_t discoverers;                   // own pieces alone between an own slider and the enemy king
};

CheckContext MakeCheckContext(const Position& pos, Side side);

// The same answer as above with that knowledge.
inline CheckKind MoveGivesCheck(const Position& pos, Side side, const MoveEntry& entry, const CheckContext& context) {
    if ((context.check_squares[TypeAfterMove(entry)] >> ToSquare(entry.move)) & 1)
        return DIRECT_CHECK;
    // Few pieces stand between a slider and the king; whether such a one leaves the line is looked at in full.
    if (((context.discoverers >> FromSquare(entry.move)) & 1) == 0)
        return NO_CHECK;
    return MoveGivesCheck(pos, side, entry);
}

// What MoveGivesCheck says about the position after the move, `check` being whether it has seen one. The moves whose
// checks it may miss stay open, and so do promotions, whose pawn stays one if the row of the new piece is full.
inline GivesCheck CheckAfter(const Position& pos, const MoveEntry& entry, bool check) {
    if (entry.move & PROMOTION_BITS)
        return CHECK_UNKNOWN;
    if (check)
        return CHECK_YES;
    return MoveIsCastle(entry) || ToSquare(entry.move) == pos.ep_square ? CHECK_UNKNOWN : CHECK_NO;
}

}  // namespace vrel
