#include "tools/openings.h"

#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/generate.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "platform/file.h"
#include "search/search_control.h"
#include "search/time_control.h"
#include "tools/record_file.h"

namespace vrel {

namespace {

constexpr int SHORTEST = 8;  // plies
constexpr int LONGEST = 12;
constexpr int LARGEST_SCORE = 50;  // centipawns for either side, at the end of an opening
constexpr int FIRST_LOOK = 0;      // depth at which most are passed over
constexpr int SECOND_LOOK = 4;     // and that at which the others are judged
constexpr int TWIG = 2;            // last plies in which the openings of a stem differ
constexpr int TWIGS = 4;           // openings of a stem, at most
constexpr int TRIES = 40;          // to find them
constexpr int WINS_EACH = 3;       // a position of a book needs more than five points, its chooser two wins

using Opening = std::vector<Move>;

// Numerical Recipes' generator: the same numbers on every system.
class Dice {
public:
    explicit Dice(uint32_t seed) : state_(seed) {}
    int Below(int limit) {
        state_ = state_ * 1664525 + 1013904223;
        return static_cast<int>((static_cast<uint64_t>(state_) * static_cast<uint64_t>(limit)) >> 32);
    }

private:
    uint32_t state_;
};

std::vector<Move> LegalMoves(Position* pos) {
    GenerateAll(pos);
    MoveEntry* list = pos->frames[pos->ply].first;
    RemoveIllegalMoves(*pos, list);
    std::vector<Move> moves;
    for (; list->move != END_OF_LIST; ++list)
        moves.push_back(list->move);
    return moves;
}

// Plays random moves behind a stem until the opening has `length` plies. The first moves and the replies to them are
// dealt evenly, so that a book chooses among its lines evenly too. Empty if the game ends on the way.
Opening Grow(Position* pos, Opening opening, int length, int number, Dice* dice) {
    SetPosition(pos, fen_opn);
    for (const Move move : opening)
        PlayGameMove(pos, move);
    while (static_cast<int>(opening.size()) < length) {
        const std::vector<Move> moves = LegalMoves(pos);
        if (moves.empty())
            return {};
        const int many = static_cast<int>(moves.size());
        const int choice = opening.empty()       ? number % many
                           : opening.size() == 1 ? number / 20 % many
                                                 : dice->Below(many);
        opening.push_back(moves[choice]);
        PlayGameMove(pos, opening.back());
    }
    return opening;
}

bool IsBalanced(Depth depth) {
    LimitDepth(depth);
    InitSearch(STATE_IDLE);
    SearchHere();
    const int score = GetThread(1)->score;
    return score >= -LARGEST_SCORE && score <= LARGEST_SCORE;
}

// The moves with their numbers.
std::string TextOf(Position* pos, const Opening& opening) {
    SetPosition(pos, fen_opn);
    std::string text;
    for (size_t i = 0; i < opening.size(); ++i) {
        MoveText coord, san, file_form, rank_form;
        GenMoveStrings(*pos, opening[i], coord.data(), san.data(), file_form.data(), rank_form.data());
        if (i % 2 == 0)
            text += std::to_string(i / 2 + 1) + ". ";
        for (const char* c = san.data(); *c != '\0'; ++c)
            text += *c == 'o' ? 'O' : *c;
        text += ' ';
        PlayGameMove(pos, opening[i]);
    }
    return text;
}

std::string GamesOf(const std::string& moves) {
    std::string text;
    for (int i = 0; i < 2 * WINS_EACH; ++i) {
        const char* result = i % 2 == 0 ? "1-0" : "0-1";
        text.append("[Event \"Opening\"]\n[Result \"").append(result).append("\"]\n\n");
        text.append(moves).append(result).append("\n\n");
    }
    return text;
}

}  // namespace

bool WriteOpenings(const char* file, int count, uint32_t seed) {
    RecordFile out(File(file, "w"), file);
    if (!out) {
        Complain("%s: %s", file, FileTrouble());
        return false;
    }
    PBlock.noise = SILENT;
    PBlock.use_hash = 0;
    Position* pos = GamePosition();
    Dice dice(seed);
    std::set<Opening> known;
    Opening stem;  // of the last opening, if it still has twigs to grow
    GetElapsedTime(0);
    for (int twigs = 0, stems = 0; static_cast<int>(known.size()) < count && !out.failed() && !PBlock.quit;
         poll_input()) {
        const int length =
            stem.empty() ? SHORTEST + dice.Below(LONGEST - SHORTEST + 1) : static_cast<int>(stem.size()) + TWIG;
        const Opening opening = Grow(pos, stem, length, stems, &dice);
        const bool taken =
            !opening.empty() && IsBalanced(FIRST_LOOK) && IsBalanced(SECOND_LOOK) && known.insert(opening).second;
        if (taken)
            out.Put(GamesOf(TextOf(pos, opening)));
        // The first opening of a stem leaves it to a few more; so a book of many lines stays small.
        if (taken && stem.empty()) {
            ++stems;
            twigs = 0;
            stem.assign(opening.begin(), opening.end() - TWIG);
        } else if (!stem.empty() && (++twigs == TRIES || known.size() % TWIGS == 0)) {
            stem.clear();
        }
    }
    return out.Close();
}

}  // namespace vrel
