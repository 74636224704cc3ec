#include "support/oracle.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

namespace vrel::oracle {
namespace {

struct Step {
    int file;
    int rank;
};
using Steps = std::vector<Step>;

const Steps STRAIGHT = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
const Steps DIAGONAL = {{1, 1}, {1, -1}, {-1, -1}, {-1, 1}};
const Steps AROUND = {{0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}};
const Steps JUMPS = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};

constexpr const char* RIGHTS = "KQkq";

int File(int square) { return square % 8; }
int Rank(int square) { return square / 8; }
char& At(Board* board, int square) { return board->squares[static_cast<size_t>(square)]; }
char At(const Board& board, int square) { return board.squares[static_cast<size_t>(square)]; }
char Lower(char c) { return static_cast<char>(std::tolower(c)); }
char Of(bool white, char kind) { return white ? static_cast<char>(std::toupper(kind)) : kind; }
bool Belongs(char piece, bool white) { return piece != '.' && IsWhite(piece) == white; }

// The square a step away, NOWHERE beyond the edge.
int Go(int square, Step step) {
    const int file = File(square) + step.file;
    const int rank = Rank(square) + step.rank;
    return file < 0 || file > 7 || rank < 0 || rank > 7 ? NOWHERE : rank * 8 + file;
}

// Whether a step leads to a piece of this letter, or a line to one of these letters first.
bool StepsMeet(const Board& board, int square, char piece, const Steps& steps) {
    return std::any_of(steps.begin(), steps.end(), [&](Step step) {
        const int to = Go(square, step);
        return to != NOWHERE && At(board, to) == piece;
    });
}
bool LinesMeet(const Board& board, int square, char slider, char queen, const Steps& steps) {
    return std::any_of(steps.begin(), steps.end(), [&](Step step) {
        int to = Go(square, step);
        while (to != NOWHERE && At(board, to) == '.')
            to = Go(to, step);
        return to != NOWHERE && (At(board, to) == slider || At(board, to) == queen);
    });
}

void AddPawnMove(int from, int to, bool promotes, std::vector<Move>* moves) {
    for (const char kind : std::string(promotes ? "qnbr" : "-"))
        moves->push_back({from, to, promotes ? kind : '\0'});
}

void AddPawnMoves(const Board& board, int from, std::vector<Move>* moves) {
    const bool white = board.white_to_move;
    const int forward = white ? 1 : -1;
    const int front = Go(from, {0, forward});
    if (front == NOWHERE)
        return;
    const bool promotes = Rank(front) == (white ? 7 : 0);
    if (At(board, front) == '.') {
        AddPawnMove(from, front, promotes, moves);
        if (Rank(from) == (white ? 1 : 6) && At(board, Go(front, {0, forward})) == '.')
            moves->push_back({from, Go(front, {0, forward}), 0});
    }
    for (const int side : {-1, 1}) {
        const int to = Go(from, {side, forward});
        if (to == NOWHERE)
            continue;
        const bool passed = to == board.en_passant && Rank(to) == (white ? 5 : 2) && At(board, to) == '.';
        if (passed || Belongs(At(board, to), !white))
            AddPawnMove(from, to, promotes, moves);
    }
}

void AddSteps(const Board& board, int from, bool slides, const Steps& steps, std::vector<Move>* moves) {
    for (const Step step : steps)
        for (int to = Go(from, step); to != NOWHERE && !Belongs(At(board, to), board.white_to_move);
             to = slides && At(board, to) == '.' ? Go(to, step) : NOWHERE)
            moves->push_back({from, to, 0});
}

void AddCastling(const Board& board, std::vector<Move>* moves) {
    const bool white = board.white_to_move;
    const int king = white ? 4 : 60;
    const auto row = [&](int first, size_t length) { return board.squares.substr(static_cast<size_t>(first), length); };
    const auto may = [&](char right) { return board.rights.find(Of(white, right)) != std::string::npos; };
    const std::string k(1, Of(white, 'k')), r(1, Of(white, 'r'));
    if (may('k') && row(king, 4) == k + ".." + r)
        moves->push_back({king, king + 2, 0});
    if (may('q') && row(king - 4, 5) == r + "..." + k)
        moves->push_back({king, king - 2, 0});
}

bool IsCastling(const Board& board, const Move& move) {
    return Lower(At(board, move.from)) == 'k' && std::abs(move.to - move.from) == 2;
}

std::string SquareText(int square) {
    return {static_cast<char>('a' + File(square)), static_cast<char>('1' + Rank(square))};
}

// Any move from or to a corner or a king's first square ends the rights that hang on it.
void LoseRights(int square, std::string* rights) {
    constexpr int kRooks[] = {7, 0, 63, 56};
    std::erase_if(*rights, [&](char right) {
        const size_t i = std::string(RIGHTS).find(right);
        return i < 4 && (square == kRooks[i] || square == (i < 2 ? 4 : 60));
    });
}

}  // namespace

bool IsWhite(char piece) { return piece >= 'A' && piece <= 'Z'; }

