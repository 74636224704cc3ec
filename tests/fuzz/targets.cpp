#include "fuzz/targets.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/search_thread.h"
#include "book/book_build.h"
#include "book/book_lookup.h"
#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "interface/control/console.h"
#include "interface/control/uci.h"
#include "interface/pblock.h"
#include "search/search_control.h"
#include "search/start_up.h"
#include "tools/epd_analysis.h"
#include "tools/pgn_scan.h"
#include "tools/trace.h"

namespace vrel {

namespace {

constexpr int MOST_PIECES = 16;  // a board with more takes too long for a search of one ply
constexpr size_t MOST_LINES = 40;

void Require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

// Once a process: everything but the threads; the targets search on this one.
void StartOnce() {
    if (GetThread(1) == nullptr)
        Require(StartEngine([] { PBlock.hash_mb = 1; }) && InitNewThread(1) == 0, "memory");
}

void Reset() {
    StartOnce();
    SetDefaults();
    PBlock.hash_mb = 1;
    PBlock.noise = SILENT;
    PBlock.log = 0;
    selfplay = 0;
    Personality = DefaultPersonality;
    InitEval();
    SetPosition(GamePosition(), fen_opn);
}

void Search(int depth) {
    if (CountBits(Occupied(*GamePosition())) > MOST_PIECES)
        depth = 0;
    PBlock.max_depth = static_cast<int8_t>(std::min(static_cast<int>(PBlock.max_depth), depth));
    PBlock.noise = SILENT;
    PrepareRequestedSearch();
    SearchHere();
    CloseSearch();
}

// Settles what a line has asked for, as the game loop would, but at once.
void SettleRequest() {
    if (SearchIsRequested())
        Search(2);
    CloseSearch();
    PBlock.quit = 0;
    SetTrace(0);
    const Position& game = *GamePosition();
    Require(PositionIsConsistent(game), "the game's board");
    Require(game.game_ply >= 0 && game.game_ply < UNDO_RECORDS && game.ply == 1, "the game's length");
}

std::vector<std::string> Lines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::istringstream in(bytes);
    std::string line;
    while (lines.size() < MOST_LINES && std::getline(in, line))
        lines.push_back(line.substr(0, line.find('\0')));
    return lines;
}

bool Holds(const std::string& line, const char* text) { return line.find(text) != std::string::npos; }

void RunUci(const std::string& bytes) {
    for (const std::string& line : Lines(bytes)) {
        // The pool isn't running, and large tables only cost time.
        if (Holds(line, "Threads") || (Holds(line, "Hash") && Holds(line, "value")))
            continue;
        UciCommand(line.c_str());
        SettleRequest();
    }
}

void RunConsole(const std::string& bytes) {
    PBlock.mode = MODE_CONSOLE;
    for (const std::string& line : Lines(bytes)) {
        // Some commands are as slow as their number says, or read and write wherever they are told to.
        if (Holds(line, "perft") || Holds(line, "tune") || Holds(line, "load") || Holds(line, "trace"))
            continue;
        if (CountBits(Occupied(*GamePosition())) > MOST_PIECES && Holds(line, "ev"))
            continue;
        ConsoleCommand(line.c_str());
        PBlock.noise = SILENT;
        SettleRequest();
    }
    std::filesystem::remove("tmp.pgn");
}

void RunFen(const std::string& bytes) {
    Position* game = GamePosition();
    SetPosition(game, bytes.c_str());
    Require(PositionIsConsistent(*game), "the board that was read");
    char first[EPD_TEXT], second[EPD_TEXT];
    MakeEPD(*game, first);
    const Position before = *game;
    SetPosition(game, first);
    MakeEPD(*game, second);
    Require(std::string(first) == second, "reading back a position");
    Require(before.hash == game->hash && before.pawn_hash == game->pawn_hash, "the keys read back");
    PBlock.max_depth = MAX_DEPTH;
    Search(0);
    PBlock.max_depth = MAX_DEPTH;
    Search(2);
}

void WriteFile(const char* name, const std::string& bytes) {
    std::ofstream(name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void RunMakeBook(const std::string& bytes) {
    InitBook();
    WriteFile("book.pgn", bytes);
    CreateBook();
    Require(std::filesystem::file_size("book.opn") % 14 == 0, "whole records");
    KillBook();
}

void RunScan(const std::string& bytes) {
    const int kind = bytes.empty() ? 1 : 1 + static_cast<unsigned char>(bytes[0]) % 3;
    WriteFile("in.pgn", bytes);
    Scan_PGN_File("in.pgn", kind);
}

void RunEpd(const std::string& bytes) {
    WriteFile("in.epd", bytes);
    CopyText(&PBlock.epd_file, "in.epd");
    PBlock.max_depth = 0;
    const double error = Analyze_EPD_File(true);
    Require(error == error, "a mean error");
}

// A book of these bytes, asked for the first moves of a game.
void RunBook(const std::string& bytes) {
    WriteFile("fuzz.opn", bytes);
    CopyText(&PBlock.book_file, "fuzz.opn");
    InitBook();
    for (int ply = 0; ply < 6; ++ply) {
        GetCandidates(GamePosition(), true);
        if (PBlock.pv[1] == NO_MOVE)
            break;
        PlayGameMove(GamePosition(), PBlock.pv[1]);
    }
    KillBook();
}

}  // namespace

const std::vector<FuzzTarget>& FuzzTargets() {
    static const std::vector<FuzzTarget> targets = {
        {"uci", RunUci},   {"console", RunConsole}, {"fen", RunFen},   {"mkbook", RunMakeBook},
        {"scan", RunScan}, {"epd", RunEpd},         {"book", RunBook},
    };
    return targets;
}

bool RunFuzzTarget(const std::string& name, const std::string& bytes) {
    for (const FuzzTarget& target : FuzzTargets()) {
        if (name != target.name)
            continue;
        Reset();
        target.run(bytes);
        return true;
    }
    return false;
}

}  // namespace vrel
