#pragma once

#include <string>

#include "support/engine.h"

namespace vrel {

// Everything that the rules say of each pseudo-legal move of a position: a line "fen ..." and a line a move, in the
// order of generation. The columns: move, legal, check, exchange value, safe, threat, castling, pawn push, and the
// three forms of text ("-" for an empty one).
std::string RulesText(const std::string& fen);

}  // namespace vrel
