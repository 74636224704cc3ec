#include "support/rules_text.h"

#include <sstream>

#include "board/exchange.h"
#include "board/legality.h"
#include "board/move_kind.h"
#include "interface/move_text.h"
#include "interface/pblock.h"

namespace vrel {
namespace {

std::string OrDash(const MoveText& text) { return text[0] == '\0' ? "-" : text.data(); }

std::string MoveLine(const Position& pos, const MoveEntry& entry) {
    const int from = FromSquare(entry.move);
    const int to = ToSquare(entry.move);
    MoveText move, coord, san, file_form, rank_form;
    MoveToStr(entry.move, move.data());
    GenMoveStrings(pos, entry.move, coord.data(), san.data(), file_form.data(), rank_form.data());
    std::ostringstream line;
    line << move.data() << ' ' << MoveIsLegal(pos, pos.stm, entry.move) << ' ' << MoveGivesCheck(pos, pos.stm, entry)
         << ' ' << swapoff1(pos, pos.stm, from, to, Occupied(pos)) << ' ' << MoveIsSafe(pos, entry) << ' '
         << MoveIsThreat(pos, entry) << ' ' << MoveIsCastle(entry) << ' ' << MoveIsPawnPush(pos, pos.stm, entry) << ' '
         << OrDash(san) << ' ' << OrDash(file_form) << ' ' << OrDash(rank_form);
    return line.str();
}

}  // namespace

std::string RulesText(const std::string& fen) {
    PBlock.mode = MODE_UCI;
    const TestPosition pos(fen);
    std::string text = "fen " + FenOf(*pos) + "\n";
    for (const MoveEntry& entry : AllMoves(pos.get()))
        text += MoveLine(*pos, entry) + "\n";
    return text;
}

}  // namespace vrel
