// SPDX-License-Identifier: BSD-3-Clause
// Whatever a part of a test writes to the standard output or the standard error, by whichever way.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace support {

/// Both file descriptors lead into a file of its own from the constructor to text(), so that C and C++ streams and bare
/// system calls are all seen.
class Captured_output {
 public:
  Captured_output() : file_(std::tmpfile()) {
    if (file_ == nullptr) throw std::runtime_error("no temporary file");
    std::fflush(nullptr);
    for (int descriptor : {1, 2}) {
      saved_[descriptor - 1] = dup(descriptor);
      dup2(fileno(file_), descriptor);
    }
  }
  ~Captured_output() {
    restore();
    std::fclose(file_);
  }
  Captured_output(const Captured_output&) = delete;
  Captured_output& operator=(const Captured_output&) = delete;

  /// Ends the capture.
  std::string text() {
    restore();
    std::rewind(file_);
    std::string found;
    for (int c = std::getc(file_); c != EOF; c = std::getc(file_)) found.push_back(static_cast<char>(c));
    return found;
  }

 private:
  void restore() {
    std::fflush(nullptr);
    for (int descriptor : {1, 2}) {
      int& saved = saved_[descriptor - 1];
      if (saved < 0) continue;
      dup2(saved, descriptor);
      close(saved);
      saved = -1;
    }
  }

  std::FILE* file_;
  int saved_[2] = {-1, -1};
};

}  // namespace support
