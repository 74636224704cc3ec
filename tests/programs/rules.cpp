// The rules of chess for programs that watch games. A line of the input is a FEN, " moves " and moves; the answer is
// the position behind them, the number of plies since the last capture or pawn move, the number of legal moves and
// whether the side to move is in check; or "illegal" and the first move that isn't possible.
#include <algorithm>
#include <iostream>
#include <sstream>

#include "support/oracle.h"

namespace {

using namespace vrel::oracle;

std::string Answer(const std::string& line) {
    const size_t at = line.find(" moves");
    Board board = ReadFen(line.substr(0, at));
    std::istringstream words(at == std::string::npos ? "" : line.substr(at + 6));
    for (std::string word; words >> word;) {
        const std::vector<Move> moves = PseudoLegalMoves(board);
        const auto named = [&](const Move& move) { return MoveText(move) == word && IsLegal(board, move); };
        const auto move = std::find_if(moves.begin(), moves.end(), named);
        if (move == moves.end())
            return "illegal " + word;
        board = AfterMove(board, *move);
    }
    return WriteFen(board) + " " + std::to_string(board.quiet_plies) + " " + std::to_string(LegalMoves(board).size()) +
           " " + std::to_string(InCheck(board, board.white_to_move));
}

}  // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);)
        std::cout << Answer(line) << std::endl;
    return 0;
}
