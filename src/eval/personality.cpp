#include "eval/personality.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vrel {

PersonalityRecord Personality;
PersonalityRecord DefaultPersonality;

namespace {

struct WeightName {
    const char* name;
    int16_t PersonalityRecord::*field;
};

// In the order of the tuner's parameters; `tune` closes the table and is a keyword only.
constexpr std::array<WeightName, TUNED_WEIGHTS + 1> kWeights = {{
    {"pawn_value_op", &PersonalityRecord::pawn_value_op},
    {"pawn_value_en", &PersonalityRecord::pawn_value_en},
    {"knight_value_op", &PersonalityRecord::knight_value_op},
    {"knight_value_en", &PersonalityRecord::knight_value_en},
    {"bishop_value_op", &PersonalityRecord::bishop_value_op},
    {"bishop_value_en", &PersonalityRecord::bishop_value_en},
    {"rook_value_op", &PersonalityRecord::rook_value_op},
    {"rook_value_en", &PersonalityRecord::rook_value_en},
    {"queen_value_op", &PersonalityRecord::queen_value_op},
    {"queen_value_en", &PersonalityRecord::queen_value_en},
    {"bishop_pair", &PersonalityRecord::bishop_pair},
    {"knight_mobility", &PersonalityRecord::knight_mobility},
    {"bishop_mobility", &PersonalityRecord::bishop_mobility},
    {"rook_mobility", &PersonalityRecord::rook_mobility},
    {"queen_mobility", &PersonalityRecord::queen_mobility},
    {"ppawn_r7", &PersonalityRecord::ppawn_r7},
    {"pawn_doubled", &PersonalityRecord::pawn_doubled},
    {"pawn_backward", &PersonalityRecord::pawn_backward},
    {"pawn_isolated", &PersonalityRecord::pawn_isolated},
    {"pawn_weak", &PersonalityRecord::pawn_weak},
    {"pawn_candidate", &PersonalityRecord::pawn_candidate},
    {"knight_outpost", &PersonalityRecord::knight_outpost},
    {"bishop_trapped", &PersonalityRecord::bishop_trapped},
    {"rook_open_file", &PersonalityRecord::rook_open_file},
    {"rook_half_open_file", &PersonalityRecord::rook_half_open_file},
    {"rook_rank7", &PersonalityRecord::rook_rank7},
    {"rook_trapped", &PersonalityRecord::rook_trapped},
    {"queen_rank7", &PersonalityRecord::queen_rank7},
    {"king_safety", &PersonalityRecord::king_safety},
    {"pawn_shield", &PersonalityRecord::pawn_shield},
    {"pawn_storm", &PersonalityRecord::pawn_storm},
    {"PST_P_op", &PersonalityRecord::PST_P_op},
    {"PST_P_en", &PersonalityRecord::PST_P_en},
    {"PST_N_op", &PersonalityRecord::PST_N_op},
    {"PST_N_en", &PersonalityRecord::PST_N_en},
    {"PST_B_op", &PersonalityRecord::PST_B_op},
    {"PST_B_en", &PersonalityRecord::PST_B_en},
    {"PST_R_op", &PersonalityRecord::PST_R_op},
    {nullptr, &PersonalityRecord::PST_R_en},  // has no keyword
    {"PST_Q_op", &PersonalityRecord::PST_Q_op},
    {"PST_Q_en", &PersonalityRecord::PST_Q_en},
    {"PST_K_op", &PersonalityRecord::PST_K_op},
    {"PST_K_en", &PersonalityRecord::PST_K_en},
    {"hung", &PersonalityRecord::hung},
    {"pinned", &PersonalityRecord::pinned},
    {"tune", &PersonalityRecord::tune},
}};

struct SelectivityName {
    const char* name;
    int8_t PersonalityRecord::*field;
};

constexpr std::array<SelectivityName, 6> kSelectivity = {{
    {"SE", &PersonalityRecord::SE},
    {"NMP_depth", &PersonalityRecord::NMP_depth},
    {"RP_depth", &PersonalityRecord::RP_depth},
    {"CNP_depth", &PersonalityRecord::CNP_depth},
    {"LMP_depth", &PersonalityRecord::LMP_depth},
    {"LMR_depth", &PersonalityRecord::LMR_depth},
}};

// Reduction in PV nodes: late and small, and never down to the last three plies.
int ReductionPV(int depth, int number) {
    int plies = static_cast<int>(std::round(0.5 * std::sqrt(depth + number) - 1.25));
    if (plies >= depth - 2)
        plies = depth - 3;
    return std::clamp(std::min(plies, number / 2), 0, 2);
}

int ReductionOther(int depth, int number) {
    int plies = static_cast<int>(std::round(0.55 * std::sqrt(depth + number) - 0.25));
    if (plies >= depth - 1)
        plies = depth - 2;
    return std::clamp(std::min(plies, number), 0, 3);
}

}  // namespace

void InitPersonality() {
    PersonalityRecord p;
    for (int d = 0; d < 8; ++d) {
        p.RP_margin[d] = static_cast<int16_t>(100 + 75 * d);
        p.CNP_margin[d] = static_cast<int16_t>(75 * d);
        p.FP_margin[d] = static_cast<int16_t>(2 + 128 * d);
        p.LMP_count[d] = static_cast<int8_t>(3 * d);
    }
    for (int d = 0; d < 70; ++d)
        for (int m = 0; m < 32; ++m) {
            p.LMR_table1[d][m] = static_cast<int8_t>(ReductionPV(d, m));
            p.LMR_table2[d][m] = static_cast<int8_t>(ReductionOther(d, m));
        }
    Personality = p;
    DefaultPersonality = p;
}

int16_t* TunedWeight(PersonalityRecord* record, int index) {
    if (index < 0 || index >= TUNED_WEIGHTS)
        return nullptr;
    return &(record->*kWeights[index].field);
}

int16_t* FindWeight(PersonalityRecord* record, const char* name) {
    for (const WeightName& weight : kWeights)
        if (weight.name != nullptr && std::strcmp(weight.name, name) == 0)
            return &(record->*weight.field);
    return nullptr;
}

int8_t* FindSelectivity(PersonalityRecord* record, const char* name) {
    for (const SelectivityName& setting : kSelectivity)
        if (std::strcmp(setting.name, name) == 0)
            return &(record->*setting.field);
    return nullptr;
}

}  // namespace vrel
