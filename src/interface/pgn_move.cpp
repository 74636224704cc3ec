#include "interface/pgn_move.h"

#include "board/attacks.h"
#include "board/fen.h"
#include "board/generate.h"
#include "board/legality.h"
#include "board/letters.h"
#include "board/make_move.h"
#include "interface/move_text.h"

namespace vrel {

namespace {

std::string SquareName(Square sq) { return algbr(sq); }

// The letter of the piece that a pawn becomes, nothing for other moves.
std::string PromotionText(Move move) {
    return move & PROMOTION_BITS ? std::string(1, fen_letters[PromotedType(move)]) : std::string();
}

std::string Coordinates(Move move) {
    std::string promotion = PromotionText(move);
    if (!promotion.empty())
        promotion[0] = fen_letters[PieceCode(BLACK, PromotedType(move))];
    return SquareName(FromSquare(move)) + SquareName(ToSquare(move)) + promotion;
}

// What tells the mover from others of its kind that can go to the same square: its file if no other stands on it, else
// its rank, else both.
std::string MarkAmongRivals(const LegalMoves& moves, const MoveEntry& mover) {
    const Square from = FromSquare(mover.move);
    bool rivals = false;
    bool same_file = false;
    bool same_rank = false;
    for (const MoveEntry* other = moves.list.data(); other != moves.end; ++other) {
        const Square rival = FromSquare(other->move);
        if (other->piece != mover.piece || rival == from || ToSquare(other->move) != ToSquare(mover.move))
            continue;
        rivals = true;
        same_file = same_file || FileOf(rival) == FileOf(from);
        same_rank = same_rank || RankOf(rival) == RankOf(from);
    }
    if (!rivals)
        return "";
    const std::string name = SquareName(from);
    return same_file && same_rank ? name : same_file ? name.substr(1) : name.substr(0, 1);
}

std::string TextOf(const LegalMoves& moves, const MoveEntry& entry) {
    const Square from = FromSquare(entry.move);
    const Square to = ToSquare(entry.move);
    const int type = TypeOf(entry.piece);
    if (type == KING && (to - from == 2 || from - to == 2))
        return to > from ? "O-O" : "O-O-O";
    std::string text;
    // A pawn that leaves its file takes, en passant as well.
    if (type != PAWN)
        text.append(1, fen_letters[type]).append(MarkAmongRivals(moves, entry)).append(entry.captured ? "x" : "");
    else if (FileOf(from) != FileOf(to))
        text.append(1, FileLetter(from)).append("x");
    text.append(algbr(to));
    if (entry.move & PROMOTION_BITS)
        text.append("=").append(PromotionText(entry.move));
    return text;
}

std::string SignOfCheck(const Position& pos) {
    if (!SqAtakd(pos, KingSquare(pos, pos.stm), pos.stm ^ 1))
        return "";
    return LegalMoves(pos).Empty() ? "#" : "+";
}

}  // namespace

LegalMoves::LegalMoves(const Position& pos) {
    MoveEntry* last = GeneratePawnMoves(pos, pos.stm, list.data());
    for (int type = KNIGHT; type <= KING; ++type)
        last = GeneratePieceMoves(pos, pos.stm, type, ALL_SQUARES, last);
    MoveEntry* kept = list.data();
    for (const MoveEntry* entry = list.data(); entry != last; ++entry)
        if (MoveIsLegal(pos, pos.stm, entry->move))
            *kept++ = *entry;
    end = kept;
}

std::string MoveRecord(Position* pos, const LegalMoves& moves, Move move) {
    const MoveEntry entry = {move, pos->board[FromSquare(move)], pos->board[ToSquare(move)], 0, 0};
    const std::string text = TextOf(moves, entry);
    const UndoRecord ahead = pos->undo[pos->game_ply];  // a move that was taken back, to be played again
    MakeMove(pos, move);
    std::array<char, EPD_TEXT> fen;
    MakeEPD(*pos, fen.data());
    const std::string sign = SignOfCheck(*pos);
    UnmakeMove(pos);
    pos->undo[pos->game_ply] = ahead;
    return Coordinates(move) + " " + text + sign + " " + fen.data();
}

}  // namespace vrel
