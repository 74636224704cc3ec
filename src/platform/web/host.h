#pragma once

#include <cstdint>

// What the script that runs the engine does for it. It calls in turn what the sources of this folder export.
#ifdef __wasm__
#define VREL_FROM_HOST(name) __attribute__((import_module("host"), import_name(#name)))
#define VREL_FOR_HOST(name) __attribute__((export_name(#name)))
#else
#define VREL_FROM_HOST(name)
#define VREL_FOR_HOST(name)
#endif

namespace vrel {

extern "C" {

// Seconds of a monotonic clock that all threads share.
VREL_FROM_HOST(seconds) double HostSeconds();

// A number that differs from start to start.
VREL_FROM_HOST(seed) unsigned int HostSeed();

// True if a person is at the other end of a standard stream.
VREL_FROM_HOST(isTerminal) bool HostIsTerminal(int stream);

// Writes to standard output. False if nobody reads any more.
VREL_FROM_HOST(write) bool HostWrite(const char* text, int size);

// The input has room again for bytes that the host has held back.
VREL_FROM_HOST(takeMore) void HostTakeMore();

// Leaves the engine's whole stack for the host's, until that has something to tell and calls `resume`.
[[noreturn]] VREL_FROM_HOST(leave) void HostLeave();

// Files of the host's own, if it lends them: a program on the command line works on those, a page has none. A file is
// known by its number; what fails gives the error, as errno has it, below 0.
VREL_FROM_HOST(lendsFiles) bool HostLendsFiles();
VREL_FROM_HOST(open) int HostOpen(const char* name, const char* mode);
VREL_FROM_HOST(close) void HostClose(int file);
// Bytes read or written. A place below 0 means where the last call has ended.
VREL_FROM_HOST(readAt) int HostReadAt(int file, char* data, int size, double place);
VREL_FROM_HOST(writeAt) int HostWriteAt(int file, const char* data, int size, double place);
VREL_FROM_HOST(cutTo) int HostCutTo(int file, double size);
// Bytes, below 0 for what has no length and no places, such as a pipe.
VREL_FROM_HOST(sizeOf) double HostSizeOf(int file);
// Whether the name is that of a file of any kind; of a regular one device, number, size and time of change.
VREL_FROM_HOST(exists) bool HostExists(const char* name);
VREL_FROM_HOST(stamp) bool HostStamp(const char* name, uint64_t* stamp);
VREL_FROM_HOST(remove) int HostRemove(const char* name);
VREL_FROM_HOST(rename) int HostRename(const char* from, const char* to);
// As FileLock::Claim; `release` gives back what was claimed.
VREL_FROM_HOST(claim) int HostClaim(const char* name);
VREL_FROM_HOST(release) void HostRelease(int file);
}

}  // namespace vrel
