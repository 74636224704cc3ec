#include "tools/pgn_scan.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "board/search_thread.h"
#include "eval/eval_tables.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "interface/pgn_text.h"
#include "platform/file.h"
#include "tools/epd_file.h"
#include "tools/game_comment.h"
#include "tools/record_file.h"
#include "tools/scanned_game.h"

namespace vrel {

namespace {

constexpr int REPORT_INTERVAL = 100;
constexpr size_t MOST_TAGS = 1000000;  // characters held, whatever the file says

bool Holds(std::string_view line, std::string_view what) { return line.find(what) != std::string_view::npos; }

// One pass over a PGN file.
class Scanner {
public:
    Scanner(RecordFile* out, int kind) : out_(out), kind_(kind) {}

    void Scan(PgnReader* pgn) {
        for (PgnItem item = pgn->Next(); item != PGN_END && !out_->failed(); item = pgn->Next())
            Take(item, *pgn);
        EndGame();
        out_->Put("\n");
        out_->Flush();
        Print("games= %d, positions= %d\n", out_->written().games, out_->written().positions);
    }

private:
    void Take(PgnItem item, const PgnReader& pgn) {
        switch (item) {
            case PGN_GAME:
                EndGame();
                break;
            case PGN_TAG:
                TakeTag(pgn);
                break;
            case PGN_START:
                SetUpGame(GamePosition(), pgn.game());
                winner_ = pgn.game().winner;
                break;
            case PGN_MOVE:
                StartMove(pgn.text());
                break;
            case PGN_COMMENT:
                AddToComment(&comment_, pgn.text());
                break;
            case PGN_COMMENT_END:
                EndComment();
                break;
            default:
                break;
        }
    }

    void TakeTag(const PgnReader& pgn) {
        if (scan_kinds[kind_ - 1].lists_games) {
            const std::string_view line = pgn.line_as_it_stands();
            text_.append(line).append("\n");
            if (Holds(pgn.line(), "Round "))
                text_.append("[Tag \"game_").append(std::to_string(games_)).append("\"]\n");
        }
        if (Holds(pgn.line(), "Event ")) {
            ++counts_.games;
            if (++games_ % REPORT_INTERVAL == 0)
                Print("game %d\n", games_);
        }
        if (text_.size() > MOST_TAGS)
            PutRecord();
    }

    void StartMove(std::string_view text) {
        ClearComment(&comment_);
        scored_ = false;
        if (count_ <= SCANNED_MOVES)
            ++count_;
        if (count_ > SCANNED_MOVES)
            return;
        ScannedMove& move = moves_[count_ - 1];
        move.text.fill('\0');
        std::copy_n(text.begin(), std::min(text.size(), move.text.size() - 1), move.text.begin());
        move.score = NO_COMMENT;
    }

    // A comment that tells no score leaves that of one before it.
    void EndComment() {
        const int side = (GamePosition()->stm + count_ - 1) & 1;
        const std::optional<int16_t> score = ScoreOfComment(comment_, side == BLACK);
        ClearComment(&comment_);
        // Before the first and beyond the last move that is held, comments have nothing to belong to.
        if (count_ == 0 || count_ > SCANNED_MOVES)
            return;
        if (score || !scored_)
            moves_[count_ - 1].score = score.value_or(UNREADABLE_SCORE);
        scored_ = scored_ || score;
    }

    void EndGame() {
        if (count_ > 0)
            counts_.positions += ProcessGame(moves_.data(), std::min(count_, SCANNED_MOVES), kind_, winner_, &text_);
        count_ = 0;
        PutRecord();
    }

    void PutRecord() {
        out_->Put(text_, counts_);
        text_.clear();
        counts_ = {};
    }

    RecordFile* out_;
    int kind_;
    int games_ = 0;
    RecordCounts counts_;  // of what is in text_
    std::string text_;     // of the game at hand, with its tags
    int winner_ = NOBODY_WON;
    int count_ = 0;        // moves of the game; SCANNED_MOVES + 1 if there are more
    bool scored_ = false;  // a comment has given the last move its score
    GameComment comment_;
    std::array<ScannedMove, SCANNED_MOVES> moves_;
};

}  // namespace

bool Scan_PGN_File(const char* file, int kind) {
    assert(kind >= 1 && kind <= ScanKinds());
    const char* output = scan_kinds[kind - 1].output;
    File in(file, "r");
    if (!in) {
        Complain("%s: %s", file, FileTrouble());
        return false;
    }
    RecordFile out(CreateOutput(output, file), output);
    if (!out) {
        Complain("%s: %s", output, FileTrouble());
        return false;
    }
    InitEval();
    PBlock.log = 0;
    PgnReader pgn(&in, file);
    Scanner(&out, kind).Scan(&pgn);
    return out.Close() && !in.Failed();
}

}  // namespace vrel
