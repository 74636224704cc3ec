#pragma once

// Positions of the bench: openings, quiet and wild middle games, and endings of every kind that the evaluation knows.
// A change of this list changes the node total.
namespace vrel {

inline constexpr const char* kStartPosition = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
inline constexpr const char* kBusyPosition = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -";
inline constexpr const char* kRookEnding = "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -";

inline constexpr const char* kBenchPositions[] = {
    kStartPosition,
    kBusyPosition,
    kRookEnding,
    "r1bqkbnr/1ppp1ppp/p1n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R w KQkq -",   // Spanish
    "rnbqkb1r/1p2pppp/p2p1n2/8/3NP3/2N5/PPP2PPP/R1BQKB1R w KQkq -",     // Sicilian
    "rnbqk2r/ppp1bppp/4pn2/3p2B1/2PP4/2N5/PP2PPPP/R2QKBNR w KQkq -",    // Queen's Gambit
    "rnbq1rk1/ppp1ppbp/3p1np1/8/2PPP3/2N2N2/PP3PPP/R1BQKB1R w KQ -",    // King's Indian
    "rnbqk1nr/pp3ppp/4p3/2ppP3/1b1P4/2N5/PPP2PPP/R1BQKBNR w KQkq -",    // French
    "r1bqk1nr/pppp1ppp/2n5/4p3/1bB1P3/3P1N2/PPP2PPP/RNBQK2R w KQkq -",  // white is in check
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - -",
    "r2q1rk1/pp1bbppp/2n1pn2/8/2BP4/P1N2N2/1P2QPPP/R1BR2K1 w - -",     // isolated queen's pawn
    "r1bq1rk1/pp2nppp/2n1p3/2ppP3/3P4/P1PB1N2/2P2PPP/R1BQK2R b KQ -",  // blocked centre
    "r1b2rk1/1pq1bppp/p1nppn2/8/3NPP2/2N1B3/PPPQB1PP/2KR3R w - -",     // kings on opposite wings
    "2rr3k/pp3pp1/1nnqbN1p/3pN3/2pP4/2P3Q1/PPB4P/R4RK1 w - -",         // attack on the king
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ -",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq -",
    "8/5pk1/4p1p1/3pP2p/1r3P1P/4K1P1/R7/8 b - -",      // rooks and pawns
    "1K1k4/1P6/8/8/8/8/r7/2R5 w - -",                  // rook and pawn against rook
    "6k1/5pp1/p3q2p/1p6/8/P1Q4P/1P3PP1/6K1 w - -",     // queens and pawns
    "8/5pk1/3b2p1/p2p4/P2P1P2/2B3KP/1P6/8 w - -",      // bishops of opposite colours
    "8/pp3k2/2p2p2/3n1p1p/3P3P/1P2BPP1/P4K2/8 b - -",  // bishop against knight
    "8/p4k2/1p3p2/3p1Pp1/P2P2P1/1P2K3/8/8 w - -",      // pawns alone
    "8/k7/3p4/p2P1p2/P2P1P2/8/8/K7 w - -",             // the same, only the long way wins
    "8/8/8/3k4/8/2K5/4B3/5N2 w - -",                   // mate with bishop and knight
    "8/8/8/8/5R2/2pk4/8/5K2 b - -",                    // rook against a pawn
};

}  // namespace vrel
