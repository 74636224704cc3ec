#pragma once

#include <memory>
#include <string>
#include <vector>

#include "board/position.h"
#include "board/search_thread.h"
#include "support/oracle.h"

// The engine as tests use it: tables built once, positions to work on, and the way from its records to the oracle's.
namespace vrel {

// Builds all tables and the game record, once a process: board, settings, transposition table, locks, evaluation, and
// the record of worker 1 (no thread) for searches that the test calls itself.
void StartForTests();

// A position with the stacks that it needs, apart from the game record.
class TestPosition {
public:
    explicit TestPosition(const std::string& fen);

    // Another position on the same stacks.
    void Set(const std::string& fen);

    Position& operator*() const { return thread_->pos; }
    Position* operator->() const { return &thread_->pos; }
    Position* get() const { return &thread_->pos; }
    SearchThread* thread() const { return thread_.get(); }

private:
    std::unique_ptr<SearchThread> thread_;
};

// The four-field text of the position.
std::string FenOf(const Position& pos);

// The same in the oracle's terms.
oracle::Board OracleBoard(const Position& pos);
oracle::Move OracleMove(Move move);

// Every field alike but for the order within the rows of piece squares.
bool SamePosition(const Position& a, const Position& b);

// The pseudo-legal moves as GenerateAll leaves them for the ply of the position.
std::vector<MoveEntry> AllMoves(Position* pos);

}  // namespace vrel
