#include "interface/control/front_end.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "board/attacks.h"
#include "board/fen.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pgn_move.h"
#include "interface/pgn_text.h"
#include "interface/words.h"
#include "platform/file.h"
#include "tools/game_comment.h"
#include "tools/scanned_game.h"

namespace vrel {

namespace {

constexpr int FIFTY_MOVES = 100;  // plies
constexpr size_t LONGEST_UNREAD = 40;
constexpr std::array<std::string_view, 5> listed_tags = {"[Event ", "[Date ", "[White ", "[Black ", "[Result "};

// No play from here on ends in a mate: beside the kings one minor piece, or bishops on squares of one colour.
bool NobodyCanMate(const Position& pos) {
    const auto all = [&pos](int type) { return pos.bb[WHITE][type] | pos.bb[BLACK][type]; };
    if (all(PAWN) | all(ROOK) | all(QUEEN))
        return false;
    uint64_t light = 0;
    for (Square sq = 0; sq < 64; ++sq)
        if (sq_color(sq))
            light |= Bit(sq);
    const uint64_t bishops = all(BISHOP);
    if (all(KNIGHT))
        return CountBits(all(KNIGHT) | bishops) == 1;
    return (bishops & light) == 0 || (bishops & ~light) == 0;
}

// In the order in which the rules ask: a mate counts whatever the counters say.
const char* StateOf(const Position& pos, bool check, bool can_move) {
    if (!can_move)
        return check ? "mate" : "stalemate";
    if (NobodyCanMate(pos))
        return "material";
    if (pos.fifty >= FIFTY_MOVES)
        return "fifty";
    return CountRepetitions(pos) >= 2 ? "repetition" : "play";
}

void ShowPosition(const Position& pos) {
    std::array<char, EPD_TEXT> fen;
    MakeEPD(pos, fen.data());
    ShowFormatted("position %s", fen.data());
}

// Text from a file: whatever it holds, it stays on its line.
std::string OnOneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; }, ' ');
    return line;
}

// A file to read; a word about it if it can't be.
File OpenGames(const char* name) {
    File in(name, "r");
    if (!in)
        Complain("%s: %s", name, FileTrouble());
    return in;
}

// The games of a file as the list shows them.
class GameList {
public:
    void Take(const PgnReader& pgn, PgnItem item) {
        if (item == PGN_GAME)
            Show();
        if (item == PGN_MOVE)
            ++plies_;
        if (item == PGN_TAG && std::any_of(listed_tags.begin(), listed_tags.end(),
                                           [&pgn](std::string_view tag) { return Contains(pgn.line(), tag); }))
            tags_.append(tags_.empty() ? "" : "\t").append(OnOneLine(pgn.line()));
        if (item == PGN_GAME)
            ++number_;
    }
    // The text before the first tag is a game if it has a move.
    void Show() {
        if (number_ > 0 || plies_ > 0)
            ShowFormatted("game %d %d %s", number_, plies_, tags_.c_str());
        plies_ = 0;
        tags_.clear();
    }

private:
    int number_ = 0;
    int plies_ = 0;
    std::string tags_;
};

// One game of a file, read with the scores that it carries, and then shown.
class GameReader {
public:
    void Take(const PgnReader& pgn, PgnItem item) {
        if (item == PGN_TAG) {
            ShowMessage(("tag " + OnOneLine(pgn.line())).c_str());
        } else if (item == PGN_START) {
            Start(pgn.game());
        } else if (item == PGN_MOVE) {
            Play(pgn.text());
        } else if (item == PGN_COMMENT) {
            AddToComment(&comment_, pgn.text());
        } else if (item == PGN_COMMENT_END) {
            TakeScore();
        }
    }
    // Nothing behind it is of use.
    bool over() const { return !trouble_.empty(); }

