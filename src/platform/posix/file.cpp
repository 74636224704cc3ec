#include "platform/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <utility>

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

File::~File() { Close(); }

File::File(File&& other) noexcept : stream_(std::exchange(other.stream_, nullptr)) {}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        Close();
        stream_ = std::exchange(other.stream_, nullptr);
    }
    return *this;
}

bool File::ReadLine(char* line, int size) {
    if (size < 1)
        return false;
    line[0] = '\0';
    return stream_ != nullptr && std::fgets(line, size, stream_) != nullptr;
}

bool File::ReadLine(std::string* line) {
    line->clear();
    if (stream_ == nullptr)
        return false;
    int c;
    while (line->size() < LONGEST_LINE && (c = std::getc(stream_)) != EOF) {
        line->push_back(static_cast<char>(c));
        if (c == '\n')
            break;
    }
    return !line->empty();
}

size_t File::Read(void* data, size_t size) { return stream_ == nullptr ? 0 : std::fread(data, 1, size, stream_); }

bool File::Write(const void* data, size_t size) {
    return stream_ != nullptr && std::fwrite(data, 1, size, stream_) == size;
}

bool File::WriteText(const char* text) { return Write(text, std::strlen(text)); }

bool File::Print(const char* format, ...) {
    if (stream_ == nullptr)
        return false;
    va_list arguments;
    va_start(arguments, format);
    const int written = std::vfprintf(stream_, format, arguments);
    va_end(arguments);
    return written >= 0;
}

bool File::Flush() { return stream_ != nullptr && std::fflush(stream_) == 0; }

bool File::Seek(int64_t offset) { return stream_ != nullptr && fseeko(stream_, offset, SEEK_SET) == 0; }

int64_t File::Size() {
    if (stream_ == nullptr)
        return -1;
    const int64_t place = ftello(stream_);
    if (place < 0 || fseeko(stream_, 0, SEEK_END) != 0)
        return -1;
    const int64_t size = ftello(stream_);
    return fseeko(stream_, place, SEEK_SET) == 0 ? size : -1;
}

bool File::Close() {
    if (stream_ == nullptr)
        return false;
    const bool sound = std::ferror(stream_) == 0;
    return std::fclose(std::exchange(stream_, nullptr)) == 0 && sound;
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
