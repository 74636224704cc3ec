#include "interface/messages.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

#include "interface/pblock.h"
#include "platform/file.h"
#include "platform/standard_output.h"

namespace vrel {

const char* const version = "Vrel 2.6";
const char* const logfile = "vrel.log";

namespace {

constexpr size_t USUAL_LINE = 2048;

File fdlog;
FileLock log_lock;

// Workers report while the main thread answers commands: one line at a time, the same order in output and log.
std::mutex output;

// The progress line that stands on the terminal, empty for none. With `output` held, as all that follows.
std::array<char, 80> progress{};

void EraseProgress() {
    if (progress[0] != '\0')
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(std::strlen(progress.data())), "");
}

// Below whole lines the progress stands again; what ends in the middle of one isn't written into.
void RedrawProgress(bool whole_line) {
    if (!whole_line)
        progress[0] = '\0';
    else if (progress[0] != '\0')
        std::fputs(progress.data(), stderr);
}

void WriteOut(const char* text, size_t size, const char* end) {
    EraseProgress();
    const bool read = WriteOutput(text, size, end, std::strlen(end));
    RedrawProgress(*end == '\n' || (size > 0 && text[size - 1] == '\n'));
    // Nobody reads any more.
    if (!read)
        PBlock.quit = 1;
}

// A log that can't be written is no reason to end: a word about it, and no more of it.
void WriteLog(const char* text, size_t size) {
    if (!PBlock.log || !fdlog)
        return;
    if (fdlog.Write(text, size) && fdlog.WriteText("\n") && fdlog.Flush())
        return;
    std::fprintf(stderr, "%s: %s\n", logfile, FileTrouble());
    fdlog.Close();
}

void ShowLine(const char* text, size_t size) {
    const std::lock_guard<std::mutex> guard(output);
    WriteOut(text, size, "\n");
    WriteLog(text, size);
}

void PrintText(const char* text, size_t size) {
    const std::lock_guard<std::mutex> guard(output);
    WriteOut(text, size, "");
}

// Hands the formatted text to `sink`. Memory is only asked for if the text is unusually long.
void WithFormatted(const char* format, va_list arguments, void (*sink)(const char* text, size_t size)) {
    std::array<char, USUAL_LINE> line;
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    const size_t size = length < 0 ? 0U : static_cast<unsigned>(length);
    if (size < line.size()) {
        sink(line.data(), size);
    } else {
        std::string text(size, '\0');
        std::vsnprintf(text.data(), size + 1, format, again);
        sink(text.data(), size);
    }
    va_end(again);
}

}  // namespace

void ShowMessage(const char* text) { ShowLine(text, std::strlen(text)); }

void ShowFormatted(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WithFormatted(format, arguments, ShowLine);
    va_end(arguments);
}

void LogMessage(const char* text) {
    const std::lock_guard<std::mutex> guard(output);
    WriteLog(text, std::strlen(text));
}

void Print(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WithFormatted(format, arguments, PrintText);
    va_end(arguments);
}

void Complain(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WithFormatted(format, arguments, [](const char* text, size_t size) {
        const std::lock_guard<std::mutex> guard(output);
        EraseProgress();
        std::fprintf(stderr, "%.*s\n", static_cast<int>(size), text);
        RedrawProgress(true);
    });
    va_end(arguments);
}

void ShowProgressLine(const char* text) {
    const std::lock_guard<std::mutex> guard(output);
    EraseProgress();
    std::snprintf(progress.data(), progress.size(), "%s", text);
    RedrawProgress(true);
}

void OpenLog() {
    const FileLock::Claimed claimed = log_lock.Claim(logfile);
    if (claimed == FileLock::CLAIMED)
        fdlog = File(logfile, "w");
    else if (claimed == FileLock::IN_USE)
        Print("log file in use\n\n");
    else
        Complain("%s: %s", logfile, FileTrouble());
}

void CloseLog() {
    fdlog.Close();
    log_lock.Release();
}

}  // namespace vrel
