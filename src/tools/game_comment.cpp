#include "tools/game_comment.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/narrow.h"

namespace vrel {

namespace {

// The limits of an int keep absurd numbers defined; of what is left a score keeps the sixteen low bits, as every score
// field does.
constexpr double HIGHEST = 2147483647.0;

int16_t ScoreField(double score) {
    return Narrow(static_cast<int>(std::clamp(score, -HIGHEST, HIGHEST)));  // cut towards zero
}

bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// "[%eval -45,12]": a number of centipawns from white's view.
int ScoreOfEval(const char* text, bool black) {
    if (*text == '\0' || *text == ',')
        return UNREADABLE_SCORE;
    const auto score = static_cast<double>(std::strtol(text, nullptr, 10));
    return ScoreField(black ? -score : score);
}

// "+0.35/12": pawns from the mover's view, and the depth.
int ScoreOfPawns(const char* text) {
    const char* number = *text == '+' || *text == '-' ? text + 1 : text;
    if (!IsDigit(*number))
        return UNREADABLE_SCORE;
    return ScoreField(std::strtod(text, nullptr) * 100);
}

}  // namespace

int ScoreOfComment(const char* comment, bool black) {
    if (std::strstr(comment, "book") != nullptr)
        return 0;
    if (const char* eval = std::strstr(comment, "eval "))
        return ScoreOfEval(eval + std::strlen("eval "), black);
    return std::strchr(comment, '/') != nullptr ? ScoreOfPawns(comment) : UNREADABLE_SCORE;
}

}  // namespace vrel
