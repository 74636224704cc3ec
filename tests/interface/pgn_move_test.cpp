// Moves as PGN has them: each text names its move alone, to whoever reads it, and the rest of the record is true.
#include "interface/pgn_move.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "interface/move_text.h"
#include "support/engine.h"
#include "support/positions.h"

namespace vrel {
namespace {

TEST(PgnMove, TextsNameTheirMovesAndNoOthers) {
    StartForTests();
    Position* game = GamePosition();
    for (const std::string& fen : ManyPositions(300, 100)) {
        TestPosition behind(fen);
        if (!KingsAreInOrder(*behind))
            continue;
        SetPosition(game, fen.c_str());
        const LegalMoves moves(*game);
        const oracle::Board board = OracleBoard(*game);
        std::set<std::string> expected;
        for (const oracle::Move& move : oracle::LegalMoves(board))
            expected.insert(oracle::MoveText(move));
        std::set<std::string> written;
        std::set<std::string> texts;
        for (const MoveEntry* entry = moves.list.data(); entry != moves.end; ++entry) {
            std::istringstream record(MoveRecord(game, moves, entry->move));
            std::string coordinates, text, position;
            record >> coordinates >> text >> std::ws;
            std::getline(record, position);
            EXPECT_TRUE(texts.insert(text).second) << fen << " " << text;
            for (const std::string& form : {coordinates, text}) {
                Move read = NO_MOVE;
                MoveAsRead as_read;
                EXPECT_TRUE(ReadMoveText(form.substr(0, form.find('#')), &read, &as_read)) << fen << " " << form;
                EXPECT_EQ(read, entry->move) << fen << " " << form;
            }
            behind.Set(fen);
            MakeMove(behind.get(), entry->move);
            EXPECT_EQ(position, FenOf(*behind)) << fen << " " << text;
            const oracle::Board after = OracleBoard(*behind);
            const char sign = !oracle::InCheck(after, after.white_to_move) ? ' '
                              : oracle::LegalMoves(after).empty()          ? '#'
                                                                           : '+';
            EXPECT_EQ(text.find_first_of("+#") == std::string::npos ? ' ' : text.back(), sign) << fen << " " << text;
            written.insert(coordinates);
        }
        EXPECT_EQ(written, expected) << fen;
    }
}

}  // namespace
}  // namespace vrel
