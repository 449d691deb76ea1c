// SPDX-License-Identifier: BSD-3-Clause
// An open file of the system.
#pragma once

#include <string>
#include <utility>

#include "model_files/system_calls.h"

namespace kelvane {

/// Closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  /// Does not wait for the other end of a pipe.
  static Descriptor for_reading(const std::string& path) {
    return Descriptor(system_calls::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  }

  bool is_open() const { return number_ >= 0; }
  int number() const { return number_; }
  /// Whether all that was written has arrived, as far as closing can tell.
  bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

}  // namespace kelvane
