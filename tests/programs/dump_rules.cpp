// Prints what the rules say of the positions on standard input, one FEN or EPD a line: a line "fen ..." and then a
// line for each pseudo-legal move in the order of generation. The columns: move, legal, check, exchange value, safe,
// threat, castling, pawn push, and the three forms of text ("-" for an empty one). An empty line ends a position.
#include <iostream>
#include <string>

#include "support/rules_text.h"

int main() {
    vrel::StartForTests();
    std::string line;
    while (std::getline(std::cin, line))
        if (!line.empty())
            std::cout << vrel::RulesText(line) << '\n';
    return 0;
}
