#include "interface/control/requests.h"

#include <utility>

#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "search/thread_pool.h"

namespace vrel {

namespace {

bool lines_may_wait = false;
bool line_held = false;
int ready_owed = 0;

// Ends what the workers search for a tool, which counts on nobody but itself to see them end.
void EndSearchOfTool() {
    while (!WorkersIdle()) {
        PBlock.stop = STOP_COMMAND;
        SleepMilliseconds(1);
    }
}

}  // namespace

bool EngineIsFree() { return PBlock.state == STATE_IDLE && PBlock.request == 0 && WorkersIdle(); }

void EndRunningSearch() {
    if (PBlock.state == STATE_IDLE)
        return;
    if (!PBlock.stop)
        PBlock.stop = STOP_COMMAND;
    if (PBlock.state == STATE_PONDERING)
        PBlock.state = STATE_THINKING;
}

bool MustWait() {
    if (!lines_may_wait)
        EndSearchOfTool();
    else if (!EngineIsFree()) {
        EndRunningSearch();
        line_held = true;
    }
    return line_held;
}

bool MustWaitForWorkers() {
    if (!lines_may_wait)
        EndSearchOfTool();
    else if (!WorkersIdle()) {
        PBlock.stop = STOP_COMMAND;
        line_held = true;
    }
    return line_held;
}

bool LetLinesWait(bool may) { return std::exchange(lines_may_wait, may); }

bool LineWasHeld() { return std::exchange(line_held, false); }

void OweReadyOk() {
    ++ready_owed;
    PayReadyOk();
}

void PayReadyOk() {
    if (!WorkersIdle())
        return;
    for (; ready_owed > 0; --ready_owed)
        ShowMessage("readyok");
}

}  // namespace vrel
