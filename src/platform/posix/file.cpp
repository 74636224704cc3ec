#include "platform/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vrel {
namespace {

// The C library opens a directory for reading, but then every read of it fails.
bool IsDirectory(std::FILE* stream) {
    struct stat status {};
    return fstat(fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
}

// For a mark on it; not to be stopped by a pipe that stands in the place of the file.
int OpenToMark(const char* name) { return open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC); }

bool Mark(int descriptor) { return flock(descriptor, LOCK_EX | LOCK_NB) == 0; }

}  // namespace

File::File(const char* name, const char* mode) : stream_(std::fopen(name, mode)) {
    if (stream_ != nullptr && IsDirectory(stream_))
        Close();
}

bool FileExists(const char* name) { return access(name, F_OK) == 0; }

bool ReadFileStamp(const char* name, FileStamp* stamp) {
    struct stat status {};
    if (stat(name, &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    stamp->device = status.st_dev;
    stamp->number = status.st_ino;
    stamp->size = status.st_size;
    // A file may bear any time: one far off wraps around and still tells states apart.
    const auto seconds = static_cast<uint64_t>(status.st_mtim.tv_sec);
    stamp->changed = static_cast<int64_t>(seconds * 1'000'000'000 + static_cast<uint64_t>(status.st_mtim.tv_nsec));
    return true;
}

bool DeleteFile(const char* name) { return unlink(name) == 0; }

bool RenameFile(const char* from, const char* to) { return std::rename(from, to) == 0; }

void FileLock::Hold(const char* name) {
    Release();
    const int descriptor = OpenToMark(name);
    file_ = descriptor;
    if (descriptor >= 0 && !Mark(descriptor))
        Release();
}

void FileLock::Release() {
    if (file_ != NO_FILE)
        close(static_cast<int>(file_));
    file_ = NO_FILE;
}

bool FileIsHeld(const char* name) {
    const int descriptor = OpenToMark(name);
    if (descriptor < 0)
        return false;
    const bool held = !Mark(descriptor) && errno == EWOULDBLOCK;
    close(descriptor);
    return held;
}

}  // namespace vrel
