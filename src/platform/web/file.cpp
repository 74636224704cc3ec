#include "platform/file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/web/host.h"

// Files live in memory, where the host puts them and takes them out, or they are the host's own. A stream of the C
// library serves both: it is given the calls that read and write.
namespace vrel {
namespace {

constexpr size_t BUFFER = 32768;  // bytes between a stream and its file

struct Contents {
    std::string bytes;
    uint64_t number = 0;
    int64_t changes = 0;  // counted over all files
    bool marked = false;
};

// All files in memory, and what their changes are counted with; the lock is held for both.
std::map<std::string, std::shared_ptr<Contents>> files;
uint64_t numbers = 0;
int64_t changes = 0;
std::mutex files_lock;

std::shared_ptr<Contents> Find(const char* name) {
    const auto found = files.find(name);
    return found == files.end() ? nullptr : found->second;
}

std::shared_ptr<Contents> Make(const char* name) {
    auto contents = std::make_shared<Contents>();
    contents->number = ++numbers;
    contents->changes = ++changes;
    files[name] = contents;
    return contents;
}

// What stands behind a stream.
struct Source {
    std::shared_ptr<Contents> contents;  // null for a file of the host's
    int number = 0;                      // of the host's file
    bool has_places = true;              // a pipe has none
    bool appends = false;
    int64_t place = 0;
    std::array<char, BUFFER> buffer;
};

int64_t SizeOf(const Source& source) {
    if (source.contents == nullptr)
        return static_cast<int64_t>(HostSizeOf(source.number));
    const std::lock_guard<std::mutex> guard(files_lock);
    return static_cast<int64_t>(source.contents->bytes.size());
}

// Of a call of the host's: what fails tells its error.
ssize_t Told(int result) {
    if (result >= 0)
        return result;
    errno = -result;
    return -1;
}

double HostPlace(const Source& source) { return source.has_places ? static_cast<double>(source.place) : -1.0; }

ssize_t ReadMemory(Source* source, char* data, size_t size) {
    const std::lock_guard<std::mutex> guard(files_lock);
    const std::string& bytes = source->contents->bytes;
    const size_t place = std::min(static_cast<size_t>(source->place), bytes.size());
    return static_cast<ssize_t>(bytes.copy(data, size, place));
}

ssize_t WriteMemory(Source* source, const char* data, size_t size) {
    const std::lock_guard<std::mutex> guard(files_lock);
    std::string& bytes = source->contents->bytes;
    const auto place = static_cast<size_t>(source->place);
    if (place + size > bytes.size())
        bytes.resize(place + size);
    bytes.replace(place, size, data, size);
    source->contents->changes = ++changes;
    return static_cast<ssize_t>(size);
}

ssize_t ReadSource(void* cookie, char* data, size_t size) {
    auto* source = static_cast<Source*>(cookie);
    const ssize_t count = source->contents != nullptr
                              ? ReadMemory(source, data, size)
                              : Told(HostReadAt(source->number, data, static_cast<int>(size), HostPlace(*source)));
    source->place += std::max<ssize_t>(count, 0);
    return count;
}

ssize_t WriteOnce(Source* source, const char* data, size_t size) {
    const ssize_t count = source->contents != nullptr
                              ? WriteMemory(source, data, size)
                              : Told(HostWriteAt(source->number, data, static_cast<int>(size), HostPlace(*source)));
    source->place += std::max<ssize_t>(count, 0);
    return count;
}

// The library takes a short count for what it is only where the bytes are the caller's: of its buffer all is written.
ssize_t WriteSource(void* cookie, const char* data, size_t size) {
    auto* source = static_cast<Source*>(cookie);
    if (source->appends)
        source->place = std::max<int64_t>(SizeOf(*source), 0);
    size_t done = 0;
    ssize_t count = 1;
    while (done < size && (count = WriteOnce(source, data + done, size - done)) > 0)
        done += static_cast<size_t>(count);
    const bool of_buffer = data >= source->buffer.data() && data < source->buffer.data() + BUFFER;
    return done < size && (done == 0 || of_buffer) ? -1 : static_cast<ssize_t>(done);
}

int SeekSource(void* cookie, off_t* offset, int from) {
    auto* source = static_cast<Source*>(cookie);
    if (!source->has_places) {
        errno = ESPIPE;
        return -1;
    }
    int64_t place = *offset;
    if (from == SEEK_CUR)
        place += source->place;
    else if (from == SEEK_END)
        place += SizeOf(*source);
    if (place < 0) {
        errno = EINVAL;
        return -1;
    }
    source->place = *offset = place;
    return 0;
}

int CloseSource(void* cookie) {
    auto* source = static_cast<Source*>(cookie);
    if (source->contents == nullptr)
        HostClose(source->number);
    delete source;
    return 0;
}

// The file as a mode of fopen wants it. False if there is none, and none is to be made.
bool OpenInMemory(const char* name, const char* mode, Source* source) {
    const std::lock_guard<std::mutex> guard(files_lock);
    source->contents = Find(name);
    if (source->contents == nullptr && (mode[0] == 'r' || name[0] == '\0')) {
        errno = ENOENT;
        return false;
    }
    if (source->contents == nullptr)
        source->contents = Make(name);
    else if (mode[0] == 'w')
        source->contents->bytes.clear();
    return true;
}

bool OpenOfHost(const char* name, const char* mode, Source* source) {
    source->number = static_cast<int>(Told(HostOpen(name, mode)));
    if (source->number < 0)
        return false;
    source->has_places = HostSizeOf(source->number) >= 0;
    return true;
}

// What stands behind the streams that are open. A stream that is closed leaves its row to the next of its address.
std::map<std::FILE*, Source*> sources;
std::mutex sources_lock;

// The source belongs to the stream, which closes it.
std::FILE* OpenStream(const char* name, const char* mode) {
    auto source = std::make_unique<Source>();
    source->appends = mode[0] == 'a';
    if (!(HostLendsFiles() ? OpenOfHost(name, mode, source.get()) : OpenInMemory(name, mode, source.get())))
        return nullptr;
    std::FILE* stream = fopencookie(source.get(), mode, {ReadSource, WriteSource, SeekSource, CloseSource});
    if (stream == nullptr)
        return nullptr;
    std::setvbuf(stream, source->buffer.data(), _IOFBF, BUFFER);
    const std::lock_guard<std::mutex> guard(sources_lock);
    sources[stream] = source.release();
    return stream;
}

Source* SourceOf(std::FILE* stream) {
    const std::lock_guard<std::mutex> guard(sources_lock);
    return sources[stream];
}

bool Succeeds(int result) { return Told(result) >= 0; }

bool CutMemory(Contents* contents, int64_t size) {
    const std::lock_guard<std::mutex> guard(files_lock);
    contents->bytes.resize(static_cast<size_t>(size));
    contents->changes = ++changes;
    return true;
}

// What a lock knows a marked file in memory by.
intptr_t MarkOf(const Contents& contents) { return static_cast<intptr_t>(contents.number); }

}  // namespace

File::File(const char* name, const char* mode) : stream_(OpenStream(name, mode)) {}

bool File::CutTo(int64_t size) {
    if (stream_ == nullptr)
        return false;
    Source* source = SourceOf(stream_);
    return source->contents != nullptr ? CutMemory(source->contents.get(), size)
                                       : Succeeds(HostCutTo(source->number, static_cast<double>(size)));
}

bool FileExists(const char* name) {
    if (HostLendsFiles())
        return HostExists(name);
    const std::lock_guard<std::mutex> guard(files_lock);
    return Find(name) != nullptr;
}

bool ReadFileStamp(const char* name, FileStamp* stamp) {
    if (HostLendsFiles()) {
        std::array<uint64_t, 4> told{};
        if (!HostStamp(name, told.data()))
            return false;
        *stamp = {told[0], told[1], static_cast<int64_t>(told[2]), static_cast<int64_t>(told[3])};
        return true;
    }
    const std::lock_guard<std::mutex> guard(files_lock);
    const std::shared_ptr<Contents> contents = Find(name);
    if (contents == nullptr)
        return false;
    *stamp = {0, contents->number, static_cast<int64_t>(contents->bytes.size()), contents->changes};
    return true;
}

bool DeleteFile(const char* name) {
    if (HostLendsFiles())
        return Succeeds(HostRemove(name));
    const std::lock_guard<std::mutex> guard(files_lock);
    errno = ENOENT;
    return files.erase(name) > 0;
}

bool RenameFile(const char* from, const char* to) {
    if (HostLendsFiles())
        return Succeeds(HostRename(from, to));
    const std::lock_guard<std::mutex> guard(files_lock);
    const std::shared_ptr<Contents> contents = Find(from);
    errno = ENOENT;
    if (contents == nullptr)
        return false;
    files.erase(from);
    files[to] = contents;
    return true;
}

// In memory there is one program alone: what it has marked it has marked for itself.
FileLock::Claimed FileLock::Claim(const char* name) {
    Release();
    if (HostLendsFiles()) {
        const int file = static_cast<int>(Told(HostClaim(name)));
        if (file >= 0)
            file_ = file;
        return file >= 0 ? CLAIMED : errno == EEXIST || errno == EBUSY ? IN_USE : NOT_TO_BE_HAD;
    }
    const std::lock_guard<std::mutex> guard(files_lock);
    const std::shared_ptr<Contents> old = Find(name);
    if (old != nullptr && old->marked)
        return IN_USE;
    const std::shared_ptr<Contents> contents = Make(name);
    contents->marked = true;
    file_ = MarkOf(*contents);
    return CLAIMED;
}

void FileLock::Release() {
    if (file_ == NO_FILE)
        return;
    if (HostLendsFiles()) {
        HostRelease(static_cast<int>(file_));
    } else {
        const std::lock_guard<std::mutex> guard(files_lock);
        for (const auto& [name, contents] : files)
            if (MarkOf(*contents) == file_)
                contents->marked = false;
    }
    file_ = NO_FILE;
}

// What the program leaves open at its end is written out, as exit does elsewhere.
extern "C" VREL_FOR_HOST(flush) void Flush() { std::fflush(nullptr); }

// For the host: space for a text of so many bytes, to be given back by `discard`.
extern "C" VREL_FOR_HOST(reserve) char* Reserve(size_t size) { return static_cast<char*>(std::malloc(size + 1)); }
extern "C" VREL_FOR_HOST(discard) void Discard(char* space) { std::free(space); }

// Puts a file with these bytes in the place of any of that name.
extern "C" VREL_FOR_HOST(putFile) void PutFile(const char* name, const char* bytes, size_t size) {
    const std::lock_guard<std::mutex> guard(files_lock);
    Make(name)->bytes.assign(bytes, size);
}

// The length of a file, below 0 if there is none; and its first bytes.
extern "C" VREL_FOR_HOST(fileSize) int TellFileSize(const char* name) {
    const std::lock_guard<std::mutex> guard(files_lock);
    const std::shared_ptr<Contents> contents = Find(name);
    return contents == nullptr ? -1 : static_cast<int>(contents->bytes.size());
}
extern "C" VREL_FOR_HOST(getFile) size_t GetFile(const char* name, char* bytes, size_t size) {
    const std::lock_guard<std::mutex> guard(files_lock);
    const std::shared_ptr<Contents> contents = Find(name);
    return contents == nullptr ? 0 : contents->bytes.copy(bytes, size);
}

}  // namespace vrel
