#include "interface/control/uci.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/pblock.h"
#include "support/engine.h"

namespace vrel {
namespace {

class Uci : public EngineTest {
protected:
    void SetUp() override {
        SetDefaults();
        PBlock.log = 0;
        PBlock.hash_mb = 1;
        computer = 2;
        SetPosition(GamePosition(), fen_opn);
    }

    // Handles a line; what it prints.
    static std::string Send(const std::string& line) {
        testing::internal::CaptureStdout();
        EchoUciLine(line.c_str());
        UciCommand(line.c_str());
        return testing::internal::GetCapturedStdout();
    }

    static std::string Fen() { return FenOf(*GamePosition()); }
};

TEST_F(Uci, IntroducesItselfAndTurnsTheLogOff) {
    PBlock.log = 1;
    PBlock.use_book = 1;
    PBlock.mode = MODE_CONSOLE;
    EXPECT_EQ(Send("uci"),
              "CMD: uci\n"
              "id name Vrel 2.6\n"
              "id author Orin Tavelk\n"
              "option name Hash type spin default 64 min 0 max 8192\n"
              "option name Threads type spin default 1 min 1 max 64\n"
              "option name Ponder type check default true\n"
              "option name MultiPV type spin default 1 min 1 max 20\n"
              "option name Clear Hash type button\n"
              "option name Communication Overhead type spin default 25 min 0 max 5000\n"
              "option name OwnBook type check default false\n"
              "option name Log type check default false\n"
              "uciok\n");
    EXPECT_EQ(PBlock.log, 0);
    EXPECT_EQ(PBlock.use_book, 0);
    EXPECT_EQ(PBlock.mode, MODE_UCI);
}

TEST_F(Uci, ComparesCommandsExactly) {
    for (const char* line : {"", " ", "UCI", "ucii", "debug on", "register later", "isreadyy", "Quit"})
        EXPECT_EQ(Send(line), "") << line;
    EXPECT_EQ(PBlock.quit, 0);
    EXPECT_EQ(Send("  isready now"), "readyok\n");
}

struct OptionRow {
    const char* line;
    const char* message;
};

constexpr OptionRow options[] = {
    {"setoption name Hash value 2", "info string Hash size set to 2M bytes\n"},
    {"setoption name Hash value 0", "info string Hash size set to 0M bytes\n"},
    {"setoption name Hash value -5", "info string Hash size set to 0M bytes\n"},
    {"setoption name MultiPV value 3", "info string MultiPV set to 3\n"},
    {"setoption name MultiPV value 0", "info string MultiPV set to 1\n"},
    {"setoption name MultiPV value 99999999999", "info string MultiPV set to 20\n"},
    {"setoption name Threads value 0", "info string Threads set to 1\n"},
    {"setoption name Communication Overhead value 70", "info string Communication Overhead set to 70\n"},
    {"setoption name Communication Overhead value 5001", "info string Communication Overhead set to 5000\n"},
    {"setoption name Communication Overhead value -1", "info string Communication Overhead set to 0\n"},
    {"setoption name OwnBook value true", "info string OwnBook set to 1\n"},
    {"setoption name OwnBook value True", "info string OwnBook set to 0\n"},
    {"setoption name Log value false", "info string Log set to 0\n"},
    {"setoption name Log value untrue", "info string Log set to 1\n"},
    {"setoption name Ponder value false", ""},
    {"setoption name Clear Hash", "Hash table cleared\n"},
    {"setoption name   Clear Hash   ", "Hash table cleared\n"},
    {"setoption name Clear Hash value x", "Hash table cleared\n"},
    {"setoption name Clear  Hash", ""},
    {"setoption name clear hash", ""},
    {"setoption name MultiPV", ""},
    {"setoption value 3 name MultiPV", ""},
    {"setoption name   MultiPV   value   4   5", "info string MultiPV set to 4\n"},
    {"setoption xxname MultiPV valuevalue", "info string MultiPV set to 1\n"},
    {"setoption name value", ""},
    {"setoption", ""},
    {"setoption name Nonsense value 7", ""},
};

TEST_F(Uci, SetsOptions) {
    for (const OptionRow& row : options) {
        PBlock.log = 0;
        EXPECT_EQ(Send(row.line), row.message) << row.line;
    }
}

TEST_F(Uci, KeepsOptions) {
    Send("setoption name Communication Overhead value 70");
    EXPECT_EQ(PBlock.overhead, 0.07);
    Send("setoption name Ponder value TRUE");
    EXPECT_EQ(PBlock.ponder, 0);
    Send("setoption name Ponder value true");
    EXPECT_EQ(PBlock.ponder, 1);
    Send("setoption name OwnBook value true");
    EXPECT_EQ(PBlock.use_book, 1);
    Send("setoption name MultiPV value 7");
    EXPECT_EQ(PBlock.multipv, 7);
}

TEST_F(Uci, ClearsNoTableThatIsNotUsed) {
    PBlock.use_hash = 0;
    EXPECT_EQ(Send("setoption name Clear Hash"), "");
}

struct PositionRow {
    const char* line;
    const char* fen;
    int game_ply;
};

constexpr PositionRow positions[] = {
    {"position startpos", fen_opn, 0},
    {"position startpos moves", fen_opn, 0},
    {"position startpos moves e2e4 e7e5", "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6", 2},
    {"position startpos moves   e2e4   e7e5  ", "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6", 2},
    {"position fen 8/P6k/8/8/8/8/8/K7 w - - 3 9", "8/P6k/8/8/8/8/8/K7 w - -", 0},
    {"position fen 8/P6k/8/8/8/8/8/K7 w - - 3 9 moves a7a8n h7g6", "N7/8/6k1/8/8/8/8/K7 w - -", 2},
    {"position fen 8/P6k/8/8/8/8/8/K7 w - - moves a7a8x", "P7/7k/8/8/8/8/8/K7 b - -", 1},
    {"position fen r3k3/8/8/8/8/8/8/4K2R w Kq - moves e1g1 e8c8", "2kr4/8/8/8/8/8/8/5RK1 w - -", 2},
    // The list ends where a move can't be made.
    {"position startpos moves e2e4 e4e5 e7e6", "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3", 1},
    {"position startpos moves e2e9 e2e4", fen_opn, 0},
    {"position startpos moves e2 e2e4", fen_opn, 0},
    {"position startpos moves 0000 e2e4", fen_opn, 0},
    {"position startpos moves a1a2", fen_opn, 0},
    {"position startpos moves b1c3q", fen_opn, 0},
    {"position startpos moves E2E4", fen_opn, 0},
};

TEST_F(Uci, SetsPositions) {
    for (const PositionRow& row : positions) {
        SetPosition(GamePosition(), fen_opn);
        Send(row.line);
        EXPECT_EQ(Fen(), row.fen) << row.line;
        EXPECT_EQ(GamePosition()->game_ply, row.game_ply) << row.line;
        EXPECT_EQ(GamePosition()->undo[row.game_ply].move, NO_MOVE) << row.line;
        EXPECT_TRUE(PositionIsConsistent(*GamePosition())) << row.line;
    }
}

TEST_F(Uci, KeepsThePositionWithoutAText) {
    Send("position startpos moves e2e4");
    for (const char* line : {"position", "position moves e7e5", "position xyz moves e7e5", "position start pos"}) {
        Send(line);
        EXPECT_EQ(GamePosition()->game_ply, 1) << line;
    }
}

TEST_F(Uci, TakesAnyTextForAPosition) {
    for (const char* line :
         {"position fen", "position fen ", "position fenmoves", "position fen moves", "position fe fen",
          "position fen k", "position fen k w", "position fen moves moves moves"}) {
        Send(line);
        EXPECT_TRUE(PositionIsConsistent(*GamePosition())) << line;
    }
}

TEST_F(Uci, PlaysAGameOfAnyLength) {
    std::string line = "position startpos moves";
    for (int i = 0; i < 600; ++i)
        line += " g1f3 g8f6 f3g1 f6g8";
    Send(line);
    EXPECT_EQ(Fen(), fen_opn);
    EXPECT_TRUE(PositionIsConsistent(*GamePosition()));
    EXPECT_LT(GamePosition()->game_ply, UNDO_RECORDS);
}

struct GoRow {
    const char* line;
    int request;
    int level_moves;
    double level_time;
    double white, black, inc;
    int max_depth;
    int64_t max_nodes;
};

// White to move; before each line the clocks stand at 5 seconds, no limits.
constexpr GoRow searches[] = {
    {"go", 1, 0, 5, 5, 5, 0, 66, 0},
    {"go wtime 60000 btime 30000 winc 1000 binc 2000", 1, 0, 5, 60, 30, 1, 66, 0},
    {"go btime 1 wtime -1", 1, 0, 5, 0, 0.001, 0, 66, 0},
    {"go wtime 99999999999999999999 btime x", 1, 0, 5, 1e9, 0, 0, 66, 0},
    {"go ponder wtime 1000 btime 1000", 2, 0, 5, 1, 1, 0, 66, 0},
    {"go wtime 1000 btime 1000 ponder", 2, 0, 5, 1, 1, 0, 66, 0},
    {"go movestogo 7 wtime 7000", 1, 40, 5, 7, 5, 0, 66, 0},
    {"go depth 10", 1, 1, 600, 5, 5, 0, 10, 0},
    {"go depth 67", 1, 1, 600, 5, 5, 0, 66, 0},
    {"go depth -3", 1, 1, 600, 5, 5, 0, 0, 0},
    {"go nodes 5000", 1, 1, 10000000, 5, 5, 0, 66, 5000},
    {"go nodes 99999999999999999999", 1, 1, 10000000, 5, 5, 0, 66, INT64_MAX},
    {"go movetime 1500 winc 7000", 1, 1, 1.5, 5, 5, 0, 66, 0},
    {"go depth 10 movetime 500", 1, 1, 0.5, 5, 5, 0, 10, 0},
    {"go movetime 500 depth 10", 1, 1, 0.5, 5, 5, 0, 10, 0},
    {"go depth 4 nodes 9 infinite", 1, 1, 10000000, 5, 5, 0, 66, 0},
    {"go searchmoves e2e4 mate 3", 1, 0, 5, 5, 5, 0, 66, 0},
};

TEST_F(Uci, SetsLimitsOfASearch) {
    for (const GoRow& row : searches) {
        SetUp();
        EXPECT_EQ(Send(row.line), "") << row.line;
        EXPECT_EQ(PBlock.stop, STOP_COMMAND) << row.line;
        EXPECT_EQ(PBlock.request, row.request) << row.line;
        EXPECT_EQ(PBlock.level_moves, row.level_moves) << row.line;
        EXPECT_EQ(PBlock.level_time, row.level_time) << row.line;
        EXPECT_EQ(PBlock.clock[WHITE], row.white) << row.line;
        EXPECT_EQ(PBlock.clock[BLACK], row.black) << row.line;
        EXPECT_EQ(PBlock.inc, row.inc) << row.line;
        EXPECT_EQ(PBlock.max_depth, row.max_depth) << row.line;
        EXPECT_EQ(PBlock.max_nodes, row.max_nodes) << row.line;
        EXPECT_EQ(computer, WHITE) << row.line;
    }
}

TEST_F(Uci, TakesTheIncrementOfTheSideToMove) {
    Send("position startpos moves e2e4");
    Send("go winc 1000 binc 2000");
    EXPECT_EQ(PBlock.inc, 2.0);
    EXPECT_EQ(computer, BLACK);
}

TEST_F(Uci, KeepsLimitsUntilTheyAreChanged) {
    Send("go depth 5");
    Send("go wtime 1000 btime 1000");
    EXPECT_EQ(PBlock.max_depth, 5);
    EXPECT_EQ(PBlock.level_moves, 0);
    Send("go nodes 7 winc 3000");
    Send("go wtime 1000 btime 1000");
    EXPECT_EQ(PBlock.max_nodes, 7);
    EXPECT_EQ(PBlock.inc, 3.0);
    Send("go wtime 1000 movestogo 20");
    EXPECT_EQ(PBlock.moves_to_go, 20);
    EXPECT_EQ(PBlock.max_depth, 66);
    EXPECT_EQ(PBlock.max_nodes, 0);
    EXPECT_EQ(PBlock.inc, 3.0);
}

TEST_F(Uci, StartsANewGame) {
    Send("position startpos moves e2e4");
    Send("go winc 3000 movetime 70");
    Send("go winc 3000");
    Send("ucinewgame");
    EXPECT_EQ(PBlock.stop, STOP_COMMAND);
    EXPECT_EQ(PBlock.level_moves, 0);
    EXPECT_EQ(PBlock.level_time, 60.0);
    EXPECT_EQ(PBlock.clock[WHITE], 60.0);
    EXPECT_EQ(PBlock.clock[BLACK], 60.0);
    EXPECT_EQ(PBlock.inc, 0.0);
    EXPECT_EQ(GamePosition()->game_ply, 0);
}

TEST_F(Uci, SteersASearch) {
    PBlock.state = STATE_THINKING;
    Send("ponderhit");
    EXPECT_EQ(PBlock.state, STATE_THINKING);
    PBlock.state = STATE_PONDERING;
    Send("ponderhit");
    EXPECT_EQ(PBlock.state, STATE_THINKING);
    EXPECT_EQ(PBlock.stop, 0);
    PBlock.state = STATE_PONDERING;
    computer = WHITE;
    Send("stop");
    EXPECT_EQ(PBlock.state, STATE_THINKING);
    EXPECT_EQ(PBlock.stop, STOP_TIME);
    EXPECT_EQ(computer, 2);
    Send("quit");
    EXPECT_EQ(PBlock.stop, STOP_COMMAND);
    EXPECT_EQ(PBlock.quit, 1);
}

}  // namespace
}  // namespace vrel
