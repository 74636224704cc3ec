#include "board/exchange.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "board/fen.h"
#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

int Worth(char piece) { return piece_value[std::string(".pnbrqk").find(static_cast<char>(piece | (piece & 64) >> 1))]; }

// The exchange as one thinks it over at the board: captures played on a copy, with moves of the rules. `from` is
// NOWHERE where the side may choose its cheapest attacker, or not to take at all.
int PlayOut(oracle::Board board, int from, int sq) {
    const char target = board.squares[static_cast<size_t>(sq)];
    const int floor = from == oracle::NOWHERE ? 0 : -9999;
    if (from == oracle::NOWHERE) {
        for (int s = 63; s >= 0; --s) {
            const char piece = board.squares[static_cast<size_t>(s)];
            if (piece == '.' || oracle::IsWhite(piece) != board.white_to_move)
                continue;
            oracle::Board alone = board;  // who attacks the square, each piece by itself
            for (int other = 0; other < 64; ++other)
                if (other != s && alone.squares[static_cast<size_t>(other)] != '.')
                    alone.squares[static_cast<size_t>(other)] = 'x';
            if (oracle::Attacked(alone, sq, board.white_to_move) &&
                (from == oracle::NOWHERE || Worth(piece) <= Worth(board.squares[static_cast<size_t>(from)])))
                from = s;
        }
        if (from == oracle::NOWHERE)
            return 0;
    }
    if ((target | 32) == 'k')
        return 9999;
    board.squares[static_cast<size_t>(sq)] = board.squares[static_cast<size_t>(from)];
    board.squares[static_cast<size_t>(from)] = '.';
    board.white_to_move = !board.white_to_move;
    return std::max(floor, Worth(target) - PlayOut(board, oracle::NOWHERE, sq));
}

TEST(Exchange, IsWhatPlayingItOutGives) {
    TestPosition pos(fen_opn);
    int losses = 0;
    for (const std::string& fen : ManyPositions(250, 400)) {
        SCOPED_TRACE(fen);
        pos.Set(fen);
        oracle::Board board = OracleBoard(*pos);
        const uint64_t occ = Occupied(*pos);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            const int from = FromSquare(entry.move);
            const int to = ToSquare(entry.move);
            const int value = PlayOut(board, from, to);
            ASSERT_EQ(swapoff1(*pos, pos->stm, from, to, occ), value) << entry.move;
            losses += value < 0;
            const int victim = piece_value[static_cast<size_t>(TypeOf(entry.captured))];
            for (const int threshold : {-9000, -900, -325, -100, -89, 0, 1, 175, victim})
                if (threshold <= victim && TypeOf(entry.piece) != KING && TypeOf(entry.captured) != KING) {
                    ASSERT_EQ(ExchangeReaches(*pos, pos->stm, from, to, threshold), value >= threshold)
                        << entry.move << ' ' << threshold;
                }
        }
        for (int sq = 0; sq < 64; ++sq)
            for (const int side : {WHITE, BLACK}) {
                board.white_to_move = side == WHITE;
                ASSERT_EQ(swapoff1(*pos, side, NO_SQUARE, sq, occ), PlayOut(board, oracle::NOWHERE, sq)) << sq;
            }
    }
    EXPECT_GT(losses, 1000);
}

}  // namespace
}  // namespace vrel
