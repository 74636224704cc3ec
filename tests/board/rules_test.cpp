// What the rules and the predicates on moves say of positions, against what an independent program says of them.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "board/exchange.h"
#include "board/legality.h"
#include "board/move_kind.h"
#include "interface/move_text.h"
#include "support/engine.h"

namespace vrel {
namespace {

std::string OrDash(const MoveText& text) { return text[0] == '\0' ? "-" : text.data(); }

// Move, legal, check, exchange value, safe, threat, castling, pawn push, and the three forms of text.
std::string MoveLine(const Position& pos, const MoveEntry& entry) {
    MoveText coord, san, file_form, rank_form;
    GenMoveStrings(pos, entry.move, coord.data(), san.data(), file_form.data(), rank_form.data());
    const int from = FromSquare(entry.move);
    std::ostringstream line;
    line << oracle::MoveText(OracleMove(entry.move)) << ' ' << MoveIsLegal(pos, pos.stm, entry.move) << ' '
         << MoveGivesCheck(pos, pos.stm, entry) << ' '
         << swapoff1(pos, pos.stm, from, ToSquare(entry.move), Occupied(pos)) << ' ' << MoveIsSafe(pos, entry) << ' '
         << MoveIsThreat(pos, entry) << ' ' << MoveIsCastle(entry) << ' ' << MoveIsPawnPush(pos, pos.stm, entry) << ' '
         << OrDash(san) << ' ' << OrDash(file_form) << ' ' << OrDash(rank_form);
    return line.str();
}

TEST(Rules, EachMoveInTheOrderOfGeneration) {
    std::ifstream in(TEST_DATA "/rules.txt");
    int positions = 0;
    for (std::string line; std::getline(in, line); ++positions) {
        const TestPosition pos(line.substr(4));
        SCOPED_TRACE(line);
        for (const MoveEntry& entry : AllMoves(pos.get())) {
            std::getline(in, line);
            EXPECT_EQ(MoveLine(*pos, entry), line);
        }
        std::getline(in, line);
        EXPECT_EQ(line, "");
    }
    EXPECT_GE(positions, 80);
}

}  // namespace
}  // namespace vrel
