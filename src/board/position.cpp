#include "board/position.h"

namespace vrel {

using Row = std::array<uint8_t, MAX_ROW + 1>;

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
