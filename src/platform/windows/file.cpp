#include "platform/file.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <cwchar>

#include "platform/windows/wide.h"

// Names of the system's own that are the engine's too.
#undef DeleteFile

namespace vrel {

namespace {

// As other systems have it: a file that is open may be read, renamed and deleted by others.
constexpr DWORD SHARE_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// What a mode of fopen asks of the system: it begins with r, w or a.
struct Mode {
    DWORD access;
    DWORD disposition;
    int flags;
};

Mode ReadMode(const char* mode) {
    if (mode[0] == 'r')
        return {GENERIC_READ, OPEN_EXISTING, _O_RDONLY};
    if (mode[0] == 'w')
        return {GENERIC_WRITE, CREATE_ALWAYS, _O_WRONLY};
    return {GENERIC_WRITE, OPEN_ALWAYS, _O_WRONLY | _O_APPEND};
}

HANDLE Open(const char* name, DWORD access, DWORD disposition) {
    return CreateFileW(WideText(name).c_str(), access, SHARE_ALL, nullptr, disposition, 0, nullptr);
}

// The mark lies far behind the last byte, since nobody else may read or write what it covers.
bool Mark(HANDLE file) {
    OVERLAPPED place{};
    place.OffsetHigh = 0x40000000;
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != 0;
}

// The C library's number for the last failure of a call of the system.
int LastError() {
    switch (GetLastError()) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return ENOENT;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return ENOSPC;
        case ERROR_WRITE_PROTECT:
            return EROFS;
        default:
            return EACCES;
    }
}

bool IsFolder(const char* name) {
    const DWORD about = GetFileAttributesW(WideText(name).c_str());
    return about != INVALID_FILE_ATTRIBUTES && (about & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The system tells long numbers in halves.
uint64_t Join(DWORD high, DWORD low) { return uint64_t{high} << 32 | low; }

}  // namespace

// The C library would open a file so that nobody could rename or delete it meanwhile.
File::File(const char* name, const char* mode) {
    const Mode how = ReadMode(mode);
    const HANDLE file = Open(name, how.access, how.disposition);
    if (file == INVALID_HANDLE_VALUE) {
        const int error = LastError();
        errno = error == EACCES && IsFolder(name) ? EISDIR : error;
        return;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY | how.flags);
    if (descriptor < 0)
        CloseHandle(file);
    else if ((stream_ = _wfdopen(descriptor, (WideText(mode) + L'b').c_str())) == nullptr)
        _close(descriptor);
}

bool File::CutTo(int64_t size) { return stream_ != nullptr && _chsize_s(_fileno(stream_), size) == 0; }

bool FileExists(const char* name) { return GetFileAttributesW(WideText(name).c_str()) != INVALID_FILE_ATTRIBUTES; }

bool ReadFileStamp(const char* name, FileStamp* stamp) {
    // This much may be asked of a file that somebody else keeps for himself.
    const HANDLE file = Open(name, FILE_READ_ATTRIBUTES, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    BY_HANDLE_FILE_INFORMATION about;
    const bool regular = GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &about) != 0 &&
                         (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    CloseHandle(file);
    if (!regular)
        return false;
    stamp->device = about.dwVolumeSerialNumber;
    stamp->number = Join(about.nFileIndexHigh, about.nFileIndexLow);
    stamp->size = static_cast<int64_t>(Join(about.nFileSizeHigh, about.nFileSizeLow));
    stamp->changed =
        static_cast<int64_t>(Join(about.ftLastWriteTime.dwHighDateTime, about.ftLastWriteTime.dwLowDateTime));
    return true;
}

// A file that somebody has open keeps its name until it is closed, so it is given another one first.
bool DeleteFile(const char* name) {
    FileStamp stamp;
    const std::wstring wide = WideText(name);
    const std::wstring aside = wide + L".deleted";
    if (!ReadFileStamp(name, &stamp) || MoveFileExW(wide.c_str(), aside.c_str(), 0) == 0)
        return DeleteFileW(wide.c_str()) != 0;
    if (DeleteFileW(aside.c_str()) != 0)
        return true;
    MoveFileExW(aside.c_str(), wide.c_str(), 0);
    return false;
}

// The C library's own would not put it in the place of another file.
bool RenameFile(const char* from, const char* to) {
    return MoveFileExW(WideText(from).c_str(), WideText(to).c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

// The file stays the same one: whoever has its mark empties it.
FileLock::Claimed FileLock::Claim(const char* name) {
    Release();
    const HANDLE file = Open(name, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
    if (file == INVALID_HANDLE_VALUE) {
        // To ask whether it is there would change the system's last failure.
        const int error = LastError();
        const bool exists = FileExists(name);
        errno = error;
        return exists ? IN_USE : NOT_TO_BE_HAD;
    }
    file_ = reinterpret_cast<intptr_t>(file);
    if (Mark(file) && SetEndOfFile(file) != 0)
        return CLAIMED;
    Release();
    return IN_USE;
}

void FileLock::Release() {
    if (file_ != NO_FILE)
        CloseHandle(reinterpret_cast<HANDLE>(file_));
    file_ = NO_FILE;
}

}  // namespace vrel
