#include "tools/game_comment.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "interface/numbers.h"

namespace vrel {

namespace {

// The limits of an int keep absurd numbers defined; of what is left a score keeps the sixteen low bits, as every score
// field does.
constexpr double HIGHEST = 2147483647.0;

int16_t Narrow(double score) {
    return static_cast<int16_t>(static_cast<int>(std::clamp(score, -HIGHEST, HIGHEST)));  // cut towards zero
}

// The latest characters and one more.
constexpr uint64_t Append(uint64_t characters, char c) { return characters << 8 | static_cast<unsigned char>(c); }

// A word of less than eight characters as the latest ones, and the mask of as many.
struct Ending {
    uint64_t characters = 0;
    uint64_t mask = 0;

    constexpr explicit Ending(std::string_view word) {
        for (const char c : word) {
            characters = Append(characters, c);
            mask = mask << 8 | 0xff;
        }
    }
    constexpr bool Ends(uint64_t latest) const { return (latest & mask) == characters; }
};
constexpr Ending kBook("book");
constexpr Ending kEval("eval ");

void AddToEval(GameComment* comment, std::string_view part) {
    const size_t end = part.find(',');
    comment->in_eval = end == std::string_view::npos;
    part = part.substr(0, end);
    comment->empty_eval = comment->empty_eval && part.empty();
    if (comment->eval.length == 0)
        part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
    comment->eval.Add(part);
}

// "[%eval -45,12]", "[%eval -0.45]": from white's view, centipawns or, with a point, pawns.
std::optional<int16_t> ScoreOfEval(const GameComment& comment, bool black) {
    const char* text = comment.eval.characters.data();
    if (comment.empty_eval || *text == '#')
        return std::nullopt;
    TextStart number;
    number.Add({text, std::strspn(text, "+-0123456789.")});
    const char* digits = number.characters.data();
    const double score = std::strchr(digits, '.') != nullptr ? std::round(ReadDecimal(digits) * 100)
                                                             : static_cast<double>(std::strtol(digits, nullptr, 10));
    return Narrow(black ? -score : score);
}

// "+0.35/12": pawns from the mover's view, and the depth.
std::optional<int16_t> ScoreOfPawns(const char* text) {
    const char* number = *text == '+' || *text == '-' ? text + 1 : text;
    if (!std::isdigit(static_cast<unsigned char>(*number)))
        return std::nullopt;
    return Narrow(ReadDecimal(text) * 100);
}

}  // namespace

void AddToComment(GameComment* comment, std::string_view part) {
    comment->start.Add(part);
    if (comment->in_eval)
        AddToEval(comment, part);
    uint64_t latest = comment->last_characters;
    for (size_t i = 0; i < part.size(); ++i) {
        const char c = part[i];
        latest = Append(latest, c);
        if (c == '/') {
            comment->has_slash = true;
        } else if (c == 'k') {
            comment->has_book |= kBook.Ends(latest);
        } else if (c == ' ' && kEval.Ends(latest) && !comment->has_eval) {
            comment->has_eval = true;
            AddToEval(comment, part.substr(i + 1));
        }
    }
    comment->last_characters = latest;
}

std::optional<int16_t> ScoreOfComment(const GameComment& comment, bool black) {
    if (comment.has_book)
        return 0;
    if (comment.has_eval)
        return ScoreOfEval(comment, black);
    return comment.has_slash ? ScoreOfPawns(comment.start.characters.data()) : std::nullopt;
}

}  // namespace vrel
