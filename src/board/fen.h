#pragma once

#include "board/position.h"

// Positions as text: FEN and the position part of EPD.
namespace vrel {

inline constexpr const char* fen_opn = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

// Enough for any text that MakeEPD writes.
inline constexpr int EPD_TEXT = 128;

// Reads FEN or EPD text into `pos`; counters and operations behind the fourth field are not read. Text that is no
// FEN is taken as far as it goes. Starts a new game record: no past, fifty-move counter 0.
void SetPosition(Position* pos, const char* fen);

// Writes the four fields into `text`, which has room for EPD_TEXT characters.
void MakeEPD(const Position& pos, char* text);

// The last steps of any set-up: keys, and a past of zeros.
void StartRecord(Position* pos);

}  // namespace vrel
