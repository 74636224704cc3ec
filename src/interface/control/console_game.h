#pragma once

#include <string>

#include "board/position.h"

// Console commands that step through games and keep them in files. All work on the game record.
namespace vrel {

// Shows how the evaluation sees the position of the game. Workers must be idle.
void ShowEvalInfo();

// What the figures of that report are blended from.
void ShowEvalParts();

// The board, or the evaluation report while `debug` is set.
void ShowGame();

// Gives both sides the whole time of the level.
void ResetClocks();

// Plays a move given as text, if it names exactly one; nothing otherwise.
void PlayMoveText(const char* text);

// Plays a move in any form that games have. False, and a word about it, if it can't be read.
bool PlayMoveOfGame(Position* game, const std::string& text);

void UndoMove();
void RedoMove();
// Goes to a ply of the game, or to its last move.
void JumpToPly(int ply);

// Loads a position from "test.epd" by its identifier.
void GetTestPosition(const char* identifier);

// Loads a game from a PGN file: by number, or the first with a line that contains the text.
void LoadGame(const char* file, const char* which);

// Appends the game to "tmp.pgn".
void SaveGame();

}  // namespace vrel
