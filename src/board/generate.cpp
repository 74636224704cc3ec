#include "board/generate.h"

#include <bit>
#include <cassert>
#include <cstring>
#include <utility>

#include "board/attacks.h"
#include "board/legality.h"

namespace vrel {

namespace {

// Move, mover and victim in one store; the other two fields stay. The order of the bytes is that of a machine which
// stores the lowest first.
static_assert(std::endian::native == std::endian::little);
MoveEntry* WriteEntry(MoveEntry* list, Move move, uint32_t piece, uint32_t captured) {
    const uint32_t word = move | piece << 16 | captured << 24;
    std::memcpy(static_cast<void*>(list), &word, sizeof word);
    return list + 1;
}

// Appends a move to whatever stands on the to-square.
MoveEntry* AddMove(MoveEntry* list, const Position& pos, Square from, Square to) {
    return WriteEntry(list, MakeMoveValue(from, to), pos.board[from], pos.board[to]);
}

// Queen, then knight, bishop and rook if `all`.
MoveEntry* AddPromotion(MoveEntry* list, const Position& pos, Square from, Square to, bool all) {
    const uint32_t piece = pos.board[from];
    const uint32_t captured = pos.board[to];
    const Move move = MakeMoveValue(from, to);
    list = WriteEntry(list, move | PROMOTE_QUEEN, piece, captured);
    if (!all)
        return list;
    list = WriteEntry(list, move | PROMOTE_KNIGHT, piece, captured);
    list = WriteEntry(list, move | PROMOTE_BISHOP, piece, captured);
    return WriteEntry(list, move | PROMOTE_ROOK, piece, captured);
}

// All moves of one piece to a set of squares, from the lowest up.
MoveEntry* AddTargets(MoveEntry* list, const Position& pos, Square from, uint64_t targets) {
    const uint32_t piece = pos.board[from];
    while (targets) {
        const Square to = PopLSB(&targets);
        list = WriteEntry(list, MakeMoveValue(from, to), piece, pos.board[to]);
    }
    return list;
}

// Quiet moves of one piece.
MoveEntry* AddQuiets(MoveEntry* list, const Position& pos, Square from, uint64_t targets) {
    const uint32_t piece = pos.board[from];
    while (targets)
        list = WriteEntry(list, MakeMoveValue(from, PopLSB(&targets)), piece, 0);
    return list;
}

// The en passant square as a target, if a pawn has really just passed over it.
template <int Side>
uint64_t EnPassantTarget(const Position& pos) {
    const Square sq = pos.ep_square;
    if (sq == NO_SQUARE || pos.board[sq] || EnPassantVictim(pos, Side, sq) == NO_SQUARE)
        return 0;
    return Bit(sq);
}

// Captures in one direction: the targets shifted back onto the pawns.
template <int Step>
MoveEntry* AddPawnCaptures(MoveEntry* list, const Position& pos, uint64_t movers) {
    while (movers) {
        const Square from = PopLSB(&movers);
        list = AddMove(list, pos, from, from + Step);
    }
    return list;
}

// First towards the h-file for black and towards the a-file for white, then to the other side.
template <int Side>
MoveEntry* PawnCaptures(const Position& pos, MoveEntry* list) {
    const uint64_t targets = pos.bb[Side ^ 1][0] | EnPassantTarget<Side>(pos);
    // Pawns on their seventh rank promote and are generated elsewhere; on the eighth they have no move.
    const uint64_t pawns = pos.bb[Side][PAWN] & Ranks<Side>(1, 6);
    if constexpr (Side == WHITE) {
        list = AddPawnCaptures<7>(list, pos, (targets >> 7) & pawns & ~FILE_A);
        return AddPawnCaptures<9>(list, pos, (targets >> 9) & pawns & ~FILE_H);
    } else {
        list = AddPawnCaptures<-7>(list, pos, (targets << 7) & pawns & ~FILE_H);
        return AddPawnCaptures<-9>(list, pos, (targets << 9) & pawns & ~FILE_A);
    }
}

// Attack sets of the sliders of one side in the order of their rows, for a caller that needs them twice.
using SliderSets = std::array<uint64_t, 3 * MAX_ROW>;

// Calls action(square, attack set) for each bishop, then rook, then queen.
template <int Side, typename Action>
void ForEachSlider(const Position& pos, uint64_t occ, Action action) {
    const auto& rows = pos.plist[Side];
    for (const uint8_t* sq = rows[BISHOP].data(); *sq != NO_SQUARE; ++sq)
        action(*sq, GenAttacksB(*sq, occ));
    for (const uint8_t* sq = rows[ROOK].data(); *sq != NO_SQUARE; ++sq)
        action(*sq, GenAttacksR(*sq, occ));
    for (const uint8_t* sq = rows[QUEEN].data(); *sq != NO_SQUARE; ++sq)
        action(*sq, GenAttacksB(*sq, occ) | GenAttacksR(*sq, occ));
}

// The same from attack sets at hand.
template <int Side, typename Action>
void ForEachSlider(const Position& pos, const uint64_t* sets, Action action) {
    for (int type = BISHOP; type <= QUEEN; ++type)
        for (const uint8_t* sq = pos.plist[Side][type].data(); *sq != NO_SQUARE; ++sq)
            action(*sq, *sets++);
}

// Knights to king, in the order of their rows. `sliders` is what ForEachSlider takes: the occupied set, or attack sets.
template <int Side, typename Sliders>
MoveEntry* PieceCaptures(const Position& pos, Sliders sliders, MoveEntry* list) {
    const uint64_t enemy = pos.bb[Side ^ 1][0];
    const auto& rows = pos.plist[Side];
    for (const uint8_t* sq = rows[KNIGHT].data(); *sq != NO_SQUARE; ++sq)
        list = AddTargets(list, pos, *sq, BB_KnightRays[*sq] & enemy);
    ForEachSlider<Side>(pos, sliders,
                        [&](Square sq, uint64_t attacks) { list = AddTargets(list, pos, sq, attacks & enemy); });
    const Square king = rows[KING][0];
    return AddTargets(list, pos, king, BB_KingRays[king] & enemy);
}

// Per pawn: straight on, to the left, to the right.
template <int Side>
MoveEntry* Promotions(const Position& pos, bool all, MoveEntry* list) {
    uint64_t pawns = pos.bb[Side][PAWN] & BB_r7[Side];
    const uint64_t enemy = pos.bb[Side ^ 1][0];
    while (pawns) {
        const Square from = PopLSB(&pawns);
        const Square front = from + pawn_dir[Side];
        if (pos.board[front] == 0)
            list = AddPromotion(list, pos, from, front, all);
        if (FileOf(from) != 0 && (enemy & Bit(front - 1)))
            list = AddPromotion(list, pos, from, front - 1, all);
        if (FileOf(from) != 7 && (enemy & Bit(front + 1)))
            list = AddPromotion(list, pos, from, front + 1, all);
    }
    return list;
}

// Only the squares between are looked at: attacks on them and the rook are MoveIsLegal's and the rights' business.
template <int Side>
MoveEntry* Castlings(const Position& pos, MoveEntry* list) {
    constexpr Square king = init_king_sq[Side];
    constexpr uint64_t short_path = Bit(king + 1) | Bit(king + 2);
    constexpr uint64_t long_path = Bit(king - 1) | Bit(king - 2) | Bit(king - 3);
    constexpr int short_right = Side == WHITE ? WHITE_SHORT : BLACK_SHORT;
    constexpr int long_right = Side == WHITE ? WHITE_LONG : BLACK_LONG;
    const uint64_t occ = Occupied(pos);
    if ((pos.castling & short_right) && (occ & short_path) == 0)
        list = AddMove(list, pos, king, king + 2);
    if ((pos.castling & long_right) && (occ & long_path) == 0)
        list = AddMove(list, pos, king, king - 2);
    return list;
}

// In the order of the row, a double step right behind its single step. Pawns on the seventh rank promote elsewhere.
template <int Side>
MoveEntry* PawnPushes(const Position& pos, MoveEntry* list) {
    constexpr int step = pawn_dir[Side];
    constexpr uint32_t pawn = PieceCode(Side, PAWN);
    // The squares from which a pawn can step, and step twice.
    const uint64_t empty = ~Occupied(pos);
    const uint64_t once = Backward<Side>(empty) & ~BB_r7[Side];
    const uint64_t twice = once & Backward<Side>(once) & BB_r7[Side ^ 1];
    for (const uint8_t* sq = pos.plist[Side][PAWN].data(); *sq != NO_SQUARE; ++sq) {
        // Written in any case, and kept if it can be made: a branch would often be guessed wrong.
        const Square from = *sq;
        WriteEntry(list, MakeMoveValue(from, from + step), pawn, 0);
        list += (once >> from) & 1;
        WriteEntry(list, MakeMoveValue(from, from + 2 * step), pawn, 0);
        list += (twice >> from) & 1;
    }
    return list;
}

// Pawns to king, and castling last. `targets` tells from the end of the list where the next piece but the king may go.
template <int Side, typename Sliders, typename Targets>
MoveEntry* NonCaptures(const Position& pos, Sliders sliders, Targets targets, MoveEntry* list) {
    const auto& rows = pos.plist[Side];
    list = PawnPushes<Side>(pos, list);
    for (const uint8_t* sq = rows[KNIGHT].data(); *sq != NO_SQUARE; ++sq)
        list = AddQuiets(list, pos, *sq, BB_KnightRays[*sq] & targets(list));
    ForEachSlider<Side>(pos, sliders,
                        [&](Square sq, uint64_t attacks) { list = AddQuiets(list, pos, sq, attacks & targets(list)); });
    const Square king = rows[KING][0];
    list = AddQuiets(list, pos, king, BB_KingRays[king] & ~Occupied(pos));
    return king == init_king_sq[Side] ? Castlings<Side>(pos, list) : list;
}

template <int Side, typename Sliders>
MoveEntry* NonCaptures(const Position& pos, Sliders sliders, MoveEntry* list) {
    const uint64_t empty = ~Occupied(pos);
    return NonCaptures<Side>(
        pos, sliders, [empty](const MoveEntry*) { return empty; }, list);
}

template <int Side>
MoveEntry* Evasions(const Position& pos, uint64_t answers, MoveEntry* list) {
    const uint64_t empty = ~Occupied(pos);
    const MoveEntry* third = list + 2;
    return NonCaptures<Side>(
        pos, Occupied(pos), [=](const MoveEntry* end) { return end < third ? empty : empty & answers; }, list);
}

// Everything, the sliders' attack sets made once.
template <int Side>
MoveEntry* AllMoves(const Position& pos, MoveEntry* list) {
    SliderSets sets;
    uint64_t* end = sets.data();
    ForEachSlider<Side>(pos, Occupied(pos), [&](int, uint64_t attacks) { *end++ = attacks; });
    list = PawnCaptures<Side>(pos, list);
    list = PieceCaptures<Side>(pos, std::as_const(sets).data(), list);
    list = Promotions<Side>(pos, true, list);
    return NonCaptures<Side>(pos, std::as_const(sets).data(), list);
}

template <int Side>
MoveEntry* PawnMoves(const Position& pos, MoveEntry* list) {
    list = PawnCaptures<Side>(pos, list);
    list = Promotions<Side>(pos, true, list);
    return PawnPushes<Side>(pos, list);
}

// Attack set of a piece from knight to queen.
uint64_t AttacksOf(int type, Square sq, uint64_t occ) {
    switch (type) {
        case KNIGHT:
            return BB_KnightRays[sq];
        case BISHOP:
            return GenAttacksB(sq, occ);
        case ROOK:
            return GenAttacksR(sq, occ);
        default:
            return GenAttacksB(sq, occ) | GenAttacksR(sq, occ);
    }
}

template <int Side>
MoveEntry* PieceMoves(const Position& pos, int type, uint64_t targets, MoveEntry* list) {
    const uint8_t* row = pos.plist[Side][type].data();
    targets &= ~pos.bb[Side][0];
    if (type == KING) {
        list = AddTargets(list, pos, *row, BB_KingRays[*row] & targets);
        return *row == init_king_sq[Side] ? Castlings<Side>(pos, list) : list;
    }
    for (; *row != NO_SQUARE; ++row)
        list = AddTargets(list, pos, *row, AttacksOf(type, *row, Occupied(pos)) & targets);
    return list;
}

// The squares from which each type would check are found once, from the king; then each piece is asked which of them it
// reaches. A side without a piece of a kind isn't asked at all.
template <int Side>
MoveEntry* Checks(const Position& pos, MoveEntry* list) {
    const uint64_t occ = Occupied(pos);
    const uint64_t empty = ~occ;
    const Square ksq = KingSquare(pos, Side ^ 1);
    const auto& rows = pos.plist[Side];
    const uint64_t knight_sq = BB_KnightRays[ksq] & empty;
    const uint64_t bishop_sq = BishopsAndQueens(pos, Side) ? GenAttacksB(ksq, occ) & empty : 0;
    const uint64_t rook_sq = RooksAndQueens(pos, Side) ? GenAttacksR(ksq, occ) & empty : 0;
    const uint64_t pawn_sq = BB_PawnRays[Side ^ 1][ksq] & empty;
    // Single steps alone: a double step that checks is left to the full search.
    uint64_t pawns = Backward<Side>(pawn_sq) & pos.bb[Side][PAWN];
    while (pawns) {
        const Square from = PopLSB(&pawns);
        list = AddMove(list, pos, from, from + pawn_dir[Side]);
    }
    for (const uint8_t* sq = rows[KNIGHT].data(); *sq != NO_SQUARE; ++sq)
        list = AddQuiets(list, pos, *sq, BB_KnightRays[*sq] & knight_sq);
    // Most sliders reach no such square on any board, and for them no attack set is made.
    for (const uint8_t* sq = rows[BISHOP].data(); *sq != NO_SQUARE; ++sq)
        if (BB_BishopRays[*sq] & bishop_sq)
            list = AddQuiets(list, pos, *sq, GenAttacksB(*sq, occ) & bishop_sq);
    for (const uint8_t* sq = rows[ROOK].data(); *sq != NO_SQUARE; ++sq)
        if (BB_RookRays[*sq] & rook_sq)
            list = AddQuiets(list, pos, *sq, GenAttacksR(*sq, occ) & rook_sq);
    for (const uint8_t* sq = rows[QUEEN].data(); *sq != NO_SQUARE; ++sq)
        list = AddQuiets(list, pos, *sq, (GenAttacksB(*sq, occ) | GenAttacksR(*sq, occ)) & (bishop_sq | rook_sq));
    return list;
}

}  // namespace

MoveEntry* GeneratePawnCaptures(const Position& pos, Side side, MoveEntry* list) {
    return side == WHITE ? PawnCaptures<WHITE>(pos, list) : PawnCaptures<BLACK>(pos, list);
}

MoveEntry* GeneratePieceCaptures(const Position& pos, Side side, MoveEntry* list) {
    return side == WHITE ? PieceCaptures<WHITE>(pos, Occupied(pos), list)
                         : PieceCaptures<BLACK>(pos, Occupied(pos), list);
}

MoveEntry* GeneratePromotions(const Position& pos, Side side, bool all, MoveEntry* list) {
    return side == WHITE ? Promotions<WHITE>(pos, all, list) : Promotions<BLACK>(pos, all, list);
}

MoveEntry* GenerateNonCaptures(const Position& pos, Side side, MoveEntry* list) {
    return side == WHITE ? NonCaptures<WHITE>(pos, Occupied(pos), list) : NonCaptures<BLACK>(pos, Occupied(pos), list);
}

MoveEntry* GenerateEvasions(const Position& pos, Side side, uint64_t answers, MoveEntry* list) {
    return side == WHITE ? Evasions<WHITE>(pos, answers, list) : Evasions<BLACK>(pos, answers, list);
}

MoveEntry* GeneratePawnMoves(const Position& pos, Side side, MoveEntry* list) {
    return side == WHITE ? PawnMoves<WHITE>(pos, list) : PawnMoves<BLACK>(pos, list);
}

MoveEntry* GeneratePieceMoves(const Position& pos, Side side, int type, uint64_t targets, MoveEntry* list) {
    return side == WHITE ? PieceMoves<WHITE>(pos, type, targets, list) : PieceMoves<BLACK>(pos, type, targets, list);
}

MoveEntry* GenerateChecks(const Position& pos, Side side, MoveEntry* list) {
    return side == WHITE ? Checks<WHITE>(pos, list) : Checks<BLACK>(pos, list);
}

void CloseList(Position* pos, MoveEntry* end) {
    assert(pos->ply >= 0 && pos->ply + 2 < FRAMES);
    end->move = END_OF_LIST;
    pos->frames[pos->ply + 1].first = end + 1;
    pos->frames[pos->ply + 2].first = end + 2;
}

void GenerateAll(Position* pos) {
    MoveEntry* list = pos->frames[pos->ply].first;
    CloseList(pos, pos->stm == WHITE ? AllMoves<WHITE>(*pos, list) : AllMoves<BLACK>(*pos, list));
}

void RemoveIllegalMoves(const Position& pos, MoveEntry* list) {
    MoveEntry* kept = list;
    for (; list->move != END_OF_LIST; ++list)
        if (MoveIsLegal(pos, pos.stm, list->move))
            *kept++ = *list;
    kept->move = END_OF_LIST;
}

bool MoveIsPossible(Position* pos, Move move) {
    GenerateAll(pos);
    for (const MoveEntry* entry = pos->frames[pos->ply].first; entry->move != END_OF_LIST; ++entry)
        if (entry->move == move)
            return MoveIsLegal(*pos, pos->stm, move);
    return false;
}

void PickNextMove(MoveEntry* list) {
    // A list that is used up has no second entry to look at.
    MoveEntry* best = list;
    if (list->move == END_OF_LIST)
        return;
    for (MoveEntry* entry = list + 1; entry->move != END_OF_LIST; ++entry)
        if (entry->sort_value > best->sort_value)
            best = entry;
    if (best != list)
        std::swap(*best, *list);
}

}  // namespace vrel
