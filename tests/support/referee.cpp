#include "support/referee.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <regex>
#include <sstream>

#include "support/engine_process.h"
#include "support/playout.h"

namespace vrel {

namespace {

constexpr int OPENING_PLIES = 8;
constexpr int LONGEST_GAME = 600;
constexpr int HANG = 20000;  // milliseconds
constexpr double OVERHEAD = 0.025;
constexpr double MOST_EXTENSION = 0.15;
constexpr const char* START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

using Clock = std::chrono::steady_clock;

double SecondsFrom(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// The longest time that a move may take by the engine's own rules, with every extension: sudden death.
double LongestTime(double clock, double increment, int ply) {
    const int moves = ply > 25 ? 24 : 36 - ply / 2;
    double target = clock / (moves + 1) * 1.1;
    if (clock > 4 * OVERHEAD)
        target += increment * clock / (2 * increment + clock);
    target = std::max(std::min(target, clock * 0.65 - 4 * OVERHEAD), 0.002);
    return target + MOST_EXTENSION * clock;
}

bool LineIsLegal(oracle::Board board, const std::string& moves) {
    std::istringstream words(moves);
    std::string word;
    while (words >> word) {
        oracle::Move move;
        if (!oracle::FindLegalMove(board, word, &move))
            return false;
        board = oracle::AfterMove(board, move);
    }
    return true;
}

struct Player {
    std::unique_ptr<EngineProcess> engine;
    double clock;
};

Player StartPlayer(const GameSettings& settings, const char* name) {
    Player player{std::make_unique<EngineProcess>(settings.program, std::vector<std::string>{"-nolog"},
                                                  settings.folder + "/" + name),
                  settings.base};
    player.engine->Send("uci");
    player.engine->WaitFor("uciok", HANG);
    player.engine->Send("setoption name Hash value 16");
    player.engine->Send("setoption name Threads value " + std::to_string(settings.workers));
    player.engine->Send("ucinewgame");
    player.engine->Send("isready");
    player.engine->WaitFor("readyok", HANG);
    return player;
}

// A result by the rules, empty while the game goes on.
std::string ResultOf(const oracle::Board& board, std::map<std::string, int>* seen) {
    if (oracle::LegalMoves(board).empty()) {
        if (!oracle::InCheck(board, board.white_to_move))
            return "1/2-1/2";
        return board.white_to_move ? "0-1" : "1-0";
    }
    const bool repeated = ++(*seen)[oracle::WriteFen(board)] >= 3;
    return repeated || board.quiet_plies >= 100 || oracle::DeadByMaterial(board) ? "1/2-1/2" : "";
}

std::string ClockText(const Player& white, const Player& black, double increment) {
    const auto ms = [](double seconds) { return std::to_string(static_cast<long>(std::max(seconds, 0.0) * 1000)); };
    return "go wtime " + ms(white.clock) + " btime " + ms(black.clock) + " winc " + ms(increment) + " binc " +
           ms(increment);
}

}  // namespace

std::string CheckInfoLine(const oracle::Board& board, const std::string& line) {
    static const std::regex result(
        R"(info (multipv \d+ )?depth \d+ time \d+ score cp (-?\d+) nodes \d+ nps \d+ pv((?: [a-h][1-8][a-h][1-8][qnbr]?)+))");
    static const std::regex progress(
        R"(info (depth \d+ time \d+ nodes \d+ nps \d+ hashfull \d+|currmove [a-h][1-8][a-h][1-8] currmovenumber \d+|string .*))");
    std::smatch parts;
    if (std::regex_match(line, progress))
        return "";
    if (!std::regex_match(line, parts, result))
        return "not an info line: " + line;
    if (std::abs(std::stoi(parts[2])) > 10000)
        return "score out of range: " + line;
    if (!LineIsLegal(board, parts[3]))
        return "illegal line in " + oracle::WriteFen(board) + ": " + line;
    return "";
}

std::string CheckBestMove(const oracle::Board& board, const std::string& line, std::string* move) {
    std::istringstream words(line);
    std::string bestmove, ponder, reply;
    words >> bestmove >> *move >> ponder >> reply;
    if (!LineIsLegal(board, *move + " " + reply))
        return "illegal reply in " + oracle::WriteFen(board) + ": " + line;
    return "";
}

GameRecord PlayGame(const GameSettings& settings) {
    GameRecord record;
    record.least_clock = settings.base;
    Player players[2] = {StartPlayer(settings, "white"), StartPlayer(settings, "black")};
    std::mt19937 random(settings.seed);
    oracle::Board board;
    oracle::ReadFen(START, &board);
    std::string moves;
    std::map<std::string, int> seen;
    while (record.faults.empty() && record.plies < LONGEST_GAME) {
        record.result = ResultOf(board, &seen);
        if (!record.result.empty())
            break;
        std::string text;
        if (record.plies < OPENING_PLIES) {
            const auto legal = oracle::LegalMoves(board);
            text = oracle::MoveText(legal[RandomBelow(&random, legal.size())]);
        } else {
            Player& player = players[board.white_to_move ? 0 : 1];
            player.engine->Send("position startpos" + (moves.empty() ? "" : " moves" + moves));
            const double longest = LongestTime(player.clock, settings.increment, record.plies);
            const auto start = Clock::now();
            player.engine->Send(ClockText(players[0], players[1], settings.increment));
            std::vector<std::string> lines;
            if (!player.engine->WaitFor("bestmove", HANG, &lines)) {
                record.faults.push_back("no reply in " + oracle::WriteFen(board));
                break;
            }
            const double taken = SecondsFrom(start);
            record.worst_overrun = std::max(record.worst_overrun, taken - longest);
            player.clock -= taken;
            record.least_clock = std::min(record.least_clock, player.clock);
            if (player.clock < 0)
                record.faults.push_back("time forfeit after " + std::to_string(taken) + " s, allowed " +
                                        std::to_string(longest) + " s, in " + oracle::WriteFen(board));
            player.clock += settings.increment;
            for (const std::string& line : lines) {
                const std::string fault =
                    line.rfind("bestmove", 0) == 0 ? CheckBestMove(board, line, &text) : CheckInfoLine(board, line);
                if (!fault.empty())
                    record.faults.push_back(fault);
            }
            if (!record.faults.empty())
                break;
        }
        oracle::Move move;
        oracle::FindLegalMove(board, text, &move);
        board = oracle::AfterMove(board, move);
        moves += " " + text;
        ++record.plies;
    }
    for (Player& player : players)
        if (player.engine->Quit(HANG) != 0)
            record.faults.push_back("the program did not end in order");
    return record;
}

}  // namespace vrel
