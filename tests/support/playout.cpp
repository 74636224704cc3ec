#include "support/playout.h"

#include <algorithm>
#include <iterator>

#include "support/positions.h"

namespace vrel {
namespace {

constexpr int GAME_PLIES = 160;

// Sometimes only the captures, so that the board empties.
void KeepCaptures(const oracle::Board& board, std::vector<oracle::Move>* moves) {
    std::vector<oracle::Move> captures;
    std::copy_if(moves->begin(), moves->end(), std::back_inserter(captures),
                 [&](const oracle::Move& move) { return board.squares[static_cast<size_t>(move.to)] != '.'; });
    if (!captures.empty())
        *moves = captures;
}

void PlaceKing(std::mt19937* random, char king, oracle::Board* board) {
    size_t square = RandomBelow(random, 64);
    while (board->squares[square] != '.')
        square = RandomBelow(random, 64);
    board->squares[square] = king;
}

}  // namespace

size_t RandomBelow(std::mt19937* random, size_t bound) { return static_cast<size_t>((*random)()) % bound; }

std::vector<oracle::Board> RandomGame(const std::string& fen, uint32_t seed, int plies) {
    std::mt19937 random(seed);
    std::vector<oracle::Board> boards;
    oracle::Board board;
    if (!oracle::ReadFen(fen, &board))
        return boards;
    const bool greedy = RandomBelow(&random, 2) == 0;
    for (int ply = 0; ply < plies; ++ply) {
        std::vector<oracle::Move> moves = oracle::LegalMoves(board);
        if (moves.empty())
            break;
        if (greedy && RandomBelow(&random, 3) == 0)
            KeepCaptures(board, &moves);
        board = oracle::AfterMove(board, moves[RandomBelow(&random, moves.size())]);
        boards.push_back(board);
    }
    return boards;
}

std::vector<std::string> RandomPositions(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<std::string> positions;
    while (positions.size() < count) {
        // Every second game begins in the start position.
        const size_t choice = RandomBelow(&random, 2) == 0 ? 0 : RandomBelow(&random, std::size(kTrickyPositions));
        const auto game_seed = static_cast<uint32_t>(random());
        for (const oracle::Board& board : RandomGame(kTrickyPositions[choice].fen, game_seed, GAME_PLIES)) {
            if (positions.size() < count && RandomBelow(&random, 4) == 0)
                positions.push_back(oracle::WriteFen(board));
        }
    }
    return positions;
}

std::string RandomSetup(uint32_t seed) {
    std::mt19937 random(seed);
    oracle::Board board;
    const size_t pieces = RandomBelow(&random, 30);
    for (size_t i = 0; i < pieces; ++i) {
        const char piece = "PPPNBRQpppnbrq"[RandomBelow(&random, 14)];
        const bool pawn = piece == 'P' || piece == 'p';
        board.squares[pawn ? 8 + RandomBelow(&random, 48) : RandomBelow(&random, 64)] = piece;
    }
    PlaceKing(&random, 'K', &board);
    PlaceKing(&random, 'k', &board);
    board.white_to_move = RandomBelow(&random, 2) == 0;

    constexpr struct {
        size_t king, rook;
        char king_letter, rook_letter;
    } kRights[4] = {{4, 7, 'K', 'R'}, {4, 0, 'K', 'R'}, {60, 63, 'k', 'r'}, {60, 56, 'k', 'r'}};
    for (size_t i = 0; i < 4; ++i)
        board.may_castle[i] = board.squares[kRights[i].king] == kRights[i].king_letter &&
                              board.squares[kRights[i].rook] == kRights[i].rook_letter;

    // A double step that may have been the last move.
    const size_t rank = board.white_to_move ? 4 : 3;
    const char pawn = board.white_to_move ? 'p' : 'P';
    const size_t file = RandomBelow(&random, 8);
    const size_t passed = (board.white_to_move ? 40 : 16) + file;
    const size_t origin = (board.white_to_move ? 48 : 8) + file;
    if (board.squares[rank * 8 + file] == pawn && board.squares[passed] == '.' && board.squares[origin] == '.')
        board.en_passant = static_cast<int>(passed);
    return oracle::WriteFen(board);
}

std::vector<std::string> ManyPositions(size_t games, size_t setups) {
    std::vector<std::string> positions = RandomPositions(games, 20240229);
    for (const NamedPosition& tricky : kTrickyPositions)
        positions.emplace_back(tricky.fen);
    for (uint32_t seed = 0; seed < setups; ++seed)
        positions.push_back(RandomSetup(seed));
    return positions;
}

}  // namespace vrel
