#include "support/oracle.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace vrel::oracle {
namespace {

struct Step {
    int file;
    int rank;
};

constexpr std::array<Step, 8> KING_STEPS = {{{0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}}};
constexpr std::array<Step, 4> STRAIGHT_STEPS = {{{0, 1}, {1, 0}, {0, -1}, {-1, 0}}};
constexpr std::array<Step, 4> DIAGONAL_STEPS = {{{1, 1}, {1, -1}, {-1, -1}, {-1, 1}}};
constexpr std::array<Step, 8> KNIGHT_STEPS = {{{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}}};

int File(int square) { return square % 8; }
int Rank(int square) { return square / 8; }

// The square a step away, NOWHERE beyond the edge.
int Go(int square, Step step) {
    const int file = File(square) + step.file;
    const int rank = Rank(square) + step.rank;
    if (file < 0 || file > 7 || rank < 0 || rank > 7)
        return NOWHERE;
    return rank * 8 + file;
}

char At(const Board& board, int square) { return board.squares[static_cast<size_t>(square)]; }
void Put(Board* board, int square, char piece) { board->squares[static_cast<size_t>(square)] = piece; }

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
char Upper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

bool Belongs(char piece, bool white) { return white ? IsWhite(piece) : IsBlack(piece); }
char Of(bool white, char kind) { return white ? Upper(kind) : Lower(kind); }

template <size_t N>
bool StepperAttacks(const Board& board, int square, char piece, const std::array<Step, N>& steps) {
    return std::any_of(steps.begin(), steps.end(), [&](Step step) {
        const int to = Go(square, step);
        return to != NOWHERE && At(board, to) == piece;
    });
}

// The first piece met on each line is the slider or a queen.
template <size_t N>
bool SliderAttacks(const Board& board, int square, char slider, char queen, const std::array<Step, N>& steps) {
    for (const Step step : steps) {
        int to = Go(square, step);
        while (to != NOWHERE && At(board, to) == '.')
            to = Go(to, step);
        if (to != NOWHERE && (At(board, to) == slider || At(board, to) == queen))
            return true;
    }
    return false;
}

bool PawnAttacks(const Board& board, int square, bool by_white) {
    const int back = by_white ? -1 : 1;
    for (const int side : {-1, 1}) {
        const int from = Go(square, {side, back});
        if (from != NOWHERE && At(board, from) == Of(by_white, 'p'))
            return true;
    }
    return false;
}

void AddPawnMove(int from, int to, bool white, std::vector<Move>* moves) {
    if (Rank(to) != (white ? 7 : 0)) {
        moves->push_back({from, to, 0});
        return;
    }
    for (const char kind : {'q', 'n', 'b', 'r'})
        moves->push_back({from, to, kind});
}

void AddPawnMoves(const Board& board, int from, std::vector<Move>* moves) {
    const bool white = board.white_to_move;
    const int forward = white ? 1 : -1;
    const int front = Go(from, {0, forward});
    if (front != NOWHERE && At(board, front) == '.') {
        AddPawnMove(from, front, white, moves);
        const int second = Go(front, {0, forward});
        if (Rank(from) == (white ? 1 : 6) && At(board, second) == '.')
            moves->push_back({from, second, 0});
    }
    for (const int side : {-1, 1}) {
        const int to = Go(from, {side, forward});
        if (to == NOWHERE)
            continue;
        if (Belongs(At(board, to), !white))
            AddPawnMove(from, to, white, moves);
        else if (to == board.en_passant && Rank(to) == (white ? 5 : 2) && At(board, to) == '.')
            moves->push_back({from, to, 0});
    }
}

template <size_t N>
void AddSteps(const Board& board, int from, bool slides, const std::array<Step, N>& steps, std::vector<Move>* moves) {
    for (const Step step : steps) {
        for (int to = Go(from, step); to != NOWHERE; to = Go(to, step)) {
            if (Belongs(At(board, to), board.white_to_move))
                break;
            moves->push_back({from, to, 0});
            if (!slides || At(board, to) != '.')
                break;
        }
    }
}

void AddCastling(const Board& board, std::vector<Move>* moves) {
    const bool white = board.white_to_move;
    const int king = white ? 4 : 60;
    if (At(board, king) != Of(white, 'k'))
        return;
    const auto empty = [&](int first, int last) {
        for (int square = first; square <= last; ++square)
            if (At(board, square) != '.')
                return false;
        return true;
    };
    const char rook = Of(white, 'r');
    if (board.may_castle[white ? 0 : 2] && At(board, king + 3) == rook && empty(king + 1, king + 2))
        moves->push_back({king, king + 2, 0});
    if (board.may_castle[white ? 1 : 3] && At(board, king - 4) == rook && empty(king - 3, king - 1))
        moves->push_back({king, king - 2, 0});
}

bool IsCastling(const Board& board, const Move& move) {
    return Lower(At(board, move.from)) == 'k' && std::abs(move.to - move.from) == 2;
}

// Any move from or to a corner or a king's first square ends the rights that hang on it.
void LoseRights(int square, std::array<bool, 4>* rights) {
    switch (square) {
        case 7:
            (*rights)[0] = false;
            break;
        case 0:
            (*rights)[1] = false;
            break;
        case 63:
            (*rights)[2] = false;
            break;
        case 56:
            (*rights)[3] = false;
            break;
        case 4:
            (*rights)[0] = (*rights)[1] = false;
            break;
        case 60:
            (*rights)[2] = (*rights)[3] = false;
            break;
        default:
            break;
    }
}

bool ReadPlacement(const std::string& text, Board* board) {
    int rank = 7;
    int file = 0;
    for (const char c : text) {
        if (c == '/') {
            if (file != 8 || rank == 0)
                return false;
            --rank;
            file = 0;
        } else if (c >= '1' && c <= '8') {
            file += c - '0';
        } else if (std::string("PNBRQKpnbrqk").find(c) != std::string::npos && file < 8) {
            Put(board, rank * 8 + file, c);
            ++file;
        } else {
            return false;
        }
        if (file > 8)
            return false;
    }
    return rank == 0 && file == 8;
}

bool ReadRights(const std::string& text, Board* board) {
    if (text == "-")
        return true;
    for (const char c : text) {
        const size_t right = std::string("KQkq").find(c);
        if (right == std::string::npos)
            return false;
        board->may_castle[right] = true;
    }
    return true;
}

bool ReadSquare(const std::string& text, int* square) {
    if (text == "-") {
        *square = NOWHERE;
        return true;
    }
    if (text.size() != 2 || text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8')
        return false;
    *square = (text[1] - '1') * 8 + (text[0] - 'a');
    return true;
}

std::string SquareText(int square) {
    return {static_cast<char>('a' + File(square)), static_cast<char>('1' + Rank(square))};
}

}  // namespace

bool IsWhite(char piece) { return piece >= 'A' && piece <= 'Z'; }
bool IsBlack(char piece) { return piece >= 'a' && piece <= 'z'; }

bool ReadFen(const std::string& fen, Board* board) {
    *board = Board();
    std::istringstream in(fen);
    std::string placement, side, rights, passed;
    if (!(in >> placement >> side >> rights >> passed) || (side != "w" && side != "b"))
        return false;
    board->white_to_move = side == "w";
    in >> board->quiet_plies;
    return ReadPlacement(placement, board) && ReadRights(rights, board) && ReadSquare(passed, &board->en_passant);
}

std::string WriteFen(const Board& board) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        int gap = 0;
        for (int file = 0; file < 8; ++file) {
            const char piece = At(board, rank * 8 + file);
            if (piece == '.') {
                ++gap;
                continue;
            }
            if (gap != 0)
                text += std::to_string(gap);
            gap = 0;
            text += piece;
        }
        if (gap != 0)
            text += std::to_string(gap);
        if (rank > 0)
            text += '/';
    }
    text += board.white_to_move ? " w " : " b ";
    std::string rights;
    for (size_t i = 0; i < 4; ++i)
        if (board.may_castle[i])
            rights += "KQkq"[i];
    text += rights.empty() ? "-" : rights;
    return text + " " + (board.en_passant == NOWHERE ? "-" : SquareText(board.en_passant));
}

