#include "platform/threads.h"

// Workers and the main thread where each has a thread.
namespace vrel {

namespace {

void* Live(void* record) {
    const auto* worker = static_cast<const Worker*>(record);
    const std::atomic<int>& flag = *worker->begin(worker->id);
    do
        WaitForChange(flag, 0);
    while (worker->work(worker->id));
    return nullptr;
}

}  // namespace

// The thread only reads the record.
int StartWorker(const Worker* worker) { return StartThread(Live, const_cast<Worker*>(worker)); }

int RunTurns(bool (*turn)(), int (*end)()) {
    while (turn()) {
    }
    return end();
}

}  // namespace vrel
