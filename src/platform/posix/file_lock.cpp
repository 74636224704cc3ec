#include "platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace vrel {

namespace {

// Not to be stopped by a pipe that stands in the place of the file.
int Open(const char* name) { return open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC); }

}  // namespace

void FileLock::Hold(const char* name) {
    Release();
    descriptor_ = Open(name);
    if (descriptor_ >= 0 && flock(descriptor_, LOCK_EX | LOCK_NB) != 0)
        Release();
}

void FileLock::Release() {
    if (descriptor_ >= 0)
        close(descriptor_);
    descriptor_ = -1;
}

bool FileIsHeld(const char* name) {
    const int descriptor = Open(name);
    if (descriptor < 0)
        return false;
    const bool held = flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(descriptor);
    return held;
}

}  // namespace vrel
