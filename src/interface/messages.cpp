#include "interface/messages.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "interface/pblock.h"
#include "platform/file.h"

namespace vrel {

const char* const version = "Vrel 2.6";

namespace {

constexpr const char* logfile = "vrel.log";
File fdlog;

// A whole line goes out with one call, so that lines of different threads never mix.
void WriteOut(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) == 0 && written)
        return;
    // Nobody reads any more.
    PBlock.stop = STOP_COMMAND;
    PBlock.quit = 1;
}

std::string Formatted(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0)
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace

void ShowMessage(const char* text) {
    WriteOut(std::string(text) + '\n');
    LogMessage(text);
}

void ShowFormatted(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string text = Formatted(format, arguments);
    va_end(arguments);
    ShowMessage(text.c_str());
}

void LogMessage(const char* text) {
    if (!PBlock.log || !fdlog)
        return;
    fdlog.WriteText((std::string(text) + '\n').c_str());
    fdlog.Flush();
}

void Print(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteOut(Formatted(format, arguments));
    va_end(arguments);
}

void OpenLog() {
    if (FileExists(logfile) && !DeleteFile(logfile)) {
        Print("log file in use\n\n");
        return;
    }
    fdlog = File(logfile, "w");
}

void CloseLog() { fdlog.Close(); }

}  // namespace vrel
