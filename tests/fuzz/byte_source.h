// SPDX-License-Identifier: BSD-3-Clause
// Decisions and numbers taken from a fuzzer's bytes; zeros when they are used up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace fuzz {

class Byte_source {
 public:
  Byte_source(const std::uint8_t* data, std::size_t size) : next_(data), left_(size) {}

  bool is_empty() const { return left_ == 0; }

  std::uint8_t byte() {
    if (left_ == 0) return 0;
    --left_;
    return *next_++;
  }

  /// 0 to count - 1; a byte decides.
  std::size_t choice(std::size_t count) { return byte() % count; }

  /// Any bit pattern.
  double raw_double() {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = bits << 8U | byte();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }

  std::string rest() {
    std::string text(left_, '\0');
    for (char& c : text) c = static_cast<char>(byte());
    return text;
  }

 private:
  const std::uint8_t* next_;
  std::size_t left_;
};

}  // namespace fuzz