    // Whether a move is doubtful depends on what comes behind it.
    void Show() const {
        const ScannedGame game = {scores_.data(), static_cast<int>(scores_.size()), winner_, first_side_};
        for (int i = 0; i < game.count; ++i) {
            ShowMessage(moves_[i].text.c_str());
            if (game.score(i) > UNREADABLE_SCORE)
                ShowFormatted("%s %d", moves_[i].is_eval ? "eval" : "score", AsWhiteSees(game.score(i), game.side(i)));
            if (IsDoubtful(game, i))
                ShowMessage("doubtful");
        }
        if (!trouble_.empty())
            ShowMessage(trouble_.c_str());
    }

private:
    struct ReadMove {
        std::string text;
        bool is_eval = false;  // its score is that of the position behind it
    };

    static int AsWhiteSees(int score, int side) { return side == WHITE ? score : -score; }

    void Start(const PgnGame& game) {
        Position* pos = GamePosition();
        SetUpGame(pos, game);
        ShowPosition(*pos);
        winner_ = game.winner;
        first_side_ = pos->stm;
        if (game.foreign)
            trouble_ = "foreign";
        else if (!KingsAreInOrder(*pos))
            trouble_ = "unread";
    }

    void Play(std::string_view text) {
        Position* pos = GamePosition();
        Move move = NO_MOVE;
        MoveAsRead read;
        ClearComment(&comment_);
        if (static_cast<int>(moves_.size()) >= SCANNED_MOVES) {
            trouble_ = "cut " + std::to_string(SCANNED_MOVES);
        } else if (!ReadMoveText(text, &move, &read)) {
            trouble_ = "unread " + OnOneLine(text.substr(0, LONGEST_UNREAD));
        } else {
            moves_.push_back({"move " + MoveRecord(pos, LegalMoves(*pos), move)});
            scores_.push_back({{}, NO_COMMENT});
            PlayGameMove(pos, move);
        }
    }

    // A comment that tells no score leaves that of one before it; before the first move it has nothing to belong to.
    void TakeScore() {
        if (!moves_.empty()) {
            const bool black_moved = GamePosition()->stm == WHITE;
            if (const std::optional<int16_t> score = ScoreOfComment(comment_, black_moved)) {
                scores_.back().score = *score;
                moves_.back().is_eval = comment_.has_eval && !comment_.has_book;
            }
        }
        ClearComment(&comment_);
    }

    std::vector<ReadMove> moves_;
    std::vector<ScannedMove> scores_;  // of the same moves
    std::string trouble_;              // why the rest isn't read, as it is told
    GameComment comment_;
    int winner_ = NOBODY_WON;
    int first_side_ = WHITE;
};

}  // namespace

void ShowLegalMoves() {
    Position* pos = GamePosition();
    ShowPosition(*pos);
    if (!KingsAreInOrder(*pos)) {
        ShowMessage("state impossible");
    } else {
        const bool check = SqAtakd(*pos, KingSquare(*pos, pos->stm), pos->stm ^ 1) != 0;
        const LegalMoves moves(*pos);
        ShowFormatted("state %s%s", StateOf(*pos, check, !moves.Empty()), check ? " check" : "");
        for (const MoveEntry* entry = moves.list.data(); entry != moves.end; ++entry)
            ShowMessage(("legal " + MoveRecord(pos, moves, entry->move)).c_str());
    }
    ShowMessage("legal end");
}

void ShowGames(const char* file) {
    if (File in = OpenGames(file)) {
        PgnReader pgn(&in, file);
        GameList list;
        for (PgnItem item = pgn.Next(); item != PGN_END; item = pgn.Next())
            list.Take(pgn, item);
        list.Show();
    }
    ShowMessage("games end");
}

void ShowGameOfFile(const char* file, int number) {
    Position* pos = GamePosition();
    if (File in = OpenGames(file)) {
        PgnReader pgn(&in, nullptr);  // who has listed the file knows what is wrong with it
        GameReader reader;
        int count = 0;
        for (PgnItem item = pgn.Next(); item != PGN_END && count <= number; item = pgn.Next()) {
            count += item == PGN_GAME;
            if (count < number)
                pgn.SkipGame();
            else if (count == number && !reader.over())
                reader.Take(pgn, item);
        }
        reader.Show();
        pos->undo[pos->game_ply].move = NO_MOVE;
    }
    ShowMessage("game end");
}

}  // namespace vrel
