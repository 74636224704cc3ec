#include "tools/match_record.h"

#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstdio>

#include "interface/move_text.h"

namespace vrel {

namespace {

constexpr int FEWEST_GAMES = 200;  // up to here a rate tells nothing

const char* PlayerName(int player) { return player == 0 ? "Player1" : "Player2"; }

const char* ResultText(Winner winner) { return winner == WHITE_WON ? "1-0" : winner == BLACK_WON ? "0-1" : "1/2-1/2"; }

}  // namespace

void RecordMove(MatchGame* game, Move move, int score, Depth depth) {
    assert(game->count < MATCH_MOVES);
    MatchMove& entry = game->moves[game->count++];
    entry.text.fill(0);
    std::snprintf(entry.text.data(), entry.text.size(), "%s%s", algbr(FromSquare(move)), algbr(ToSquare(move)));
    entry.score = static_cast<int16_t>(score);
    entry.depth = static_cast<int16_t>(depth);
}

void CountResult(const MatchGame& game, MatchScore* score) {
    if (game.winner == NOBODY_WON)
        ++score->draws;
    else if ((game.winner == WHITE_WON) == (game.white == 0))
        ++score->wins;
    else
        ++score->losses;
}

uint64_t MovesSignature(const MatchGame& game) {
    uint64_t signature = 0xcbf29ce484222325;  // FNV-1a
    for (int i = 0; i < game.count; ++i)
        for (const char c : game.moves[i].text)
            signature = (signature ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return signature;
}

double MatchRate(const MatchScore& score, int games) {
    assert(games > 0);
    return (score.wins + score.draws / 2.0) / games;
}

double MatchMargin(int games) { return 1.5 * std::sqrt(games + 10.0) / (games + 1.0); }

char MatchMark(double rate, int games) {
    return games > FEWEST_GAMES && std::fabs(rate - 0.5) > MatchMargin(games) ? '*' : ' ';
}

std::string GameText(const MatchGame& game) {
    std::string text = "[Event selfplay]\n[Game " + std::to_string(game.number) + "]\n";
    text += std::string("[White \"") + PlayerName(game.white) + "\"]\n";
    text += std::string("[Black \"") + PlayerName(game.white ^ 1) + "\"]\n";
    text += std::string("[Result \"") + ResultText(game.winner) + "\"]\n";
    for (int i = 0; i < game.count; ++i) {
        const MatchMove& move = game.moves[i];
        const bool black = i & 1;
        std::array<char, 64> entry;
        std::snprintf(entry.data(), entry.size(), "%s%s {%0.2f/%d}%s", black ? "   " : "", move.text.data(),
                      move.score / 100.0, move.depth, black ? "\n" : "");
        text += entry.data();
    }
    return text + "\n\n";
}

}  // namespace vrel
