#include "platform/standard_input.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "platform/clock.h"

namespace vrel {
namespace {

bool ended = false;  // the end has been seen; it stays

// Errors after which a later read may still work.
bool IsPassing(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

// Reads once standard input is ready, within `timeout` milliseconds or, if it is negative, whenever that is.
int ReadWhenReady(char* buffer, int size, int timeout) {
    if (ended)
        return INPUT_ENDED;
    if (size < 1)
        return INPUT_NOTHING;

    pollfd input{STDIN_FILENO, POLLIN, 0};
    const int ready = poll(&input, 1, timeout);
    if (ready == 0 || (ready < 0 && IsPassing(errno)))
        return INPUT_NOTHING;

    // A writer that has gone and a descriptor that was never open show up here as well: the read tells the end.
    const ssize_t count = read(STDIN_FILENO, buffer, static_cast<size_t>(size));
    if (count > 0)
        return static_cast<int>(count);
    if (count < 0 && IsPassing(errno))
        return INPUT_NOTHING;
    ended = true;
    return INPUT_ENDED;
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

void SleepUntilInput(int microseconds) {
    if (ended) {
        SleepMicroseconds(microseconds);
        return;
    }
    pollfd input{STDIN_FILENO, POLLIN, 0};
    const timespec rest{0, microseconds * 1000L};
    if (ppoll(&input, 1, &rest, nullptr) < 0)
        SleepMilliseconds(1);
}

bool InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

}  // namespace vrel
