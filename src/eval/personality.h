#pragma once

#include <array>
#include <cstdint>

// Weights of the evaluation and settings of the search's selectivity. Changed by the main thread between searches
// only, read by every thread.
namespace vrel {

struct PersonalityRecord {
    int16_t pawn_value_op = 80, pawn_value_en = 102;
    int16_t knight_value_op = 335, knight_value_en = 325;
    int16_t bishop_value_op = 335, bishop_value_en = 330;
    int16_t rook_value_op = 455, rook_value_en = 580;
    int16_t queen_value_op = 1000, queen_value_en = 1080;
    int16_t bishop_pair = 36;
    int16_t ppawn_r7 = 120;
    int16_t pawn_isolated = -8;
    int16_t pawn_backward = -4;
    int16_t pawn_doubled = -5;
    int16_t pawn_weak = -8;
    int16_t pawn_candidate = 16;
    int16_t knight_mobility = 68;
    int16_t knight_outpost = 15;
    int16_t bishop_mobility = 50;
    int16_t bishop_trapped = -100;
    int16_t rook_mobility = 40;
    int16_t rook_open_file = 14;
    int16_t rook_half_open_file = 4;
    int16_t rook_rank7 = 15;
    int16_t rook_trapped = -25;
    int16_t queen_mobility = 30;
    int16_t queen_rank7 = 6;
    int16_t pawn_shield = 9;
    int16_t pawn_storm = 12;
    int16_t king_safety = 110;
    int16_t hung = -17;
    int16_t pinned = -17;
    int16_t PST_P_op = 90, PST_P_en = 15;
    int16_t PST_N_op = 57, PST_N_en = 48;
    int16_t PST_B_op = 17, PST_B_en = 18;
    int16_t PST_R_op = 24, PST_R_en = 0;
    int16_t PST_Q_op = 13, PST_Q_en = 32;
    int16_t PST_K_op = 175, PST_K_en = 70;
    int16_t contempt = 0;
    int8_t SE = 0;  // can be set, read by nothing
    int8_t RP_depth = 2;
    int8_t CNP_depth = 3;
    int8_t NMP_depth = 3;
    int8_t LMP_depth = 4;
    int8_t LMR_depth = 3;
    std::array<int16_t, 8> RP_margin{};  // by depth, as are the next three
    std::array<int16_t, 8> CNP_margin{};
    std::array<int16_t, 8> FP_margin{};
    std::array<int8_t, 8> LMP_count{};
    std::array<std::array<int8_t, 32>, 70> LMR_table1{};  // PV nodes, by depth and move number
    std::array<std::array<int8_t, 32>, 70> LMR_table2{};  // all other nodes
    int16_t tune = 8;                                     // scratch parameter for trying the tuner, read by nothing
};

extern PersonalityRecord Personality;
extern PersonalityRecord DefaultPersonality;

// Sets Personality to its defaults, margins and reduction tables included, and copies it to DefaultPersonality.
void InitPersonality();

// Number of weights that the gradient descent of the tuner works on.
inline constexpr int TUNED_WEIGHTS = 45;

// The weight with that index in the tuner's order, 0 to TUNED_WEIGHTS - 1; null for any other index.
int16_t* TunedWeight(PersonalityRecord* record, int index);

// The field with a keyword of the console's `tune`, or null. `record` is Personality or a copy of it.
int16_t* FindWeight(PersonalityRecord* record, const char* name);
// The selectivity field with a keyword of the console's `set`, or null.
int8_t* FindSelectivity(PersonalityRecord* record, const char* name);

}  // namespace vrel
