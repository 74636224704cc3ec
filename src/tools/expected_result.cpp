#include "tools/expected_result.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace vrel {

namespace {

constexpr int LIMIT = 10000;        // scores of the search don't go beyond it
constexpr double SLOPE = 0.002625;  // tenth powers per centipawn

using ResultTable = std::array<double, 2 * LIMIT + 1>;

double Logistic(int score) { return 1.0 / (1.0 + std::pow(10.0, -SLOPE * score)); }

ResultTable MakeTable() {
    ResultTable table;
    for (int score = -LIMIT; score <= LIMIT; ++score)
        table[score + LIMIT] = Logistic(score);
    return table;
}

}  // namespace

double ExpectedResult(int score) {
    // Tuning asks for every position of every run: a power each time would cost as much as the evaluation of a pawn
    // structure.
    static const ResultTable table = MakeTable();
    if (score < -LIMIT || score > LIMIT)
        return Logistic(score);
    return table[score + LIMIT];
}

}  // namespace vrel
