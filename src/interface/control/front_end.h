#pragma once

// What a program that shows games asks of the engine, which knows the rules: the legal moves, and the games of a file.
// Scores are told in centipawns as white sees them.
namespace vrel {

// Shows the position of the game, how it stands with the game, and each legal move with the position behind it:
//     position FEN
//     state play           or mate, stalemate, repetition, fifty, material, impossible; "check" behind it
//     legal e2e4 e4 FEN
//     legal end
void ShowLegalMoves();

// Lists the games of a PGN file, each with its number, its plies and what its tags say of players, event, date and
// result; a tab stands between tags. Text before the first tag is game 0.
//     game 1 57 [Event "x"]\t[White "y"]
//     games end
void ShowGames(const char* file);

// Reads a game of the list as the game at hand and shows its tags, its start and its moves, each with its score: of the
// position in which it was made, as a mover notes it, or of that behind it, as annotators do.
//     tag [Event "x"]
//     position FEN
//     move e2e4 e4 FEN
//     score 35             or "eval 35"
//     doubtful             a doubtful move, as the scanner has it
//     game end
// What can't be read is told before the end: "unread TEXT" a text that is no move here, "foreign" other rules than
// those of chess, "cut N" a game of which the first N plies are read.
void ShowGameOfFile(const char* file, int number);

}  // namespace vrel
