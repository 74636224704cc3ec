#pragma once

#include <string>
#include <vector>

namespace vrel {

// The real program on pipes, as an interface talks to it.
class EngineProcess {
public:
    // Starts the program in a folder of its own, where it may leave files.
    EngineProcess(const std::string& program, const std::vector<std::string>& arguments, const std::string& folder);
    // Ends it, by force if need be.
    ~EngineProcess();
    EngineProcess(const EngineProcess&) = delete;
    EngineProcess& operator=(const EngineProcess&) = delete;

    void Send(const std::string& line);
    // The next line, without its end. False if none comes within the time, or the program has ended.
    bool ReadLine(std::string* line, int milliseconds);
    // Reads on until a line begins with `start`; all lines read go to `lines` if it isn't null.
    bool WaitFor(const std::string& start, int milliseconds, std::vector<std::string>* lines = nullptr);
    // Sends "quit" and waits: the exit status, -1 if the program had to be killed or crashed.
    int Quit(int milliseconds);

private:
    int pid_ = -1;
    int to_ = -1;
    int from_ = -1;
    std::string buffer_;
};

}  // namespace vrel
