#pragma once

namespace vrel {

// A mark on a file that only one running program can have; it goes when the program ends in any way.
class FileLock {
public:
    FileLock() = default;
    ~FileLock() { Release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Puts the mark on an existing file. Without effect where files can't be marked.
    void Hold(const char* name);
    void Release();

private:
    int descriptor_ = -1;
};

// True if another running program has marked the file.
bool FileIsHeld(const char* name);

}  // namespace vrel
