#include "platform/standard_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace vrel {

namespace {

// The output may have been set not to block by whoever shares it.
void WaitUntilWritable() {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    poll(&output, 1, -1);
}

// A pipe, a socket and a terminal each tell it in their own way.
bool ReaderIsGone(int error) { return error == EPIPE || error == ECONNRESET || error == EIO; }

// Takes the first `count` bytes off the two pieces.
void Advance(std::array<iovec, 2>* pieces, size_t count) {
    for (iovec& piece : *pieces) {
        const size_t taken = std::min(count, piece.iov_len);
        piece.iov_base = static_cast<char*>(piece.iov_base) + taken;
        piece.iov_len -= taken;
        count -= taken;
    }
}

}  // namespace

bool WriteOutput(const char* text, size_t size, const char* end, size_t end_size) {
    // The call takes both by a pointer to what it could change, and doesn't.
    std::array<iovec, 2> pieces = {iovec{const_cast<char*>(text), size}, iovec{const_cast<char*>(end), end_size}};
    while (pieces[0].iov_len + pieces[1].iov_len > 0) {
        const ssize_t written = writev(STDOUT_FILENO, pieces.data(), static_cast<int>(pieces.size()));
        if (written >= 0)
            Advance(&pieces, written);
        else if (errno == EAGAIN || errno == EWOULDBLOCK)
            WaitUntilWritable();
        else if (errno != EINTR)
            return !ReaderIsGone(errno);
    }
    return true;
}

bool ErrorOutputIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void OccupyStandardStreams() {
    // Each opening takes the lowest number that is free.
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = open("/dev/null", O_RDWR);
    if (descriptor >= 0)
        close(descriptor);
}

void IgnoreBrokenPipe() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace vrel
