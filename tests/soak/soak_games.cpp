// Plays games of the engine against itself over pipes and reports what went wrong.
//
//     soak_games PROGRAM GAMES BASE_MS INCREMENT_MS WORKERS AT_A_TIME [SEED]
//
// Exit status 0 if no game had a fault.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/referee.h"

namespace {

struct Totals {
    std::mutex lock;
    std::map<std::string, int> results;
    long plies = 0;
    int faulty = 0;
    double worst_overrun = -1e9;
    double least_clock = 1e9;
};

void Add(const vrel::GameRecord& game, unsigned seed, Totals* totals) {
    const std::lock_guard guard(totals->lock);
    ++totals->results[game.result.empty() ? "unfinished" : game.result];
    totals->plies += game.plies;
    totals->worst_overrun = std::max(totals->worst_overrun, game.worst_overrun);
    totals->least_clock = std::min(totals->least_clock, game.least_clock);
    totals->faulty += !game.faults.empty();
    for (const std::string& fault : game.faults)
        std::printf("game %u: %s\n", seed, fault.c_str());
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 7) {
        std::fprintf(stderr, "usage: soak_games PROGRAM GAMES BASE_MS INCREMENT_MS WORKERS AT_A_TIME [SEED]\n");
        return 2;
    }
    const int games = std::atoi(argv[2]);
    const int at_a_time = std::atoi(argv[6]);
    const auto seed = static_cast<unsigned>(argc > 7 ? std::atoi(argv[7]) : 1);
    const auto folder = std::filesystem::temp_directory_path() / ("vrel_soak_" + std::to_string(seed));
    Totals totals;
    std::atomic<int> next = 0;
    const auto play = [&](int lane) {
        for (int game = next++; game < games; game = next++) {
            vrel::GameSettings settings{.program = argv[1],
                                        .folder = (folder / std::to_string(lane)).string(),
                                        .workers = std::atoi(argv[5]),
                                        .base = std::atoi(argv[3]) / 1000.0,
                                        .increment = std::atoi(argv[4]) / 1000.0,
                                        .seed = seed + static_cast<unsigned>(game)};
            Add(vrel::PlayGame(settings), settings.seed, &totals);
        }
    };
    std::vector<std::thread> lanes;
    for (int lane = 0; lane < at_a_time; ++lane)
        lanes.emplace_back(play, lane);
    for (std::thread& lane : lanes)
        lane.join();
    std::filesystem::remove_all(folder);
    for (const auto& [result, count] : totals.results)
        std::printf("%-10s %d\n", result.c_str(), count);
    std::printf("%d games, %ld plies, %d with faults, slowest overrun of the target %.1f ms, least clock %.1f ms\n",
                games, totals.plies, totals.faulty, totals.worst_overrun * 1000, totals.least_clock * 1000);
    return totals.faulty != 0;
}
