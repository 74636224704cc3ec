#include "tools/match.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_lookup.h"
#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "interface/progress.h"
#include "search/search_control.h"
#include "search/search_report.h"
#include "search/time_control.h"
#include "search/transposition.h"
#include "tools/match_record.h"
#include "tools/player_file.h"
#include "tools/record_file.h"

namespace vrel {

namespace {

constexpr const char* PLAYER_FILE = "player2.par";
constexpr int BOOK_PLIES = 12;      // from here on both play by themselves, whatever the book knows
constexpr int POLL_INTERVAL = 16;   // moves between looks at the input
constexpr int DECIDED_SCORE = 900;  // centipawns that nobody loses any more
constexpr int FIFTY_LIMIT = 100;

using Players = std::array<PersonalityRecord, 2>;

// It is the nodes that limit a move, so that a match is the same on a slow machine. Their number is drawn for each
// match, so that two of the same players aren't the same games.
void ApplySettings() {
    PBlock.book_random = 100;
    PBlock.noise = SILENT;
    SearchLimits limits = LimitsInForce();
    limits.clock = {1.0, 1.0};
    limits.level_time = 1.0;
    limits.level_moves = 1;
    limits.max_nodes = 250 * (95 + std::rand() % 11);
    SetLimits(limits);
}

// Leaves the move of the side to move and its score in PBlock; no move in a repeated position.
void FindMove(Position* pos, const PersonalityRecord& player) {
    GetElapsedTime(0);
    InitSearch(STATE_IDLE);
    // The tables that follow from the weights are only built where they are needed: a book move needs none.
    Personality = player;
    if (pos->game_ply < BOOK_PLIES) {
        GetCandidates(pos, false);
        PublishScore(0);
    }
    if (PublishedResult().best == NO_MOVE) {
        InitEval();
        if (CountRepetitions(*pos) >= 2)
            PublishScore(0);
        else
            SearchHere();
    }
    GetElapsedTime(1);
}

// What ends the game before the move found is made. False if it goes on.
bool Adjudicate(const Position& pos, const SearchResult& found, Winner* winner) {
    if (found.score < -DECIDED_SCORE)
        *winner = pos.stm == WHITE ? BLACK_WON : WHITE_WON;
    else if (found.score > DECIDED_SCORE)
        *winner = pos.stm == WHITE ? WHITE_WON : BLACK_WON;
    else if (pos.fifty > FIFTY_LIMIT || found.best == NO_MOVE)
        *winner = NOBODY_WON;
    else
        return false;
    return true;
}

// Plays one game; false if the match is to end instead.
bool PlayGame(const Players& players, MatchGame* game, int* moves_played) {
    Position* pos = GamePosition();
    SetPosition(pos, fen_opn);
    game->white = std::rand() & 1;
    game->count = 0;
    game->winner = NOBODY_WON;
    // What one player has found mustn't serve the other.
    PBlock.use_hash = 0;
    ClearTTable();
    // A game that the record can't hold is a draw.
    while (game->count < MATCH_MOVES) {
        FindMove(pos, players[game->white ^ pos->stm]);
        const SearchResult found = PublishedResult();
        if (++*moves_played % POLL_INTERVAL == 0)
            PollSearch();
        if (PBlock.quit)
            return false;
        Collect();
        const bool over = Adjudicate(*pos, found, &game->winner);
        RecordMove(game, found.best, found.score, found.depth);
        if (over)
            break;
        PlayGameMove(pos, found.best);
    }
    return true;
}

// Results from the view of the first player: wins, losses, draws, the share of points and how far it may be off.
void ShowScore(const MatchScore& score, int games) {
    const double rate = MatchRate(score, games);
    ShowFormatted("%4d games,  %3d %3d %3d  %0.3f (+/- %0.3f) %c", games, score.wins, score.losses, score.draws, rate,
                  MatchMargin(games), MatchMark(rate, games));
}

}  // namespace

bool PlayMatch(int games) {
    // The first player is the engine as it is; what is tried out is the second.
    Players players = {DefaultPersonality, DefaultPersonality};
    if (!ReadPlayerFile(PLAYER_FILE, &players[1]))
        return false;
    InitEval();
    const char* name = PBlock.match_file.data();
    RecordFile out(File(name, "w"), name);
    if (!out) {
        Print("can't open %s\n", name);
        Complain("%s: %s", name, FileTrouble());
        return false;
    }
    ApplySettings();
    if (!BookIsThere())
        Complain("%s: no book, so most games will be the same; scripts/openings makes one", PBlock.book_file.data());
    ShowMessage("Starting match...");
    MatchScore score;
    MatchGame game;
    std::set<uint64_t> different;
    int moves_played = 0;
    Progress progress("games", games);
    int shown = 0;  // games of the last line of statistics
    for (game.number = 1; game.number <= games; ++game.number) {
        progress.Show(game.number - 1);
        if (!PlayGame(players, &game, &moves_played))
            break;
        out.Put(GameText(game));
        if (!out.Flush())  // whoever looks on sees whole games
            break;
        CountResult(game, &score);
        different.insert(MovesSignature(game));
        if (game.number % 10 == 9) {
            ShowScore(score, game.number);
            shown = game.number;
        }
    }
    const int played = game.number - 1;
    if (played == 0)
        return out.Close();
    if (played > shown)
        ShowScore(score, played);
    ShowFormatted("%d games, %d of them different", played, static_cast<int>(different.size()));
    return out.Close();
}

}  // namespace vrel
