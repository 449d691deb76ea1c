// SPDX-License-Identifier: BSD-3-Clause
// A piece of work in a process of its own, which is killed when it does not end.
#pragma once

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstddef>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>

namespace support {

#ifdef _WIN32

struct Shared_note {
  void write(const std::string& /*text*/) {}
};

/// In this process, as there is no fork: what hangs is ended by the time limit of ctest.
inline testing::AssertionResult ends_in_time(const std::function<bool(Shared_note&)>& work) {
  Shared_note note;
  return work(note) ? testing::AssertionSuccess() : testing::AssertionFailure() << "ended badly";
}

#else

/// Text that the child writes and the parent reads, also when the child was killed.
class Shared_note {
 public:
  Shared_note()
      : text_(static_cast<char*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    if (text_ == MAP_FAILED) throw std::runtime_error("no shared memory");
  }
  ~Shared_note() { munmap(text_, size); }
  Shared_note(const Shared_note&) = delete;
  Shared_note& operator=(const Shared_note&) = delete;

  void write(const std::string& text) { std::strncpy(text_, text.c_str(), size - 1); }
  std::string read() const { return text_; }

 private:
  static constexpr std::size_t size = 1024;
  char* text_;
};

/// Runs `work` in a child that has 60 seconds: against a hang, which is no measure of speed. `work` returns whether all
/// was well and notes what it is at.
inline testing::AssertionResult ends_in_time(const std::function<bool(Shared_note&)>& work) {
  constexpr unsigned seconds = 60;
  Shared_note note;
  const pid_t child = fork();
  if (child < 0) return testing::AssertionFailure() << "no child process";
  if (child == 0) {
    alarm(seconds);  // nobody handles the signal, so it ends the process
    _exit(work(note) ? 0 : 1);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) return testing::AssertionFailure() << "lost the child process";
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return testing::AssertionSuccess();
  const std::string end = WIFSIGNALED(status) ? "killed by signal " + std::to_string(WTERMSIG(status))
                                              : "exit code " + std::to_string(WEXITSTATUS(status));
  return testing::AssertionFailure() << end << " at " << note.read();
}

#endif

}  // namespace support
