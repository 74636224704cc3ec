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

// The mark goes with the program that has set it, however that ends.
bool Mark(int descriptor) { return flock(descriptor, LOCK_EX | LOCK_NB) == 0; }

// True if the open file is still the one of that name.
bool IsNamed(int descriptor, const char* name) {
    struct stat open_file {
    }, named{};
    return fstat(descriptor, &open_file) == 0 && stat(name, &named) == 0 && open_file.st_dev == named.st_dev &&
           open_file.st_ino == named.st_ino;
}

}  // namespace

File::File(const char* name, const char* mode) : stream_(std::fopen(name, mode)) {
    if (stream_ != nullptr && IsDirectory(stream_)) {
        Close();
        errno = EISDIR;
    }
}

bool File::CutTo(int64_t size) { return stream_ != nullptr && ftruncate(fileno(stream_), size) == 0; }

bool FileExists(const char* name) { return access(name, F_OK) == 0; }

// A pipe or a terminal has no state that could be told by size and time.
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

FileLock::Claimed FileLock::Claim(const char* name) {
    // The old file is marked while it makes way, so that nobody takes it for his own meanwhile.
    FileLock old;
    old.file_ = OpenToMark(name);
    const bool exists = old.file_ != NO_FILE || errno != ENOENT;
    if (old.file_ != NO_FILE && !Mark(static_cast<int>(old.file_)) && errno == EWOULDBLOCK)
        return IN_USE;
    if (exists && unlink(name) != 0 && errno != ENOENT)
        return IN_USE;
    Release();
    const int descriptor = open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return errno == EEXIST ? IN_USE : NOT_TO_BE_HAD;
    file_ = descriptor;
    // Another program may have come between the file and its mark, and removed it again.
    if (Mark(descriptor) && IsNamed(descriptor, name))
        return CLAIMED;
    Release();
    return IN_USE;
}

void FileLock::Release() {
    if (file_ != NO_FILE)
        close(static_cast<int>(file_));
    file_ = NO_FILE;
}

}  // namespace vrel
