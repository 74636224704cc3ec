#include "platform/standard_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "platform/clock.h"
#include "platform/threads.h"

namespace vrel {
namespace {

// Runs a test body in a process of its own, since standard input and its end belong to the whole process. The body
// returns 0, or the number of the first line that isn't as expected.
template <typename Body>
int InChild(Body body) {
    const pid_t child = fork();
    if (child == 0)
        _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#define CHECK_THAT(condition)      \
    do {                           \
        if (!(condition))          \
            return __LINE__ & 255; \
    } while (false)

// Puts a pipe in the place of standard input; the writing end.
int PipeAsInput() {
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    return ends[1];
}

bool Send(int fd, const std::string& text) { return write(fd, text.data(), text.size()) == ssize_t(text.size()); }

TEST(StandardInput, APipeIsReadWithoutWaiting) {
    EXPECT_EQ(InChild([] {
                  const int out = PipeAsInput();
                  char buffer[64];
                  CHECK_THAT(!InputIsTerminal());
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == INPUT_NOTHING);
                  CHECK_THAT(Send(out, "isready\ngo"));
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == 10);
                  CHECK_THAT(std::memcmp(buffer, "isready\ngo", 10) == 0);
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == INPUT_NOTHING);
                  return 0;
              }),
              0);
}

TEST(StandardInput, WhatHasNoRoomStaysInThePipe) {
    EXPECT_EQ(InChild([] {
                  const int out = PipeAsInput();
                  char buffer[64];
                  CHECK_THAT(Send(out, "abcdef"));
                  CHECK_THAT(ReadInput(buffer, 0) == INPUT_NOTHING);
                  CHECK_THAT(ReadInput(buffer, 4) == 4);
                  CHECK_THAT(WaitForInput(buffer, 64) == 2);
                  CHECK_THAT(std::memcmp(buffer, "ef", 2) == 0);
                  return 0;
              }),
              0);
}

TEST(StandardInput, TheEndComesAfterTheLastByteAndStays) {
    EXPECT_EQ(InChild([] {
                  const int out = PipeAsInput();
                  char buffer[64];
                  CHECK_THAT(Send(out, "quit"));
                  close(out);
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == 4);
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == INPUT_ENDED);
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == INPUT_ENDED);
                  CHECK_THAT(WaitForInput(buffer, sizeof buffer) == INPUT_ENDED);
                  return 0;
              }),
              0);
}

TEST(StandardInput, InputsWithoutBytesEndAtOnce) {
    for (const char* name : {"/dev/null", "/", ""}) {
        EXPECT_EQ(InChild([name] {
                      char buffer[64];
                      close(STDIN_FILENO);  // the empty name leaves it closed
                      CHECK_THAT(*name == '\0' || open(name, O_RDONLY) == STDIN_FILENO);
                      CHECK_THAT(ReadInput(buffer, sizeof buffer) == INPUT_ENDED);
                      CHECK_THAT(WaitForInput(buffer, sizeof buffer) == INPUT_ENDED);
                      return 0;
                  }),
                  0)
            << name;
    }
}

TEST(StandardInput, AFileIsReadToItsEnd) {
    EXPECT_EQ(InChild([] {
                  char name[] = "/tmp/vrel_input_XXXXXX";
                  const int file = mkstemp(name);
                  CHECK_THAT(Send(file, std::string(10000, 'x')));
                  lseek(file, 0, SEEK_SET);
                  dup2(file, STDIN_FILENO);
                  unlink(name);
                  char buffer[4096];
                  int total = 0;
                  int count;
                  while ((count = ReadInput(buffer, sizeof buffer)) > 0)
                      total += count;
                  CHECK_THAT(total == 10000);
                  CHECK_THAT(count == INPUT_ENDED);
                  return 0;
              }),
              0);
}

TEST(StandardInput, ANonBlockingPipeIsWaitedForToo) {
    EXPECT_EQ(InChild([] {
                  static int out = PipeAsInput();
                  fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK);
                  const ThreadBody write_late = [](void*) -> void* {
                      SleepMilliseconds(50);
                      Send(out, "late\n");
                      return nullptr;
                  };
                  CHECK_THAT(StartThread(write_late, nullptr) == 0);
                  char buffer[64];
                  CHECK_THAT(WaitForInput(buffer, sizeof buffer) == 5);
                  return 0;
              }),
              0);
}

// A terminal hands out finished lines only, and its end is a key.
TEST(StandardInput, ATerminalIsReadByLines) {
    EXPECT_EQ(InChild([] {
                  const int master = posix_openpt(O_RDWR | O_NOCTTY);
                  CHECK_THAT(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
                  const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
                  CHECK_THAT(terminal >= 0);
                  dup2(terminal, STDIN_FILENO);
                  char buffer[64];
                  CHECK_THAT(InputIsTerminal());
                  CHECK_THAT(Send(master, "e2"));
                  CHECK_THAT(ReadInput(buffer, sizeof buffer) == INPUT_NOTHING);
                  CHECK_THAT(Send(master, "e4\n"));
                  CHECK_THAT(WaitForInput(buffer, sizeof buffer) == 5);
                  CHECK_THAT(std::memcmp(buffer, "e2e4\n", 5) == 0);
                  CHECK_THAT(Send(master, "\x04"));
                  CHECK_THAT(WaitForInput(buffer, sizeof buffer) == INPUT_ENDED);
                  return 0;
              }),
              0);
}

}  // namespace
}  // namespace vrel
