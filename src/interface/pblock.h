#pragma once

#include <array>
#include <cstdint>

#include "board/eval_records.h"
#include "board/position.h"
#include "platform/relaxed.h"

// The control record: what commands set, what the search publishes, and the flags by which the main thread and the
// workers steer each other.
namespace vrel {

enum SearchState : uint8_t { STATE_IDLE = 0, STATE_THINKING = 1, STATE_PONDERING = 2, STATE_ANALYSING = 3 };

// Values of `stop`: who asked. Readers test for zero only.
enum StopReason : uint8_t {
    STOP_NONE = 0,
    STOP_TIME = 1,     // time up, `stop`, node limit, end of the iterations, book move
    STOP_COMMAND = 2,  // a command replaces the search, or time up while analysing
    STOP_NO_MOVE = 3,  // mate or stalemate at the root
    STOP_POOL = 99     // the pool goes down
};

inline constexpr int MODE_CONSOLE = 0;
inline constexpr int MODE_UCI = 2;

inline constexpr int MAX_DEPTH = 66;
inline constexpr int FILE_NAME = 140;
inline constexpr double SILENT = 9999.0;  // value of `noise` for no lines at all

struct ControlBlock {
    Relaxed<int8_t> nthreads{1};
    Relaxed<uint8_t> quit{0};    // ends the game loop and the offline tools
    Relaxed<uint8_t> failed{0};  // a command has given up its work: the exit status tells

    // The published line: written by worker 1 under spinlock1, reset by InitSearch.
    Relaxed<int8_t> depth{0};
    Relaxed<int8_t> done_depth{0};  // highest iteration that worker 1 has finished
    Relaxed<int16_t> score{0};      // NO_SCORE before there is a line; 0 for a book move
    std::array<Relaxed<int16_t>, FRAMES> depth_score{};
    std::array<Relaxed<uint16_t>, FRAMES> depth_move{};
    Relaxed<int8_t> change_depth{0};  // depth at which the best move last changed
    Relaxed<int8_t> easy{0};          // 1: a single legal move; 2: the best move is far ahead of all others

    Relaxed<uint8_t> stop{0};  // nonzero tells the search to end; several writers, each only asks for an end
    Relaxed<int8_t> max_depth{MAX_DEPTH};
    Relaxed<int64_t> max_nodes{0};  // of one worker; 0 for none

    // Time control, seconds.
    Relaxed<int8_t> level_moves{1};  // 0 sudden death; 1 fixed time per move; above 1 a control of so many moves
    Relaxed<double> level_time{5.0};
    Relaxed<double> inc{0.0};  // of the side to move
    std::array<Relaxed<double>, 2> clock{Relaxed<double>{5.0}, Relaxed<double>{5.0}};
    Relaxed<int16_t> moves_to_go{0};
    Relaxed<double> trg_time{1.0};
    Relaxed<double> elapsed{0.0};  // refreshed by GetElapsedTime
    Relaxed<double> overhead{0.025};

    Relaxed<uint8_t> state{STATE_IDLE};
    Relaxed<uint8_t> request{0};  // search asked for by a command: the state that it shall have

    Relaxed<uint8_t> use_book{0};
    Relaxed<int16_t> book_random{20};
    Relaxed<uint8_t> use_hash{1};  // 0 no table; 1 table, cleared at each console analysis; above 1 kept
    Relaxed<int16_t> ponder{1};
    Relaxed<int16_t> hash_mb{64};
    Relaxed<double> hash_fill{0.0};  // share of filled entries, 0 to 1
    Relaxed<uint16_t> tt_age{0};
    Relaxed<double> noise{0.0};  // seconds of search before info lines start
    Relaxed<int16_t> log{1};
    Relaxed<int16_t> trace{0};
    Relaxed<int16_t> debug{0};
    Relaxed<int16_t> multipv{1};
    std::array<Relaxed<Move>, FRAMES> pv{};  // published line; pv[1] the best move, pv[2] the ponder move

    std::array<char, FILE_NAME> epd_file{};
    std::array<char, FILE_NAME> figures_file{};  // of the analysis of epd_file, empty for none
    std::array<char, FILE_NAME> match_file{};
    std::array<char, FILE_NAME> book_file{};
    Move epd_best = 0;  // expected best move of an EPD position, 0xffff for none
    std::array<Relaxed<int16_t>, 2> draw_score{};
    EvalReport report;
    uint64_t tagged_key = 0;
    Relaxed<int16_t> mode{MODE_UCI};
};

extern ControlBlock PBlock;

extern Relaxed<int> uci_extra;  // longer info lines
extern int computer;            // side that the engine was last told to play, 2 for none
extern int selfplay;            // nonzero while the program plays both sides

// All fields back to their defaults.
void SetDefaults();

// Copies a file name into one of the fixed buffers. False, and an empty name, if it is too long.
bool CopyText(std::array<char, FILE_NAME>* dest, const char* text);

}  // namespace vrel
