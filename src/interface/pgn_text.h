#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "board/position.h"
#include "interface/pgn_lines.h"
#include "platform/file.h"

// The one reader of PGN, for all that is done with games in files: it finds the tags, the games that begin with them,
// the words of their text that are moves, and the comments.
namespace vrel {

enum Winner : int { WHITE_WON = WHITE, BLACK_WON = BLACK, NOBODY_WON = 2 };

// What its tags say of a game.
struct PgnGame {
    std::string fen;  // the position that it starts from; empty for the start position
    int winner = NOBODY_WON;
    bool foreign = false;  // it follows other rules than those of chess: none of its text is given out
};

// What the reader comes upon, in this order: the text before the first tag as a game without tags, then games, the
// start of each behind its tags.
enum PgnItem {
    PGN_GAME,         // a game begins; its first tag line is the next item
    PGN_TAG,          // a line with a tag
    PGN_START,        // all tags of the game are known, its text begins, be there any or not
    PGN_LINE,         // a line of text, of which the moves and comments follow
    PGN_MOVE,         // a word that stands for a move
    PGN_COMMENT,      // a part of a comment, within a line
    PGN_COMMENT_END,  // the comment is over
    PGN_END,          // of the file
};

// The book knows castling in digits, which others pass over, and takes any line that holds a result for a tag line.
enum PgnDialect { PGN_PLAIN, PGN_FOR_BOOK };

class PgnReader {
public:
    // Reads a file from its start; `name` as PgnLines has it.
    PgnReader(File* file, const char* name, PgnDialect dialect = PGN_PLAIN) : lines_(file, name), dialect_(dialect) {}

    PgnItem Next();

    // The line at hand, tabs made blanks; and as it stands in the file, without its end.
    std::string_view line() const { return line_; }
    std::string_view line_as_it_stands() const { return lines_.as_it_stands(); }

    // PGN_MOVE: the text of the move, free of what surrounds it; one that stands for no move at all may be any text.
    // PGN_COMMENT: the part of the comment; a line's end is a blank. Both hold until the next call.
    std::string_view text() const { return text_; }

    // The game at hand; complete from PGN_START on.
    const PgnGame& game() const { return game_; }

    // No more moves and comments of this game are wanted.
    void SkipGame() { over_ = true; }

private:
    enum Stage { NEXT_LINE, TAG_LINE, TEXT_LINE, IN_TEXT, AFTER_LAST };

    void ReadLine();
    bool TakeStart();
    bool IsTagLine() const;
    bool BeginsGame() const;
    void BeginGame();
    void ReadTag();
    bool ReadText(PgnItem* item);
    bool GoToNextComment();
    bool ReadComment(PgnItem* item);
    bool ReadWord(PgnItem* item);
    std::string_view TakeWord();
    bool TakeMove(std::string_view word);
    bool IsGivenOut() const { return brackets_ == 0 && !over_; }

    PgnLines lines_;
    PgnDialect dialect_;
    Stage stage_ = NEXT_LINE;
    std::string_view line_;
    std::string_view text_;
    std::string word_;          // room for a word that isn't one piece in its line
    const char* at_ = nullptr;  // the character of the line that is read next
    const char* end_ = nullptr;

    PgnGame game_;
    bool start_due_ = true;   // PGN_START hasn't been given out
    bool after_text_ = true;  // what isn't blank stands before the line at hand, and is no tag
    bool has_event_ = false;  // among the tags of the game
    bool over_ = false;       // moves and comments up to the next tag don't count
    int64_t braces_ = 0;      // open ones
    int64_t brackets_ = 0;    // the same for variations
};

// Sets up the position that a game starts from.
void SetUpGame(Position* pos, const PgnGame& game);

}  // namespace vrel
