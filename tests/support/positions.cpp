#include "support/positions.h"

#include <fstream>
#include <random>

#include "support/oracle.h"

namespace vrel {
namespace {

constexpr int GAME_PLIES = 160;

using Random = std::mt19937;

size_t Below(Random* random, size_t bound) { return static_cast<size_t>((*random)()) % bound; }

oracle::Move ChooseMove(const oracle::Board& board, std::vector<oracle::Move> moves, bool greedy, Random* random) {
    std::vector<oracle::Move> captures;
    for (const oracle::Move& move : moves)
        if (board.squares[static_cast<size_t>(move.to)] != '.')
            captures.push_back(move);
    if (greedy && !captures.empty() && Below(random, 3) == 0)
        moves = captures;
    return moves[Below(random, moves.size())];
}

}  // namespace

std::vector<std::string> ReadPositions(const std::string& name) {
    std::vector<std::string> positions;
    std::ifstream in(TEST_DATA "/" + name);
    for (std::string line; std::getline(in, line);)
        if (line[0] != '#')
            positions.push_back(line.substr(0, line.find("  #")));
    return positions;
}

std::vector<std::string> RandomPositions(size_t count, uint32_t seed) {
    const std::vector<std::string> tricky = ReadPositions("positions.txt");
    Random random(seed);
    std::vector<std::string> positions;
    while (positions.size() < count) {
        // Every second game begins in the start position.
        oracle::Board board = oracle::ReadFen(tricky[Below(&random, 2) == 0 ? 0 : Below(&random, tricky.size())]);
        const bool greedy = Below(&random, 2) == 0;
        for (int ply = 0; ply < GAME_PLIES; ++ply) {
            const std::vector<oracle::Move> moves = oracle::LegalMoves(board);
            if (moves.empty() || positions.size() == count)
                break;
            board = oracle::AfterMove(board, ChooseMove(board, moves, greedy, &random));
            if (Below(&random, 4) == 0)
                positions.push_back(oracle::WriteFen(board));
        }
    }
    return positions;
}

std::string RandomSetup(uint32_t seed) {
    Random random(seed);
    oracle::Board board;
    const auto at = [&](size_t sq) -> char& { return board.squares[sq]; };
    for (size_t pieces = Below(&random, 30); pieces > 0; --pieces) {
        const char piece = "PPPNBRQpppnbrq"[Below(&random, 14)];
        at(piece == 'P' || piece == 'p' ? 8 + Below(&random, 48) : Below(&random, 64)) = piece;
    }
    for (const char king : {'K', 'k'}) {
        size_t sq = Below(&random, 64);
        while (at(sq) != '.')
            sq = Below(&random, 64);
        at(sq) = king;
    }
    board.white_to_move = Below(&random, 2) == 0;
    constexpr struct {
        char right, king, rook;
        size_t king_sq, rook_sq;
    } kRights[] = {{'K', 'K', 'R', 4, 7}, {'Q', 'K', 'R', 4, 0}, {'k', 'k', 'r', 60, 63}, {'q', 'k', 'r', 60, 56}};
    for (const auto& row : kRights)
        if (at(row.king_sq) == row.king && at(row.rook_sq) == row.rook)
            board.rights += row.right;
    // A double step that may have been the last move.
    const size_t file = Below(&random, 8);
    const size_t passed = (board.white_to_move ? 40 : 16) + file;
    const size_t origin = (board.white_to_move ? 48 : 8) + file;
    const size_t pawn = (board.white_to_move ? 32 : 24) + file;
    if (at(pawn) == (board.white_to_move ? 'p' : 'P') && at(passed) == '.' && at(origin) == '.')
        board.en_passant = static_cast<int>(passed);
    return oracle::WriteFen(board);
}

std::string AnySetup(uint32_t seed) {
    Random random(seed);
    oracle::Board board;
    const size_t density = 1 + Below(&random, 8);
    for (char& square : board.squares)
        if (Below(&random, density) == 0)
            square = "PNBRQKpnbrqk"[Below(&random, 12)];
    board.white_to_move = Below(&random, 2) == 0;
    for (const char right : {'K', 'Q', 'k', 'q'})
        if (Below(&random, 2) == 0)
            board.rights += right;
    board.en_passant = static_cast<int>(Below(&random, 64));
    return oracle::WriteFen(board);
}

std::vector<std::string> ManyPositions(size_t games, size_t setups) {
    std::vector<std::string> positions = ReadPositions("positions.txt");
    for (const std::string& fen : RandomPositions(games, 20240229))
        positions.push_back(fen);
    for (uint32_t seed = 0; seed < setups; ++seed)
        positions.push_back(RandomSetup(seed));
    return positions;
}

}  // namespace vrel
