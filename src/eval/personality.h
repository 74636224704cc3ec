#pragma once

#include <array>
#include <cstdint>

// Weights of the evaluation and settings of the search's selectivity. Changed by the main thread between searches
// only, read by every thread.
namespace vrel {

// Who works on a weight: the tuner's gradient descent, the console's `tune`, which has the name as a keyword, or both.
// "player2.par" may set them all.
enum WeightUse : int { DESCENT = 1, KEYWORD = 2, BOTH = DESCENT | KEYWORD };

// The weights: name, default, use. A new one is a row here and nothing else: the fields of the record, their defaults,
// the tuner's list and the look-up by name follow. The tuner numbers its parameters by this order; what it doesn't work
// on comes last. `tune` is a scratch weight for trying the tuner, which nothing reads.
#define VREL_WEIGHTS(ROW)             \
    ROW(pawn_value_op, 80, BOTH)      \
    ROW(pawn_value_en, 102, BOTH)     \
    ROW(knight_value_op, 335, BOTH)   \
    ROW(knight_value_en, 325, BOTH)   \
    ROW(bishop_value_op, 335, BOTH)   \
    ROW(bishop_value_en, 330, BOTH)   \
    ROW(rook_value_op, 455, BOTH)     \
    ROW(rook_value_en, 580, BOTH)     \
    ROW(queen_value_op, 1000, BOTH)   \
    ROW(queen_value_en, 1080, BOTH)   \
    ROW(bishop_pair, 36, BOTH)        \
    ROW(knight_mobility, 68, BOTH)    \
    ROW(bishop_mobility, 50, BOTH)    \
    ROW(rook_mobility, 40, BOTH)      \
    ROW(queen_mobility, 30, BOTH)     \
    ROW(ppawn_r7, 120, BOTH)          \
    ROW(pawn_doubled, -5, BOTH)       \
    ROW(pawn_backward, -4, BOTH)      \
    ROW(pawn_isolated, -8, BOTH)      \
    ROW(pawn_weak, -8, BOTH)          \
    ROW(pawn_candidate, 16, BOTH)     \
    ROW(knight_outpost, 15, BOTH)     \
    ROW(bishop_trapped, -100, BOTH)   \
    ROW(rook_open_file, 14, BOTH)     \
    ROW(rook_half_open_file, 4, BOTH) \
    ROW(rook_rank7, 15, BOTH)         \
    ROW(rook_trapped, -25, BOTH)      \
    ROW(queen_rank7, 6, BOTH)         \
    ROW(king_safety, 110, BOTH)       \
    ROW(pawn_shield, 9, BOTH)         \
    ROW(pawn_storm, 12, BOTH)         \
    ROW(PST_P_op, 90, BOTH)           \
    ROW(PST_P_en, 15, BOTH)           \
    ROW(PST_N_op, 57, BOTH)           \
    ROW(PST_N_en, 48, BOTH)           \
    ROW(PST_B_op, 17, BOTH)           \
    ROW(PST_B_en, 18, BOTH)           \
    ROW(PST_R_op, 24, BOTH)           \
    ROW(PST_R_en, 0, DESCENT)         \
    ROW(PST_Q_op, 13, BOTH)           \
    ROW(PST_Q_en, 32, BOTH)           \
    ROW(PST_K_op, 175, BOTH)          \
    ROW(PST_K_en, 70, BOTH)           \
    ROW(hung, -17, BOTH)              \
    ROW(pinned, -17, BOTH)            \
    ROW(tune, 8, KEYWORD)

// Depths from or up to which a pruning applies, in plies: name, default. All are keywords of the console's `set`. `SE`
// can be set and is read by nothing.
#define VREL_SELECTIVITY(ROW) \
    ROW(SE, 0)                \
    ROW(NMP_depth, 3)         \
    ROW(RP_depth, 2)          \
    ROW(CNP_depth, 3)         \
    ROW(LMP_depth, 4)         \
    ROW(LMR_depth, 3)

// All weights and settings; a copy is a player of a match.
struct PersonalityRecord {
#define VREL_FIELD(name, value, use) int16_t name = value;
    VREL_WEIGHTS(VREL_FIELD)
#undef VREL_FIELD

#define VREL_FIELD(name, value) int8_t name = value;
    VREL_SELECTIVITY(VREL_FIELD)
#undef VREL_FIELD

    int16_t contempt = 0;                // centipawns that a draw is worth to the root side; no keyword
    std::array<int16_t, 8> RP_margin{};  // by depth, as are the next three
    std::array<int16_t, 8> CNP_margin{};
    std::array<int16_t, 8> FP_margin{};
    std::array<int8_t, 8> LMP_count{};
    std::array<std::array<int8_t, 32>, 70> LMR_table1{};  // PV nodes, by depth and move number
    std::array<std::array<int8_t, 32>, 70> LMR_table2{};  // all other nodes
};

extern PersonalityRecord Personality;
extern PersonalityRecord DefaultPersonality;

// Sets Personality to its defaults, margins and reduction tables included, and copies it to DefaultPersonality.
void InitPersonality();

// Number of weights that the gradient descent of the tuner works on: a sum with a term for each row.
#define VREL_COUNT(name, value, use) +(((use)&DESCENT) != 0)  // NOLINT(bugprone-macro-parentheses)
inline constexpr int TUNED_WEIGHTS = 0 VREL_WEIGHTS(VREL_COUNT);
#undef VREL_COUNT

// The weight with that index in the tuner's order, 0 to TUNED_WEIGHTS - 1; null for any other index.
int16_t* TunedWeight(PersonalityRecord* record, int index);

// The weight of that name, or null; the same among the keywords of the console's `tune` alone. `record` is Personality
// or a copy of it.
int16_t* FindWeight(PersonalityRecord* record, const char* name);
int16_t* FindKeyword(PersonalityRecord* record, const char* name);
// The selectivity field with a keyword of the console's `set`, or null.
int8_t* FindSelectivity(PersonalityRecord* record, const char* name);

}  // namespace vrel
