#include "platform/standard_input.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "platform/clock.h"

namespace vrel {
namespace {

bool ended = false;  // the end has been seen; it stays

constexpr long BLIND_SLEEP = 1000000;  // nanoseconds between two looks of a sleeper that nobody can wake

// Errors after which a later read may still work.
bool IsPassing(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

// True if a read would not wait, within `timeout` milliseconds or, if that is negative, whenever it is. A writer that
// has gone and a descriptor that was never open count as well: the read tells the end.
bool InputAvailable(int timeout) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    const int ready = poll(&input, 1, timeout);
    return ready > 0 || (ready < 0 && !IsPassing(errno));
}

// Reads once standard input is ready, within that time.
int ReadWhenReady(char* buffer, int size, int timeout) {
    if (ended)
        return INPUT_ENDED;
    if (size < 1 || !InputAvailable(timeout))
        return INPUT_NOTHING;

    const ssize_t count = read(STDIN_FILENO, buffer, size);
    if (count > 0)
        return static_cast<int>(count);
    if (count < 0 && IsPassing(errno))
        return INPUT_NOTHING;
    ended = true;
    return INPUT_ENDED;
}

// Counts the calls of WakeMainThread since the last sleep. It is made when it is first used, so that it doesn't take
// the place of a standard stream. Below 0 if there is none.
int WakeCounter() {
    static const int counter = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    return counter;
}

}  // namespace

int ReadInput(char* buffer, int size) { return ReadWhenReady(buffer, size, 0); }

int WaitForInput(char* buffer, int size) {
    if (size < 1)
        return INPUT_NOTHING;
    int count = INPUT_NOTHING;
    while (count == INPUT_NOTHING)
        count = ReadWhenReady(buffer, size, -1);
    return count;
}

void SleepUntilWoken(int microseconds, bool by_input) {
    const int counter = WakeCounter();
    const bool may_last = microseconds < 0 && counter >= 0;
    const timespec rest{0, microseconds < 0 ? BLIND_SLEEP : microseconds * 1000L};
    // A negative descriptor is passed over.
    pollfd wakers[] = {{counter, POLLIN, 0}, {by_input && !ended ? STDIN_FILENO : -1, POLLIN, 0}};
    if (ppoll(wakers, 2, may_last ? nullptr : &rest, nullptr) < 0)
        SleepMilliseconds(1);
    eventfd_t calls = 0;
    if (wakers[0].revents != 0)
        eventfd_read(counter, &calls);
}

void WakeMainThread() { eventfd_write(WakeCounter(), 1); }

bool InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

}  // namespace vrel
