#include "board/position.h"

#include <cassert>

#include "platform/narrow.h"
#include "platform/vector.h"

namespace vrel {

namespace {

using Row = std::array<uint8_t, MAX_ROW + 1>;

// The rows are searched as a whole: where a piece stands in its row can't be predicted, and a loop would pay for that.
static_assert(sizeof(Row) == sizeof(Vector));

// Place of a square that is in the row; NO_SQUARE gives its length. The king's isn't part of the material signature, so
// the terminator tells.
int PlaceOf(Vector row, Square sq) { return FirstPlace(EqualBytes(row, FillVector(sq))); }

}  // namespace

void ClearBoard(Position* pos) {
    pos->ep_square = NO_SQUARE;
    pos->castling = WHITE_SHORT | WHITE_LONG | BLACK_SHORT | BLACK_LONG;
    pos->game_ply = 0;
    pos->ply = 1;
    pos->fifty = 0;
    pos->last_move = NO_MOVE;
    pos->npv = {};
    pos->msig = {};
    pos->board = {};
    pos->bb = {};
    for (auto& rows : pos->plist)
        for (Row& row : rows)
            row[0] = NO_SQUARE;
}

// A row is closed anew behind each piece that it takes in; the sums follow.
void AddPiece(Position* pos, Side side, int piece, Square sq) {
    const int type = piece & 7;
    assert(pos->board[sq] == 0 && type >= PAWN && type <= KING);
    Row& row = pos->plist[side][type];
    const int n = PlaceOf(LoadVector(row.data()), NO_SQUARE);
    if (n == MAX_ROW)
        return;
    row[n] = Narrow(sq);
    row[n + 1] = NO_SQUARE;
    pos->board[sq] = Narrow(PieceCode(side, type));
    pos->npv[side] = Narrow(pos->npv[side] + npv_unit[type]);
    pos->msig[side] += msig_unit[type];
    pos->bb[side][0] |= Bit(sq);
    pos->bb[side][type] |= Bit(sq);
}

void RemovePiece(Position* pos, Square sq) {
    const int code = pos->board[sq];
    assert(code != 0);
    const int type = TypeOf(code);
    const Side side = SideOf(code);
    pos->board[sq] = 0;
    Row& row = pos->plist[side][type];
    const Vector squares = LoadVector(row.data());
    // Later squares move up one place, so that the order of the row stays.
    const Vector earlier = FirstPlaces(PlaceOf(squares, sq));
    StoreVector(row.data(), Select(earlier, squares, DropFirst(squares)));
    pos->npv[side] = Narrow(pos->npv[side] - npv_unit[type]);
    pos->msig[side] -= msig_unit[type];
    pos->bb[side][0] ^= Bit(sq);
    pos->bb[side][type] ^= Bit(sq);
}

void MovePiece(Position* pos, Side side, Square from, Square to) {
    const uint8_t code = pos->board[from];
    assert(code != 0 && SideOf(code) == side && pos->board[to] == 0);
    const int type = TypeOf(code);
    pos->board[to] = code;
    pos->board[from] = 0;
    Row& row = pos->plist[side][type];
    const Vector squares = LoadVector(row.data());
    // The place that holds the old square takes the new one.
    StoreVector(row.data(), Select(EqualBytes(squares, FillVector(from)), FillVector(to), squares));
    const uint64_t both = Bit(from) | Bit(to);
    pos->bb[side][0] ^= both;
    pos->bb[side][type] ^= both;
}

bool PositionIsConsistent(const Position& pos) {
    for (const Side side : {WHITE, BLACK}) {
        uint64_t all = 0;
        uint32_t msig = 0;
        int npv = 0;
        // Each row against the squares of the board, and what it holds against the set of its type.
        for (int type = PAWN; type <= KING; ++type) {
            uint64_t set = 0;
            const Row& row = pos.plist[side][type];
            int n = 0;
            while (n < MAX_ROW && row[n] != NO_SQUARE)
                ++n;
            if (row[n] != NO_SQUARE)
                return false;
            for (int i = 0; i < n; ++i) {
                if (row[i] > 63 || (set & Bit(row[i])) || pos.board[row[i]] != PieceCode(side, type))
                    return false;
                set |= Bit(row[i]);
            }
            if (set != pos.bb[side][type])
                return false;
            all |= set;
            msig += static_cast<uint32_t>(n) * msig_unit[type];
            npv += n * npv_unit[type];
        }
        if (all != pos.bb[side][0] || msig != pos.msig[side] || npv != pos.npv[side])
            return false;
    }
    // Nothing may stand on the board that is in no row, and nothing on "no square".
    int pieces = 0;
    for (Square sq = 0; sq < 64; ++sq)
        pieces += pos.board[sq] != 0;
    return pieces == CountBits(Occupied(pos)) && (pos.bb[WHITE][0] & pos.bb[BLACK][0]) == 0 && pos.board[64] == 0;
}

}  // namespace vrel
