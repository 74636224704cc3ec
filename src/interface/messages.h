#pragma once

namespace vrel {

extern const char* const version;

// Writes a line to standard output, flushes it, and copies it to the log. When nobody reads the output any more, the
// program is told to quit.
void ShowMessage(const char* text);

// The same with a format as of printf; a line of any length.
[[gnu::format(printf, 1, 2)]] void ShowFormatted(const char* format, ...);

// To the log alone, if it is open and on.
void LogMessage(const char* text);

// Writes to standard output alone: as it stands, without a line end.
[[gnu::format(printf, 1, 2)]] void Print(const char* format, ...);

// A word on standard error about what went wrong, one line.
[[gnu::format(printf, 1, 2)]] void Complain(const char* format, ...);

// Keeps a line on standard error, in the place of the one before and below all other output; an empty text takes it
// away.
void ShowProgressLine(const char* text);

// Name of the log.
extern const char* const logfile;

// Starts a new log file; without one the program goes on.
void OpenLog();
void CloseLog();

}  // namespace vrel
