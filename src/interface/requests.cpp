#include "interface/requests.h"

#include "interface/messages.h"
#include "interface/pblock.h"
#include "search/thread_pool.h"

namespace vrel {

namespace {

bool line_held = false;
int ready_owed = 0;

}  // namespace

bool EngineIsFree() { return PBlock.state == STATE_IDLE && WorkersIdle(); }

void EndRunningSearch() {
    if (PBlock.state == STATE_IDLE)
        return;
    if (!PBlock.stop)
        PBlock.stop = STOP_COMMAND;
    if (PBlock.state == STATE_PONDERING)
        PBlock.state = STATE_THINKING;
}

bool MustWait() {
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

void OweReadyOk() { ++ready_owed; }

void PayReadyOk() {
    for (; ready_owed > 0; --ready_owed)
        ShowMessage("readyok");
}

}  // namespace vrel