bool Attacked(const Board& board, int square, bool by_white) {
    const auto piece = [&](char kind) { return Of(by_white, kind); };
    return PawnAttacks(board, square, by_white) || StepperAttacks(board, square, piece('n'), KNIGHT_STEPS) ||
           StepperAttacks(board, square, piece('k'), KING_STEPS) ||
           SliderAttacks(board, square, piece('b'), piece('q'), DIAGONAL_STEPS) ||
           SliderAttacks(board, square, piece('r'), piece('q'), STRAIGHT_STEPS);
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
        switch (Lower(At(board, from))) {
            case 'p':
                AddPawnMoves(board, from, &moves);
                break;
            case 'n':
                AddSteps(board, from, false, KNIGHT_STEPS, &moves);
                break;
            case 'b':
                AddSteps(board, from, true, DIAGONAL_STEPS, &moves);
                break;
            case 'r':
                AddSteps(board, from, true, STRAIGHT_STEPS, &moves);
                break;
            case 'q':
                AddSteps(board, from, true, KING_STEPS, &moves);
                break;
            default:
                AddSteps(board, from, false, KING_STEPS, &moves);
                break;
        }
    }
    AddCastling(board, &moves);
    return moves;
}

Board AfterMove(const Board& board, const Move& move) {
    Board next = board;
    const char piece = At(board, move.from);
    const bool white = board.white_to_move;
    const int forward = white ? 8 : -8;
    const bool quiet = Lower(piece) != 'p' && At(board, move.to) == '.';

    Put(&next, move.from, '.');
    Put(&next, move.to, move.promotion != 0 ? Of(white, move.promotion) : piece);
    next.en_passant = NOWHERE;
    if (Lower(piece) == 'p') {
        if (move.to == board.en_passant && File(move.to) != File(move.from))
            Put(&next, move.to - forward, '.');
        if (move.to - move.from == 2 * forward)
            next.en_passant = move.from + forward;
    }
    if (IsCastling(board, move)) {
        const bool is_short = move.to > move.from;
        Put(&next, is_short ? move.from + 3 : move.from - 4, '.');
        Put(&next, is_short ? move.from + 1 : move.from - 1, Of(white, 'r'));
    }
    LoseRights(move.from, &next.may_castle);
    LoseRights(move.to, &next.may_castle);
    next.quiet_plies = quiet ? board.quiet_plies + 1 : 0;
    next.white_to_move = !white;
    return next;
}

