#pragma once

#include <cstddef>

// Standard output as a stream of bytes, without a buffer: what is written is out when the call returns.
namespace vrel {

// Writes `text` and, behind it, `end`, if possible in one piece. Waits for a slow reader. False if there is no reader
// any more; output that is lost in another way, such as on a full disk, is no reason to end.
bool WriteOutput(const char* text, size_t size, const char* end, size_t end_size);

// True if a person looks on at a terminal where standard error shows.
bool ErrorOutputIsTerminal();

// Gives standard streams that were closed at the start to the null device, so that no file gets their place and with
// it what is meant for them.
void OccupyStandardStreams();

// Lets a write without a reader, or beyond the limit that is set for the size of files, fail instead of ending the
// program there and then.
void IgnoreBrokenPipe();

}  // namespace vrel
