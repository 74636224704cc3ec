#include "tools/trace.h"

#include <cstddef>
#include <cstdlib>
#include <mutex>

#include "board/make_move.h"
#include "board/search_thread.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "platform/file.h"

namespace vrel {

namespace {

// Moves of several workers mix in the file, but each is written whole.
std::mutex writing;

File out;
int last_ply = 0;     // of the last move written
int last_depth = -1;  // iteration of the last move written

constexpr const char* kTraceName = "trace.txt";
constexpr const char* COLUMN = "         ";

// Siblings line up under each other, one column a ply.
void StartLine(Ply ply) {
    out.WriteText("\n");
    for (int i = 1; i < ply; ++i)
        out.WriteText(COLUMN);
}

}  // namespace

void SetTrace(int plies) {
    PBlock.trace = static_cast<int16_t>(plies);
    trace_hook.store(plies != 0 ? TraceMove : nullptr, std::memory_order_relaxed);
}

void TraceMove(const Position& pos, Move move) {
    if (!PBlock.trace)
        return;
    const std::lock_guard guard(writing);
    if (!out) {
        out = OpenOwnFile(kTraceName, "w");
        if (!out) {
            Complain("%s: %s", kTraceName, FileTrouble());
            std::_Exit(0);
        }
    }
    const Ply ply = pos.ply;
    if (ply > PBlock.trace)
        return;
    const Depth depth = ThreadOf(pos)->depth;
    if (depth > last_depth)
        out.Print("\n\nSEARCH DEPTH= %d\n", depth);
    if (ply <= last_ply)
        StartLine(ply);
    MoveText text;
    out.Print("(%2d)%s ", pos.frames[ply].depth, MoveToStr(move, text.data()));
    last_ply = ply;
    last_depth = depth;
    if (out.Failed()) {
        Complain("%s: %s", kTraceName, FileTrouble());
        PBlock.trace = 0;
    }
}

}  // namespace vrel
