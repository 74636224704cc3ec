#include "tools/scanned_game.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>

#include "board/attacks.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/position.h"
#include "board/search_thread.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
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

struct Game {
    const ScannedMove* moves;
    int count;
    int winner;

    int score(int i) const { return moves[i].score; }
};

bool Within(int score, int limit) { return score >= -limit && score <= limit; }

bool SideInCheck(const Position& pos) { return SqAtakd(pos, KingSquare(pos, pos.stm), pos.stm ^ 1) != 0; }

// Reads a move and leaves its text as the reader has brought it into shape.
bool ReadMove(ScannedMove* entry, Move* move) {
    MoveText text{};  // a promotion gets a character longer
    std::copy(entry->text.begin(), entry->text.end(), text.begin());
    const bool valid = IsValidMove(text.data(), move) == 1;
    std::copy_n(text.begin(), entry->text.size() - 1, entry->text.begin());
    return valid;
}

// The opponent's estimate rose across this move and stayed up, though the mover saw nothing.
bool IsDoubtful(const Game& game, int i) {
    if (i <= OPENING_MOVES || i >= game.count - LAST_MOVES || game.winner == (i & 1))
        return false;
    if (!Within(game.score(i), EVEN_SCORE))
        return false;
    for (const int near : {i - 3, i - 1, i + 1, i + 3})
        if (!Within(game.score(near), OPEN_SCORE))
            return false;
    return game.score(i + 1) - game.score(i - 1) > NEAR_RISE && game.score(i + 3) - game.score(i - 3) > FAR_RISE;
}

std::string ScoreText(const Game& game, int i, const Position& pos) {
    const int score = game.score(i);
    char text[16] = "";
    if (score >= NO_SCORE_SHOWN)
        std::snprintf(text, sizeof text, "%6.2f", (i & 1 ? -score : score) / 100.0);
    std::string result = text;
    if (IsDoubtful(game, i)) {
        char epd[EPD_TEXT];
        MakeEPD(pos, epd);
        result += std::string(" ? ") + epd;
    }
    return result;
}

void WriteListedMove(File* out, const Game& game, int i, const Position& pos) {
    char prefix[16] = "     ";
    if (!(i & 1))
        std::snprintf(prefix, sizeof prefix, "%3d. ", i / 2 + 1);
    out->Print("%s %-6s  {%s}\n", prefix, game.moves[i].text.data(), ScoreText(game, i, pos).c_str());
}

// What the game brought the side to move.
double ResultFor(int side, int winner) {
    if (winner == NOBODY_WON)
        return 0.5;
    return winner == side ? 1.0 : 0.0;
}

bool WriteTarget(File* out, const Game& game, int i, const Position& pos) {
    const int score = game.score(i);
    if (i < FIRST_TARGET || i > LAST_TARGET || pos.fifty > QUIET_PLIES || !Within(score, UNDECIDED_SCORE))
        return false;
    const double result = ResultFor(i & 1, game.winner);
    const double expected = ExpectedResult(score);
    // The engine's view and the result disagree outright: nothing to learn from.
    if (std::fabs(result - expected) >= 0.5 || SideInCheck(pos))
        return false;
    char epd[EPD_TEXT];
    MakeEPD(pos, epd);
    out->Print("%s bm %s; ce %d; tune %0.3f;\n", epd, game.moves[i].text.data(), score,
               RESULT_SHARE * result + (1 - RESULT_SHARE) * expected);
    return true;
}

bool WritePosition(File* out, const Game& game, int i, const Position& pos) {
    if (i > LAST_POSITION || SideInCheck(pos))
        return false;
    char epd[EPD_TEXT];
    MakeEPD(pos, epd);
    out->Print("%s bm %s; ce %d;\n", epd, game.moves[i].text.data(), game.score(i));
    return true;
}

}  // namespace

void ProcessGame(File* out, ScannedMove* moves, int count, int kind, int winner, int* written) {
    Position* pos = GamePosition();
    SetPosition(pos, fen_opn);
    PBlock.noise = SILENT;
    PBlock.use_hash = 0;
    PBlock.max_depth = kind == SCAN_TARGETS ? 1 : 0;
    *written = 0;
    const Game game = {moves, count, winner};
    for (int i = 0; i < count; ++i) {
        Move move = NO_MOVE;
        if (!ReadMove(&moves[i], &move))
            break;
        if (kind == SCAN_LISTING)
            WriteListedMove(out, game, i, *pos);
        else if (kind == SCAN_TARGETS)
            *written += WriteTarget(out, game, i, *pos);
        else
            *written += WritePosition(out, game, i, *pos);
        PlayGameMove(pos, move);
        if (kind == SCAN_POSITIONS && !Within(moves[i].score, DECIDED_SCORE))
            break;
    }
    if (kind == SCAN_LISTING)
        out->WriteText("\n");
}

}  // namespace vrel
