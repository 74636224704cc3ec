#pragma once

#include <string>

#include "board/attacks.h"
#include "board/fen.h"
#include "eval/evaluate.h"
#include "interface/pblock.h"
#include "support/engine.h"

// An evaluation at the root with everything that it leaves behind. The report is worker 1's alone, so its record is
// the one that these tests evaluate on.
namespace vrel {

struct RootEval {
    int score = 0;
    EvalReport report;
    PlyFrame frame;
};

inline bool SideInCheck(const Position& pos) { return SqAtakd(pos, KingSquare(pos, pos.stm), pos.stm ^ 1); }

inline SearchThread* EvalThread(const std::string& fen) {
    SearchThread* thread = GetThread(1);
    SetPosition(&thread->pos, fen.c_str());
    return thread;
}

inline RootEval EvaluateRoot(const std::string& fen) {
    SearchThread* thread = EvalThread(fen);
    PBlock.report = EvalReport{};
    RootEval result;
    result.score = Evaluate(thread, thread->pos.stm, 1, SideInCheck(thread->pos));
    result.report = PBlock.report;
    result.frame = thread->frames[1];
    return result;
}

constexpr int Sq(const char* name) { return (name[1] - '1') * 8 + name[0] - 'a'; }

}  // namespace vrel
