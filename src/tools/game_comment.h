#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vrel {

// Scores of moves that have none.
inline constexpr int NO_COMMENT = -30000;
inline constexpr int UNREADABLE_SCORE = -29999;

// The start of a text, closed by 0; what doesn't fit is dropped.
struct TextStart {
    std::array<char, 64> characters;
    size_t length;

    TextStart() { Clear(); }
    void Clear() {
        length = 0;
        characters[0] = '\0';
    }
    void Add(std::string_view text) {
        text = text.substr(0, characters.size() - 1 - length);
        std::copy(text.begin(), text.end(), characters.begin() + length);
        length += text.size();
        characters[length] = '\0';
    }
};

// A comment as far as it has been read: of one of any length only what its score depends on.
struct GameComment {
    TextStart start;
    TextStart eval;                // behind the first "eval ", up to the next ",", without blanks in front
    uint64_t last_characters = 0;  // the latest eight, one a byte
    bool has_book = false;         // the words and signs that it holds
    bool has_slash = false;
    bool has_eval = false;
    bool in_eval = false;
    bool empty_eval = true;  // nothing at all stands there
};

// Begins a new comment in the place of an old one.
inline void ClearComment(GameComment* comment) {
    comment->start.Clear();
    comment->eval.Clear();
    comment->last_characters = 0;
    comment->has_book = comment->has_slash = comment->has_eval = comment->in_eval = false;
    comment->empty_eval = true;
}

void AddToComment(GameComment* comment, std::string_view part);

// The score that the comment behind a move gives it, in centipawns as the mover sees it, 0 for a book move. Nothing if
// the comment tells none. `black` tells who made the move: some comments are written as white sees it.
std::optional<int16_t> ScoreOfComment(const GameComment& comment, bool black);

}  // namespace vrel
