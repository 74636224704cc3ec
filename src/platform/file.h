#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace vrel {

// An open file that closes itself. An object without a file is false; reading from it finds the end and writing fails.
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

    explicit operator bool() const { return stream_ != nullptr; }

    // Reads a line, its end included, but at most size - 1 characters of it: the rest comes with the next call. False
    // at the end of the file, with an empty text. The last line needs no end.
    bool ReadLine(char* line, int size);

    // Reads a line of any length, its end included. False at the end of the file.
    bool ReadLine(std::string* line);

    // Number of bytes read, less than asked for at the end or on an error.
    size_t Read(void* data, size_t size);

    // True if everything could be handed on. A full disk may show only at Flush or Close.
    bool Write(const void* data, size_t size);
    bool WriteText(const char* text);
    [[gnu::format(printf, 2, 3)]] bool Print(const char* format, ...);
    bool Flush();

    // Moves to a place counted in bytes from the start.
    bool Seek(long offset);
    // Length in bytes, -1 on failure. The place in the file stays.
    long Size();

    // Closes the file: true if there was one and no write to it has failed.
    bool Close();

private:
    std::FILE* stream_ = nullptr;
};

bool FileExists(const char* name);

// True on success. A directory is not deleted.
bool DeleteFile(const char* name);
bool RenameFile(const char* from, const char* to);

}  // namespace vrel
