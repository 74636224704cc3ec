#include "interface/pgn_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <optional>
#include <utility>

#include "board/fen.h"
#include "board/letters.h"
#include "interface/words.h"

namespace vrel {

namespace {

// ---- Tags ----------------------------------------------------------------------------------------------------------

// What stands in quotes; nothing if there are none.
std::string_view Quoted(std::string_view text) {
    const size_t quote = text.find('"');
    if (quote == std::string_view::npos)
        return {};
    text.remove_prefix(quote + 1);
    return text.substr(0, text.find('"'));
}

// The value of a tag of that name, `opening` being its bracket and name; nothing if the line holds none.
std::optional<std::string_view> TagValue(std::string_view line, std::string_view opening) {
    const size_t place = line.find(opening);
    if (place == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = line.substr(place + opening.size());
    if (!rest.empty() && !Contains(" \"]", rest.substr(0, 1)))
        return std::nullopt;  // a longer name
    return Trimmed(Quoted(rest));
}

// A line in a comment that goes on like a tag does: a name and the quote of its value.
bool LooksLikeTag(std::string_view line) {
    const auto in_name = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    const auto name_end = std::find_if_not(line.begin() + 1, line.end(), in_name);
    const auto value = std::find_if(name_end, line.end(), [](char c) { return c != ' '; });
    return name_end != line.begin() + 1 && value != name_end && value != line.end() && *value == '"';
}

// False if no tag of the line can be one that tells something of the game, as its first letter shows.
bool MayNameWhatCounts(std::string_view line) {
    const size_t bracket = line.find('[') + 1;
    return Contains("EFRV", line.substr(bracket, 1)) || Contains(line.substr(bracket), "[");
}

int WinnerIn(std::string_view text) {
    return Contains(text, "1-0") ? WHITE_WON : Contains(text, "0-1") ? BLACK_WON : NOBODY_WON;
}

bool IsChess(std::string_view variant) {
    std::string name(variant);
    for (char& c : name)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const char* known : {"standard", "from position", "normal", "chess", "classical", "regular", ""})
        if (name == known)
            return true;
    return false;
}

// ---- Words ---------------------------------------------------------------------------------------------------------

// What a character is outside of comments. Words consist of the last two kinds.
enum CharacterKind : uint8_t {
    BLANK,
    OPEN_BRACE,
    CLOSE_BRACE,
    OPEN_BRACKET,
    CLOSE_BRACKET,
    REST_OF_LINE,
    DROPPED,
    IN_WORD
};

constexpr std::array<CharacterKind, 256> character_kind = [] {
    std::array<CharacterKind, 256> kinds{};
    for (int c = 0; c < 256; ++c)
        kinds[c] = c >= 32 && c <= 127 ? IN_WORD : DROPPED;
    kinds[' '] = BLANK;
    kinds['{'] = OPEN_BRACE;
    kinds['}'] = CLOSE_BRACE;
    kinds['('] = OPEN_BRACKET;
    kinds[')'] = CLOSE_BRACKET;
    kinds[';'] = REST_OF_LINE;
    return kinds;
}();

CharacterKind KindOf(char c) { return character_kind[static_cast<unsigned char>(c)]; }

bool IsSign(char c) { return c == '!' || c == '?' || c == '#' || c == '$' || c == '*'; }

bool IsResult(std::string_view word) { return word == "1-0" || word == "0-1" || word == "1/2-1/2" || word == "*"; }

// The sign of a passed turn behind a move number; empty if the word is none.
std::string_view PassedTurn(std::string_view word) {
    for (const std::string_view sign : {"--", "0000", "@@@@"})
        if (word.ends_with(sign) && word.find_first_not_of("0123456789.") >= word.size() - sign.size())
            return word.substr(word.size() - sign.size());
    return {};
}

// A word without what annotators glue to it.
std::string_view WithoutSigns(std::string_view word) {
    const auto end = std::find_if(word.begin(), word.end(), [](char c) { return IsSign(c); });
    word = word.substr(0, end - word.begin());
    // Most words end in the digit of a rank.
    if (word.ends_with('.') || word.ends_with('p'))
        for (const std::string_view sign : {"e.p.", "ep"})
            if (word.ends_with(sign))
                return word.substr(0, word.size() - sign.size());
    return word;
}

}  // namespace

// ---- Lines ---------------------------------------------------------------------------------------------------------

PgnItem PgnReader::Next() {
    PgnItem item = PGN_END;
    for (;;) {
        switch (stage_) {
            case IN_TEXT:
                if (ReadText(&item))
                    return item;
                break;
            case NEXT_LINE:
                ReadLine();
                break;
            case TAG_LINE:
                if (!BeginsGame()) {
                    ReadTag();
                    stage_ = NEXT_LINE;
                    return PGN_TAG;
                }
                if (TakeStart())
                    return PGN_START;
                BeginGame();
                return PGN_GAME;
            case TEXT_LINE:
                if (line_.find_first_not_of(' ') != std::string_view::npos) {
                    after_text_ = true;
                    if (TakeStart())
                        return PGN_START;
                }
                stage_ = IN_TEXT;
                return PGN_LINE;
            case AFTER_LAST:
                return TakeStart() ? PGN_START : PGN_END;
        }
    }
}

void PgnReader::ReadLine() {
    if (!lines_.Next()) {
        stage_ = AFTER_LAST;
        return;
    }
    line_ = lines_.text();
    stage_ = IsTagLine() ? TAG_LINE : TEXT_LINE;
    at_ = line_.data();
    end_ = at_ + line_.size();
    // A line that another program has left for itself.
    if (stage_ == TEXT_LINE && braces_ == 0 && Trimmed(line_).starts_with('%'))
        at_ = end_;
}

// True the first time it is asked for a game.
bool PgnReader::TakeStart() { return std::exchange(start_due_, false); }

// ---- Tags and games ------------------------------------------------------------------------------------------------

bool PgnReader::IsTagLine() const {
    if (dialect_ == PGN_FOR_BOOK && Contains(line_, "[Result"))
        return true;
    if (braces_ > 0)
        return line_.starts_with('[') && LooksLikeTag(line_);
    const size_t first = line_.find_first_not_of(' ');
    return first != std::string_view::npos && line_[first] == '[' && !line_.substr(first).starts_with("[%");
}

bool PgnReader::BeginsGame() const { return after_text_ || (has_event_ && TagValue(line_, "[Event")); }

void PgnReader::BeginGame() {
    game_ = {};
    start_due_ = true;
    after_text_ = false;
    has_event_ = false;
}

void PgnReader::ReadTag() {
    braces_ = 0;
    brackets_ = 0;
    over_ = game_.foreign;
    if (!MayNameWhatCounts(line_))
        return;
    has_event_ = has_event_ || TagValue(line_, "[Event");
    if (const size_t place = line_.find("[Result"); place != std::string_view::npos)
        game_.winner = WinnerIn(dialect_ == PGN_FOR_BOOK ? line_ : Quoted(line_.substr(place)));
    if (const auto fen = TagValue(line_, "[FEN"); fen && !fen->empty())
        game_.fen = *fen;
    if (const auto variant = TagValue(line_, "[Variant"); variant && !IsChess(*variant))
        game_.foreign = over_ = true;
}

void SetUpGame(Position* pos, const PgnGame& game) {
    SetPosition(pos, fen_opn);  // a text without a side to move leaves it to white
    if (!game.fen.empty())
        SetPosition(pos, game.fen.c_str());
}

// ---- Text ----------------------------------------------------------------------------------------------------------

// The next move or comment of the line. False if there is none; then the line is over.
bool PgnReader::ReadText(PgnItem* item) {
    while (at_ != end_) {
        if (braces_ > 0) {
            if (ReadComment(item))
                return true;
            continue;
        }
        if (over_ && !GoToNextComment())
            break;
        switch (KindOf(*at_)) {
            case OPEN_BRACE:
                braces_ = 1;
                break;
            case OPEN_BRACKET:
                ++brackets_;
                break;
            case CLOSE_BRACKET:
                brackets_ = std::max<int64_t>(brackets_ - 1, 0);
                break;
            case REST_OF_LINE:
                at_ = end_ - 1;
                break;
            case BLANK:
            case CLOSE_BRACE:
                break;
            default:
                if (ReadWord(item))
                    return true;
                continue;
        }
        ++at_;
    }
    stage_ = NEXT_LINE;
    text_ = " ";  // a comment goes on behind the end of the line
    *item = PGN_COMMENT;
    return braces_ > 0 && IsGivenOut();
}

// In a game of which nothing more is wanted: only comments can still hide what looks like a tag. False at the end of
// the line.
bool PgnReader::GoToNextComment() {
    const std::string_view rest(at_, end_ - at_);
    at_ += std::min({rest.find('{'), rest.find(';'), rest.size()});
    return at_ != end_;
}

// Inside of braces: the part of the comment up to the next brace or the end of the line, or what a brace means.
bool PgnReader::ReadComment(PgnItem* item) {
    const char* begin = at_;
    at_ = std::find_if(begin, end_, [](char c) { return c == '{' || c == '}'; });
    if (at_ != begin) {
        text_ = std::string_view(begin, at_ - begin);
        *item = PGN_COMMENT;
        return IsGivenOut();
    }
    braces_ += *at_++ == '{' ? 1 : -1;
    *item = PGN_COMMENT_END;
    return braces_ == 0 && IsGivenOut();
}

// ---- Words ---------------------------------------------------------------------------------------------------------

// Goes past a word. True if it is a move that is given out.
bool PgnReader::ReadWord(PgnItem* item) {
    const std::string_view word = TakeWord();
    *item = PGN_MOVE;
    return IsGivenOut() && TakeMove(word);
}

std::string_view PgnReader::TakeWord() {
    const char* begin = at_;
    const char* at = std::find_if_not(begin, end_, [](char c) { return KindOf(c) == IN_WORD; });
    at_ = std::find_if_not(at, end_, [](char c) { return KindOf(c) >= DROPPED; });
    if (at == at_)
        return {begin, static_cast<size_t>(at - begin)};
    word_.clear();
    std::copy_if(begin, at_, std::back_inserter(word_), [](char c) { return KindOf(c) == IN_WORD; });
    return word_;
}

// Finds the move in a word, or the end of the game. A passed turn is a move that nobody can read.
bool PgnReader::TakeMove(std::string_view word) {
    if (!word.empty() && !IsLetter(word[0])) {
        const bool number = word.back() == '.';
        over_ = !number && IsResult(word);
        text_ = number || over_ ? std::string_view() : PassedTurn(word);
        if (over_ || !text_.empty())
            return !over_;
        const bool zeros = dialect_ == PGN_FOR_BOOK;
        while (!word.empty() && !IsLetter(word[0]) && !(zeros && word.starts_with("0-")))
            word.remove_prefix(1);
    }
    text_ = WithoutSigns(word);
    return !text_.empty();
}

}  // namespace vrel
