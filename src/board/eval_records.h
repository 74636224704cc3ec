#pragma once

#include <array>
#include <cstdint>

// Entries of the two evaluation caches, which each SearchThread owns, and the block that the evaluation report reads.
namespace vrel {

// An opening and an ending value in one word, so that a term adds both at once: the opening in the upper half, the
// ending in the lower. Pairs are added, subtracted and multiplied like numbers; each half is a 16-bit field.
using ScorePair = uint32_t;

constexpr ScorePair MakePair(int op, int en) { return (static_cast<ScorePair>(op) << 16) + static_cast<ScorePair>(en); }

// The same value for both.
constexpr ScorePair BothPair(int value) { return MakePair(value, value); }

// A negative ending value has borrowed one from the upper half; the addition gives it back.
constexpr int OpeningOf(ScorePair pair) { return static_cast<int16_t>((pair + 0x8000) >> 16); }
constexpr int EndingOf(ScorePair pair) { return static_cast<int16_t>(pair); }

// Four entries share a cache line.
struct EvalHashEntry {
    uint64_t key;   // full position key, for the weights in use
    int16_t score;  // from the view of `side`
    std::array<int16_t, 2> hung_value;
    uint8_t free_pawn_ranks;  // white's in the lower four bits, black's in the upper
    uint8_t side;
};
static_assert(sizeof(EvalHashEntry) == 16);

// Everything that follows from the pawns alone, in one cache line. The zeroed entry is right for a board without
// pawns: it shuts no ground.
struct alignas(64) PawnHashEntry {
    uint64_t key;                         // pawn_hash, for the weights in use
    std::array<uint64_t, 2> attack_span;  // squares that the side's pawns attack now or could by advancing
    uint64_t passed;                      // passed pawns of both sides
    std::array<uint64_t, 2> shut_ground;  // squares that no open line towards the side's king leads over
    std::array<ScorePair, 2> score;       // structure sums
    std::array<uint8_t, 2> pawn_files;    // bit f: a pawn on file f
    std::array<uint8_t, 2> shield_files;  // bit f: a pawn on the second or third rank of file f, as the side sees it
    std::array<uint8_t, 2> home_files;    // bit f: a pawn on file f in the side's own half
};
static_assert(sizeof(PawnHashEntry) == 64);

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
    uint64_t report_free = 0;  // passed pawns of both sides that nothing stops
    std::array<ScorePair, 2> report_mtl_pair{};
    std::array<ScorePair, 2> report_pos_pair{};
    double report_draw_adj = 1.0;
};

}  // namespace vrel
