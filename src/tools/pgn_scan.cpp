#include "tools/pgn_scan.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "eval/eval_tables.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "tools/epd_file.h"
#include "tools/game_comment.h"
#include "tools/scanned_game.h"

namespace vrel {

namespace {

constexpr int PGN_LINE = 255;  // room for a line; the rest of a longer one is the next line
constexpr int REPORT_INTERVAL = 100;
constexpr size_t LONGEST_COMMENT = 65536;

// One pass over a PGN file.
class Scanner {
public:
    Scanner(File* out, int kind) : out_(out), kind_(kind) {}

    void Line(const char* line) {
        if (line[0] == '[' && line[1] != '%')
            Tag(line);
        else
            MoveTextLine(line);
    }

    void Finish() {
        EndGame();
        out_->WriteText("\n");
        Print("games= %d, positions= %d\n", games_, positions_);
    }

private:
    // A tag ends the moves of the game before.
    void Tag(const char* line) {
        EndGame();
        depth_ = 0;
        comment_.clear();
        if (kind_ == SCAN_LISTING) {
            out_->WriteText(line);
            if (std::strstr(line, "Round ") != nullptr)
                out_->Print("[Tag \"game_%d\"]\n", games_);
        }
        if (std::strstr(line, "Event ") != nullptr && ++games_ % REPORT_INTERVAL == 0)
            Print("game %d\n", games_);
        if (std::strstr(line, "Result ") != nullptr)
            winner_ = WinnerOf(line);
    }

    static int WinnerOf(const char* line) {
        const char* quote = std::strchr(line, '"');
        if (quote == nullptr)
            return NOBODY_WON;
        const std::string result(quote + 1, std::strcspn(quote + 1, "\""));
        if (result.find("1-0") != std::string::npos)
            return WHITE_WON;
        return result.find("0-1") != std::string::npos ? BLACK_WON : NOBODY_WON;
    }

    void MoveTextLine(const char* line) {
        while (*line) {
            if (*line == '{') {
                ++depth_;
                ++line;
            } else if (depth_ > 0) {
                line = Comment(line);
            } else if (std::isalpha(static_cast<unsigned char>(*line))) {
                const size_t length = std::strcspn(line, " \t\r\n");
                StartMove(line, length);
                line += length;
            } else {
                ++line;
            }
        }
    }

    // One character inside of braces; returns the next one.
    const char* Comment(const char* line) {
        if (*line == '}') {
            if (--depth_ == 0)
                EndComment();
        } else if (comment_.size() < LONGEST_COMMENT) {
            comment_ += *line == '\n' ? ' ' : *line;
        }
        return line + 1;
    }

    void EndComment() {
        // Beyond the last move that is held, comments have nothing to belong to.
        if (count_ > 0 && count_ <= SCANNED_MOVES) {
            const bool black = (count_ & 1) == 0;
            moves_[static_cast<size_t>(count_ - 1)].score =
                static_cast<int16_t>(ScoreOfComment(comment_.c_str(), black));
        }
        comment_.clear();
    }

    void StartMove(const char* text, size_t length) {
        if (count_ <= SCANNED_MOVES)
            ++count_;
        if (count_ > SCANNED_MOVES)
            return;
        ScannedMove& move = moves_[static_cast<size_t>(count_ - 1)];
        move.text.fill('\0');
        std::copy_n(text, std::min(length, move.text.size() - 1), move.text.begin());
        move.score = NO_COMMENT;
    }

    void EndGame() {
        if (count_ > 0) {
            int written = 0;
            ProcessGame(out_, moves_.data(), std::min(count_, SCANNED_MOVES), kind_, winner_, &written);
            positions_ += written;
        }
        count_ = 0;
    }

    File* out_;
    int kind_;
    int games_ = 0;
    int positions_ = 0;
    int winner_ = NOBODY_WON;
    int64_t depth_ = 0;  // of braces
    int count_ = 0;      // moves of the game; SCANNED_MOVES + 1 if there are more
    std::string comment_;
    std::array<ScannedMove, SCANNED_MOVES> moves_;
};

}  // namespace

void Scan_PGN_File(const char* file, int kind) {
    File in(file, "r");
    if (!in)
        return;
    File out = CreateOutput(kind == SCAN_LISTING ? "tmp.pgn" : "tmp.epd", file);
    if (!out)
        return;
    InitEval();
    PBlock.log = 0;
    Scanner scanner(&out, kind);
    std::array<char, PGN_LINE> line;
    while (in.ReadLine(line.data(), PGN_LINE))
        scanner.Line(line.data());
    scanner.Finish();
}

}  // namespace vrel