Board ReadFen(const std::string& fen) {
    Board board;
    std::istringstream in(fen);
    std::string placement, side, rights, passed;
    in >> placement >> side >> rights >> passed;
    int square = 56;
    for (const char c : placement) {
        if (c == '/')
            square -= 16;
        else if (std::isdigit(c))
            square += c - '0';
        else
            At(&board, square++) = c;
    }
    board.white_to_move = side == "w";
    board.rights = rights == "-" ? "" : rights;
    if (passed != "-")
        board.en_passant = (passed[1] - '1') * 8 + (passed[0] - 'a');
    return board;
}

std::string WriteFen(const Board& board) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        std::string row = board.squares.substr(static_cast<size_t>(rank) * 8, 8);
        for (size_t gap = 8; gap > 0; --gap)
            for (size_t at; (at = row.find(std::string(gap, '.'))) != std::string::npos;)
                row.replace(at, gap, std::to_string(gap));
        text += row + (rank > 0 ? "/" : "");
    }
    return text + (board.white_to_move ? " w " : " b ") + (board.rights.empty() ? "-" : board.rights) + " " +
           (board.en_passant == NOWHERE ? "-" : SquareText(board.en_passant));
}

bool Attacked(const Board& board, int square, bool by_white) {
    const int back = by_white ? -1 : 1;
    const char queen = Of(by_white, 'q');
    return StepsMeet(board, square, Of(by_white, 'p'), {{-1, back}, {1, back}}) ||
           StepsMeet(board, square, Of(by_white, 'n'), JUMPS) || StepsMeet(board, square, Of(by_white, 'k'), AROUND) ||
           LinesMeet(board, square, Of(by_white, 'b'), queen, DIAGONAL) ||
           LinesMeet(board, square, Of(by_white, 'r'), queen, STRAIGHT);
}

bool InCheck(const Board& board, bool white) {
    for (int square = 0; square < 64; ++square)
        if (At(board, square) == Of(white, 'k') && Attacked(board, square, !white))
            return true;
    return false;
}

std::vector<Move> PseudoLegalMoves(const Board& board) {
    std::vector<Move> moves;
    for (int from = 0; from < 64; ++from) {
        if (!Belongs(At(board, from), board.white_to_move))
            continue;
        const char kind = Lower(At(board, from));
        if (kind == 'p')
            AddPawnMoves(board, from, &moves);
        else
            AddSteps(board, from, kind != 'n' && kind != 'k',
                     kind == 'n'   ? JUMPS
                     : kind == 'b' ? DIAGONAL
                     : kind == 'r' ? STRAIGHT
                                   : AROUND,
                     &moves);
    }
    AddCastling(board, &moves);
    return moves;
}

Board AfterMove(const Board& board, const Move& move) {
    Board next = board;
    const char piece = At(board, move.from);
    const bool white = board.white_to_move;
    const bool pawn = Lower(piece) == 'p';
    const int forward = white ? 8 : -8;
    next.quiet_plies = pawn || At(board, move.to) != '.' ? 0 : board.quiet_plies + 1;
    At(&next, move.from) = '.';
    At(&next, move.to) = move.promotion != 0 ? Of(white, move.promotion) : piece;
    next.en_passant = pawn && move.to - move.from == 2 * forward ? move.from + forward : NOWHERE;
    if (pawn && move.to == board.en_passant && File(move.to) != File(move.from))
        At(&next, move.to - forward) = '.';
    if (IsCastling(board, move)) {
        const bool is_short = move.to > move.from;
        std::swap(At(&next, is_short ? move.from + 3 : move.from - 4), At(&next, (move.from + move.to) / 2));
    }
    LoseRights(move.from, &next.rights);
    LoseRights(move.to, &next.rights);
    next.white_to_move = !white;
    return next;
}

bool IsLegal(const Board& board, const Move& move) {
    const bool white = board.white_to_move;
    if (IsCastling(board, move) &&
        (Attacked(board, move.from, !white) || Attacked(board, (move.from + move.to) / 2, !white)))
        return false;
    return !InCheck(AfterMove(board, move), white);
}

std::vector<Move> LegalMoves(const Board& board) {
    std::vector<Move> moves = PseudoLegalMoves(board);
    std::erase_if(moves, [&](const Move& move) { return !IsLegal(board, move); });
    return moves;
}

std::string MoveText(const Move& move) {
    return SquareText(move.from) + SquareText(move.to) +
           (move.promotion != 0 ? std::string(1, move.promotion) : std::string());
}

Board Mirrored(const Board& board) {
    Board mirror = board;
    for (int square = 0; square < 64; ++square) {
        const char piece = At(board, square ^ 56);
        At(&mirror, square) = IsWhite(piece) ? Lower(piece) : static_cast<char>(std::toupper(piece));
    }
    mirror.white_to_move = !board.white_to_move;
    mirror.rights.clear();
    for (const char right : std::string("kqKQ"))
        if (board.rights.find(right) != std::string::npos)
            mirror.rights += IsWhite(right) ? Lower(right) : static_cast<char>(std::toupper(right));
    mirror.en_passant = board.en_passant == NOWHERE ? NOWHERE : board.en_passant ^ 56;
    return mirror;
}

}  // namespace vrel::oracle
