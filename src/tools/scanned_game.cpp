#include "tools/scanned_game.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

#include "board/attacks.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/position.h"
#include "board/search_thread.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "interface/pgn_text.h"
#include "tools/expected_result.h"

namespace vrel {

namespace {

constexpr int NO_SCORE_SHOWN = -9999;  // lower ones stand for no score

// A doubtful move: far from both ends of the game, where the scores around it are those of a game still open.
constexpr int OPENING_MOVES = 5;
constexpr int LAST_MOVES = 5;
constexpr int EVEN_SCORE = 149;
constexpr int OPEN_SCORE = 999;
constexpr int NEAR_RISE = 40;
constexpr int FAR_RISE = 50;

// Positions to learn from: neither opening nor endless endgame, undecided, and no shuffling.
constexpr int FIRST_TARGET = 20;
constexpr int LAST_TARGET = 250;
constexpr int QUIET_PLIES = 20;
constexpr int UNDECIDED_SCORE = 599;
constexpr double RESULT_SHARE = 0.75;

constexpr int LAST_POSITION = 200;
constexpr int DECIDED_SCORE = 500;
constexpr int ANY_SCORE = 32768;

bool Within(int score, int limit) { return score >= -limit && score <= limit; }

bool SideInCheck(const Position& pos) { return SqAtakd(pos, KingSquare(pos, pos.stm), pos.stm ^ 1) != 0; }

// Reads a move and leaves its text as the reader has brought it into shape.
bool ReadMove(ScannedMove* entry, Move* move) {
    MoveAsRead read{};
    const bool valid = ReadMoveText(entry->text.data(), move, &read);
    std::copy_n(read.begin(), entry->text.size() - 1, entry->text.begin());
    return valid;
}

void AddPadded(std::string* out, std::string_view text, size_t width) {
    out->append(width - std::min(width, text.size()), ' ').append(text);
}

void AddPosition(std::string* out, const Position& pos) {
    char epd[EPD_TEXT];
    MakeEPD(pos, epd);
    out->append(epd);
}

// Centipawns as pawns with two places.
std::string PawnsText(int score) {
    const int size = std::abs(score);
    std::string text = score < 0 ? "-" : "";
    text.append(std::to_string(size / 100));
    text.append(size % 100 < 10 ? ".0" : ".").append(std::to_string(size % 100));
    return text;
}

bool WriteListedMove(std::string* out, const ScannedGame& game, int i, const Position& pos) {
    if (game.side(i) == WHITE)
        AddPadded(out, std::to_string(game.plies(i) / 2 + 1) + ". ", 5);
    else
        out->append(5, ' ');
    const std::string_view text = game.moves[i].text.data();
    out->append(1, ' ').append(text).append(6 - std::min<size_t>(6, text.size()), ' ').append("  {");
    if (game.score(i) >= NO_SCORE_SHOWN)
        AddPadded(out, PawnsText(game.side(i) == BLACK ? -game.score(i) : game.score(i)), 6);
    if (IsDoubtful(game, i)) {
        out->append(" ? ");
        AddPosition(out, pos);
    }
    out->append("}\n");
    return false;
}

// What the game brought the side to move.
double ResultFor(int side, int winner) {
    if (winner == NOBODY_WON)
        return 0.5;
    return winner == side ? 1.0 : 0.0;
}

// A position before the move that was played, which takes the place of the best one; further operations may follow.
void WriteLearning(std::string* out, const ScannedGame& game, int i, const Position& pos) {
    AddPosition(out, pos);
    out->append(" bm ").append(game.moves[i].text.data());
    out->append("; ce ").append(std::to_string(game.score(i))).append(";");
}

bool WriteTarget(std::string* out, const ScannedGame& game, int i, const Position& pos) {
    const int score = game.score(i);
    if (i < FIRST_TARGET || i > LAST_TARGET || pos.fifty > QUIET_PLIES || !Within(score, UNDECIDED_SCORE))
        return false;
    const double result = ResultFor(game.side(i), game.winner);
    const double expected = ExpectedResult(score);
    // The engine's view and the result disagree outright: nothing to learn from.
    if (std::fabs(result - expected) >= 0.5 || SideInCheck(pos))
        return false;
    WriteLearning(out, game, i, pos);
    const double target = RESULT_SHARE * result + (1 - RESULT_SHARE) * expected;
    std::array<char, 16> text;
    const auto end = std::to_chars(text.begin(), text.end(), target, std::chars_format::fixed, 3).ptr;
    out->append(" tune ").append(text.begin(), end).append(";\n");
    return true;
}

bool WritePosition(std::string* out, const ScannedGame& game, int i, const Position& pos) {
    if (i > LAST_POSITION || SideInCheck(pos))
        return false;
    WriteLearning(out, game, i, pos);
    out->append("\n");
    return true;
}

constexpr ScanKind kinds[] = {
    {"-scan_pgn1", "FILE\tlist the games of a PGN file with their doubtful moves, in tmp.pgn", "tmp.pgn",
     WriteListedMove, true, ANY_SCORE, 0},
    {"-scan_pgn2", "FILE\twrite training positions from a PGN file, in tmp.epd", "tmp.epd", WriteTarget, false,
     ANY_SCORE, 1},
    {"-scan_pgn3", "FILE\tthe same without results", "tmp.epd", WritePosition, false, DECIDED_SCORE, 0},
};

}  // namespace

const std::span<const ScanKind> scan_kinds = kinds;

bool IsDoubtful(const ScannedGame& game, int i) {
    if (i <= OPENING_MOVES || i >= game.count - LAST_MOVES || game.winner == game.side(i))
        return false;
    if (!Within(game.score(i), EVEN_SCORE))
        return false;
    for (const int near : {i - 3, i - 1, i + 1, i + 3})
        if (!Within(game.score(near), OPEN_SCORE))
            return false;
    return game.score(i + 1) - game.score(i - 1) > NEAR_RISE && game.score(i + 3) - game.score(i - 3) > FAR_RISE;
}

int ProcessGame(ScannedMove* moves, int count, int kind, int winner, std::string* text) {
    assert(kind >= 1 && kind <= ScanKinds());
    const ScanKind& row = scan_kinds[kind - 1];
    Position* pos = GamePosition();
    PBlock.noise = SILENT;
    PBlock.use_hash = 0;
    PBlock.max_depth = row.max_depth;
    int positions = 0;
    const ScannedGame game = {moves, count, winner, pos->stm};
    for (int i = 0; i < count; ++i) {
        Move move = NO_MOVE;
        if (!ReadMove(&moves[i], &move))
            break;
        positions += row.write(text, game, i, *pos);
        PlayGameMove(pos, move);
        if (!Within(moves[i].score, row.decided_score))
            break;
    }
    if (row.lists_games)
        *text += '\n';
    return positions;
}

}  // namespace vrel
