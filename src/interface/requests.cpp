#include "interface/requests.h"

#include "interface/messages.h"
#include "interface/pblock.h"
#include "platform/clock.h"
#include "search/thread_pool.h"

namespace vrel {

namespace {

bool line_held = false;
int ready_owed = 0;

// Workers that search while the state is idle belong to a tool, which counts on nobody but itself to see them end.
void EndSearchOfTool() {
    PBlock.stop = STOP_COMMAND;
    while (!WorkersIdle())
        SleepMilliseconds(1);
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
    if (PBlock.state == STATE_IDLE && !WorkersIdle())
        EndSearchOfTool();
    if (EngineIsFree())
        return false;
    EndRunningSearch();
    HoldLine();
    return true;
}

void HoldLine() { line_held = true; }

bool LineWasHeld() {
    const bool held = line_held;
    line_held = false;
    return held;
}

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
