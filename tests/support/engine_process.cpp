#include "support/engine_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>

namespace vrel {

namespace {

using Clock = std::chrono::steady_clock;

int MillisecondsTo(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

EngineProcess::EngineProcess(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& folder) {
    signal(SIGPIPE, SIG_IGN);
    std::filesystem::create_directories(folder);
    const std::string path = std::filesystem::absolute(program).string();
    std::array<int, 2> in{}, out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        return;
    std::vector<char*> words{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        if (chdir(folder.c_str()) == 0)
            execv(path.c_str(), words.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    to_ = in[1];
    from_ = out[0];
}

EngineProcess::~EngineProcess() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    if (to_ >= 0)
        close(to_);
    if (from_ >= 0)
        close(from_);
}

void EngineProcess::Send(const std::string& line) {
    const std::string text = line + "\n";
    size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t n = write(to_, text.data() + sent, text.size() - sent);
        if (n <= 0)
            return;
        sent += static_cast<size_t>(n);
    }
}

bool EngineProcess::ReadLine(std::string* line, int milliseconds) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (true) {
        const size_t end = buffer_.find('\n');
        if (end != std::string::npos) {
            *line = buffer_.substr(0, end);
            buffer_.erase(0, end + 1);
            return true;
        }
        pollfd wait{from_, POLLIN, 0};
        const int ready = poll(&wait, 1, MillisecondsTo(deadline));
        if (ready < 0 && errno == EINTR)  // as after having been stopped for a while
            continue;
        if (ready <= 0)
            return false;
        std::array<char, 4096> chunk;
        const ssize_t n = read(from_, chunk.data(), chunk.size());
        if (n <= 0)
            return false;
        buffer_.append(chunk.data(), static_cast<size_t>(n));
    }
}

bool EngineProcess::WaitFor(const std::string& start, int milliseconds, std::vector<std::string>* lines) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::string line;
    while (ReadLine(&line, MillisecondsTo(deadline))) {
        if (lines != nullptr)
            lines->push_back(line);
        if (line.rfind(start, 0) == 0)
            return true;
    }
    return false;
}

int EngineProcess::Quit(int milliseconds) {
    Send("quit");
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::string line;
    while (ReadLine(&line, MillisecondsTo(deadline))) {
    }
    int status = 0;
    while (waitpid(pid_, &status, WNOHANG) == 0) {
        if (MillisecondsTo(deadline) == 0)
            return -1;
        usleep(1000);
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace vrel
