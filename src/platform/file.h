#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace vrel {

// An open file that closes itself. An object without a file is false; reading from it finds the end and writing fails.
// Names are UTF-8 and bytes pass unchanged, on every system.
class File {
public:
    File() = default;

    // Opens a file with a mode of fopen. The object is false on failure, and for a directory.
    File(const char* name, const char* mode);
    ~File();

    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    static constexpr size_t LONGEST_LINE = 65536;

    explicit operator bool() const { return stream_ != nullptr; }

    // Reads a line, its end included, but at most size - 1 characters of it: the rest comes with the next call. False
    // at the end of the file, with an empty text. The last line needs no end.
    bool ReadLine(char* line, int size);

    // The same for lines of up to LONGEST_LINE characters, their end included.
    bool ReadLine(std::string* line);

    // Number of bytes read, less than asked for at the end or on an error.
    size_t Read(void* data, size_t size);

    // True if everything could be handed on. A full disk may show only at Flush or Close.
    bool Write(const void* data, size_t size);
    bool WriteText(const char* text);
    [[gnu::format(printf, 2, 3)]] bool Print(const char* format, ...);
    bool Flush();

    // From here on every write goes to the system at once: what Append says is what stands in the file.
    void WriteThrough() { std::setvbuf(stream_, nullptr, _IONBF, 0); }
    // How many of the bytes could be written, less than asked for on a full disk.
    size_t Append(const void* data, size_t size);
    // Cuts off what lies behind the first `size` bytes. False on failure.
    bool CutTo(int64_t size);

    // Moves to a place counted in bytes from the start.
    bool Seek(int64_t offset);
    // The place in bytes from the start, -1 on failure.
    int64_t Place();
    // Length in bytes, -1 on failure. The place in the file stays.
    int64_t Size();

    // True if reading or writing has failed, other than by reaching the end.
    bool Failed() const { return stream_ != nullptr && std::ferror(stream_) != 0; }

    // Closes the file: true if there was one and no write to it has failed.
    bool Close();

private:
    std::FILE* stream_ = nullptr;
};

// For files that the program opens on its own account: only a regular file is opened, since a pipe or a device of that
// name could keep it waiting for ever.
File OpenOwnFile(const char* name, const char* mode);

// Why a file could not be opened, read or written just now, in the system's words.
const char* FileTrouble();

bool FileExists(const char* name);

// What tells one state of a file from another.
struct FileStamp {
    uint64_t device = 0;
    uint64_t number = 0;  // of the file on its device
    int64_t size = 0;     // bytes
    int64_t changed = 0;  // time of the last change of its contents, in the system's smallest unit

    bool operator==(const FileStamp&) const = default;
};

// False if there is no regular file of that name.
bool ReadFileStamp(const char* name, FileStamp* stamp);

// True if two stamps are of one file, whatever was written to it in between.
inline bool SameFile(const FileStamp& a, const FileStamp& b) { return a.device == b.device && a.number == b.number; }

// True if both names lead to one regular file.
bool NameOneFile(const char* a, const char* b);

// True on success. A directory is not deleted.
bool DeleteFile(const char* name);

// Gives a file another name, in the place of a file that has it so far. Not every system replaces an open file.
bool RenameFile(const char* from, const char* to);

// A mark on a file that only one running program can have; it goes when the program ends in any way.
class FileLock {
public:
    FileLock() = default;
    ~FileLock() { Release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Makes an empty file of that name, in the place of any that nobody has marked, and marks it; of several programs
    // that do so in the same moment one succeeds.
    enum Claimed { CLAIMED, IN_USE, NOT_TO_BE_HAD };
    Claimed Claim(const char* name);

    void Release();

private:
    static constexpr intptr_t NO_FILE = -1;

    intptr_t file_ = NO_FILE;  // what the system knows the open file by
};

}  // namespace vrel
