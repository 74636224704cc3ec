#include "platform/file.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <utility>

namespace vrel {

namespace {

constexpr int NOT_REGULAR = -1;  // no system has such an error

}  // namespace

File OpenOwnFile(const char* name, const char* mode) {
    FileStamp stamp;
    if (!FileExists(name) || ReadFileStamp(name, &stamp))
        return {name, mode};
    errno = NOT_REGULAR;
    return {};
}

bool NameOneFile(const char* a, const char* b) {
    FileStamp first, second;
    return ReadFileStamp(a, &first) && ReadFileStamp(b, &second) && SameFile(first, second);
}

const char* FileTrouble() { return errno == NOT_REGULAR ? "not a regular file" : std::strerror(errno); }

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

size_t File::Append(const void* data, size_t size) {
    return stream_ == nullptr ? 0 : std::fwrite(data, 1, size, stream_);
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

int64_t File::Place() { return stream_ == nullptr ? -1 : ftello(stream_); }

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
    // Some libraries don't tell that what was left to write at the end is lost.
    const bool sound = std::ferror(stream_) == 0 && std::fflush(stream_) == 0;
    return std::fclose(std::exchange(stream_, nullptr)) == 0 && sound;
}

}  // namespace vrel
