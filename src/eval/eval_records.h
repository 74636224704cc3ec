#pragma once

#include <array>
#include <cstdint>

// Entries of the two evaluation caches, which each SearchThread owns, and the block that the evaluation report reads.
namespace vrel {

struct EvalHashEntry {
    uint64_t key;   // full position key
    int16_t score;  // from the view of `side`
    std::array<int16_t, 2> hung_value;
    std::array<int8_t, 2> free_pawn_rank;
    uint8_t side;
};

struct PawnHashEntry {
    uint64_t key;                         // pawn_hash
    std::array<uint64_t, 2> attack_span;  // squares that the side's pawns attack now or could by advancing
    std::array<uint64_t, 2> passed;
    std::array<int16_t, 2> score_op;
    std::array<int16_t, 2> score_en;
    std::array<uint16_t, 2> pawn_files;  // bit f: a pawn on file f
};

// Written by Evaluate at ply 0 and 1, read by ShowEvalInfo. Only one-worker searches on the main thread make it
// meaningful. All figures are centipawns by side, blended for the stage of the game.
struct EvalReport {
    std::array<int16_t, 64> eval_by_square{};
    int16_t report_stage = 0;
    std::array<int16_t, 2> report_mtl{};
    std::array<int16_t, 2> report_pos{};
    std::array<int16_t, 2> report_passers{};
    std::array<int16_t, 2> report_pawns{};
    std::array<int16_t, 2> report_knights{};
    std::array<int16_t, 2> report_bishops{};
    std::array<int16_t, 2> report_rooks{};
    std::array<int16_t, 2> report_queens{};
    std::array<int16_t, 2> report_kings{};
    uint64_t report_hung = 0;
    uint64_t report_pinned = 0;
    std::array<int8_t, 2> report_free_rank{};
    double report_draw_adj = 1.0;
};

}  // namespace vrel