bool IsLegal(const Board& board, const Move& move) {
    const bool white = board.white_to_move;
    if (IsCastling(board, move)) {
        const int middle = (move.from + move.to) / 2;
        if (Attacked(board, move.from, !white) || Attacked(board, middle, !white))
            return false;
    }
    return !InCheck(AfterMove(board, move), white);
}

std::vector<Move> LegalMoves(const Board& board) {
    std::vector<Move> moves = PseudoLegalMoves(board);
    std::erase_if(moves, [&](const Move& move) { return !IsLegal(board, move); });
    return moves;
}

std::string MoveText(const Move& move) {
    std::string text = SquareText(move.from) + SquareText(move.to);
    if (move.promotion != 0)
        text += move.promotion;
    return text;
}

bool FindLegalMove(const Board& board, const std::string& text, Move* move) {
    for (const Move& candidate : PseudoLegalMoves(board)) {
        if (MoveText(candidate) == text && IsLegal(board, candidate)) {
            *move = candidate;
            return true;
        }
    }
    return false;
}

uint64_t CountLeaves(const Board& board, int depth) {
    const std::vector<Move> moves = LegalMoves(board);
    if (depth <= 1)
        return moves.size();
    uint64_t sum = 0;
    for (const Move& move : moves)
        sum += CountLeaves(AfterMove(board, move), depth - 1);
    return sum;
}

bool DeadByMaterial(const Board& board) {
    int minors = 0;
    for (const char piece : board.squares) {
        const char kind = Lower(piece);
        if (kind == 'n' || kind == 'b')
            ++minors;
        else if (kind != '.' && kind != 'k')
            return false;
    }
    return minors <= 1;
}

Board Mirrored(const Board& board) {
    Board mirror;
    for (int square = 0; square < 64; ++square) {
        const char piece = At(board, square ^ 56);
        Put(&mirror, square, IsWhite(piece) ? Lower(piece) : Upper(piece));
    }
    mirror.white_to_move = !board.white_to_move;
    mirror.may_castle = {board.may_castle[2], board.may_castle[3], board.may_castle[0], board.may_castle[1]};
    mirror.en_passant = board.en_passant == NOWHERE ? NOWHERE : board.en_passant ^ 56;
    mirror.quiet_plies = board.quiet_plies;
    return mirror;
}

}  // namespace vrel::oracle
