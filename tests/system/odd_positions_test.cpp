// Long games and boards that no game reaches, through everything that a person or an interface can ask about them.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include "support/engine_process.h"
#include "support/playout.h"
#include "support/positions.h"

namespace vrel {
namespace {

constexpr int HANG = 20000;    // milliseconds
constexpr int PATIENCE = 300;  // for a search by depth, before it is told to stop

// 1200 plies that lead nowhere, written one after the other.
std::string Shuffling() {
    std::string moves;
    for (int i = 0; i < 300; ++i)
        moves += " g1f3 g8f6 f3g1 f6g8";
    return moves;
}

// What pawns are for first: a promotion, a capture by a pawn, a step; pieces leave each other alone.
int Wish(const oracle::Board& board, const oracle::Move& move) {
    const bool takes = board.squares[static_cast<size_t>(move.to)] != '.';
    const char piece = board.squares[static_cast<size_t>(move.from)];
    if (move.promotion)
        return 3;
    if (piece != 'P' && piece != 'p')
        return takes ? -1 : 0;
    return takes ? 2 : 1;
}

// A game in which nearly every pawn gets through and becomes a piece of any kind.
std::string Promotions(int* promoted) {
    std::mt19937 random(4);
    oracle::Board board;
    oracle::ReadFen("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", &board);
    std::string moves;
    *promoted = 0;
    for (int ply = 0; ply < 300; ++ply) {
        std::vector<oracle::Move> legal = oracle::LegalMoves(board);
        if (legal.empty())
            break;
        int best = -1;
        for (const oracle::Move& move : legal)
            best = std::max(best, Wish(board, move));
        std::erase_if(legal, [&](const oracle::Move& move) { return Wish(board, move) < best; });
        const oracle::Move move = legal[RandomBelow(&random, legal.size())];
        moves += ' ' + oracle::MoveText(move);
        *promoted += move.promotion != 0;
        board = oracle::AfterMove(board, move);
    }
    return moves;
}

class OddPositions : public ::testing::Test {
protected:
    // Everything asked for is answered, and the program ends in order: a sanitizer's finding shows there.
    static void Expect(EngineProcess* engine, const char* line, const char* answer) {
        engine->Send(line);
        ASSERT_TRUE(engine->WaitFor(answer, HANG)) << line;
    }

    // A search by depth, which a crowded board may keep busy for too long.
    static void Search(EngineProcess* engine, const char* line, const char* stop, const char* answer) {
        engine->Send(line);
        if (engine->WaitFor(answer, PATIENCE))
            return;
        engine->Send(stop);
        ASSERT_TRUE(engine->WaitFor(answer, HANG)) << line;
    }

    static void AskConsole(EngineProcess* engine) {
        Expect(engine, "bd", "  ");
        engine->Send("swap");
        Expect(engine, "ev", "eval= ");
        Expect(engine, "perft 3", "visited ");
        engine->Send("trace 2");
        Search(engine, "go 6", ".", "move= ");
        engine->Send("trace 0");
        Expect(engine, "book", "");
    }

    static void AskUci(EngineProcess* engine) {
        engine->Send("go infinite");  // takes the limit of depth off
        Expect(engine, "stop", "bestmove ");
        Expect(engine, "go movetime 50", "bestmove ");
        Search(engine, "go depth 6", "stop", "bestmove ");
        Expect(engine, "isready", "readyok");
    }

    template <typename Action>
    static void ForEachPosition(Action action) {
        for (const NamedPosition& row : kAbsurdPositions)
            action(row);
        for (const NamedPosition& row : kTrickyPositions)
            for (const char* kind : {"218", "queens", "knights", "wall", "promote"})
                if (std::string(row.name).find(kind) != std::string::npos)
                    action(row);
    }
};

TEST_F(OddPositions, ConsoleCommandsWork) {
    EngineProcess engine(VREL_BINARY, {"-c", "-nolog", "-hash", "1", "-threads", "2"}, "odd");
    ForEachPosition([&](const NamedPosition& row) {
        SCOPED_TRACE(row.name);
        engine.Send(std::string("fen ") + row.fen);
        AskConsole(&engine);
    });
    EXPECT_EQ(engine.Quit(HANG), 0);
}

TEST_F(OddPositions, SearchesWithTwoWorkersAreAnswered) {
    EngineProcess engine(VREL_BINARY, {"-nolog", "-hash", "1", "-threads", "2"}, "odd");
    ForEachPosition([&](const NamedPosition& row) {
        SCOPED_TRACE(row.name);
        engine.Send(std::string("position fen ") + row.fen);
        AskUci(&engine);
    });
    int promoted = 0;
    for (const std::string& moves : {Shuffling(), Promotions(&promoted)}) {
        SCOPED_TRACE(moves.substr(0, 20));
        engine.Send("position startpos moves" + moves);
        AskUci(&engine);
    }
    EXPECT_GT(promoted, 6);
    EXPECT_EQ(engine.Quit(HANG), 0);
}

// The tools read positions from suites and games from PGN files.
TEST_F(OddPositions, ToolsGetThroughThem) {
    std::filesystem::create_directories("odd");
    std::ofstream suite("odd/odd.epd");
    ForEachPosition([&](const NamedPosition& row) { suite << row.fen << " bm a1a2; tune 0.7;\n"; });
    suite.close();
    std::ofstream games("odd/book.pgn");
    int promoted = 0;
    for (int i = 0; i < 3; ++i)
        games << "[Event \"long\"]\n[Result \"1-0\"]\n"
              << Shuffling() << "\n\n"
              << "[Event \"promotions\"]\n[Result \"0-1\"]\n"
              << Promotions(&promoted) << "\n\n";
    games.close();
    const std::vector<std::vector<std::string>> runs = {
        {"-anepd", "odd.epd", "-d", "0"},
        {"-anepd", "odd.epd", "-d", "1"},
        {"-anepd", "odd.epd", "-t", "0.02", "-threads", "2"},
        {"-tune", "odd.epd"},
        {"-scan_pgn1", "book.pgn"},
        {"-scan_pgn2", "book.pgn"},
        {"-scan_pgn3", "book.pgn"},
    };
    for (std::vector<std::string> arguments : runs) {
        SCOPED_TRACE(arguments[0] + ' ' + arguments.back());
        arguments.insert(arguments.end(), {"-nolog", "-hash", "1", "-quiet"});
        EngineProcess engine(VREL_BINARY, arguments, "odd");
        if (arguments[0] == "-tune")
            ASSERT_TRUE(engine.WaitFor("p0=", HANG));
        else
            engine.WaitFor("no line begins so", 10 * HANG);
        EXPECT_EQ(engine.Quit(HANG), 0);
    }
    EngineProcess console(VREL_BINARY, {"-c", "-nolog", "-hash", "1"}, "odd");
    Expect(&console, "mkbook", "done");
    for (const char* which : {"1", "2"}) {
        Expect(&console, (std::string("load book.pgn ") + which).c_str(), "white");
        AskConsole(&console);
        console.Send("save");
        Expect(&console, "jump 500", "  ");
    }
    EXPECT_EQ(console.Quit(HANG), 0);
}

}  // namespace
}  // namespace vrel
