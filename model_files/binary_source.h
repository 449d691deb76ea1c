// SPDX-License-Identifier: BSD-3-Clause
// The records of a binary file, one after the other.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "model_files/model_file.h"

namespace kelvane {

/// A number of records and their bytes, little-endian and without gaps. Each reading function throws File_error beyond
/// the end of the file.
class Binary_source {
 public:
  explicit Binary_source(const Model_file& file) : file_(file), at_(file.begin()) {}

  /// To the next record, if there is one. All of them must have room in the file with so many bytes at least.
  bool next_record(std::size_t least_bytes) {
    if (!has_count_) {
      num_records_ = list_of(least_bytes);
      has_count_ = true;
    }
    if (count_ < num_records_) {
      ++count_;
      return true;
    }
    if (at_ != file_.end()) {
      fail(offset(), std::to_string(left()) + " bytes follow the last of " + std::to_string(count_) + " records.");
    }
    return false;
  }

  std::size_t offset() const { return static_cast<std::size_t>(at_ - file_.bytes()); }
  std::size_t left() const { return static_cast<std::size_t>(file_.end() - at_); }

  template <typename T>
  T id() {
    if (left() < sizeof(T)) {
      fail(offset(), "the file ends in the middle of record " + std::to_string(count_) + ".");
    }
    T value;
    std::memcpy(&value, at_, sizeof(T));
    at_ += sizeof(T);
    return value;
  }

  double number() {
    const std::size_t start = offset();
    const auto value = id<double>();
    if (!std::isnormal(value) && value != 0.0) fail_number(start, value);
    return value;
  }

  /// The length of a list whose elements take so many bytes, which are in the file.
  std::uint64_t list_of(std::size_t bytes_each) {
    const std::size_t start = offset();
    return checked_length(start, id<std::uint64_t>(), bytes_each);
  }
  std::uint32_t short_list_of(std::size_t bytes_each) {
    const std::size_t start = offset();
    return static_cast<std::uint32_t>(checked_length(start, id<std::uint32_t>(), bytes_each));
  }

  /// Up to a zero byte, which is read too.
  std::string text() {
    const auto* const last = static_cast<const char*>(std::memchr(at_, '\0', left()));
    if (last == nullptr) fail(offset(), "the name that begins here has no end.");
    std::string value(at_, last);
    at_ = last + 1;
    return value;
  }

  /// Number of records so far.
  std::size_t count() const { return count_; }
  const Model_file& file() const { return file_; }
  [[noreturn]] void fail(std::size_t offset, const std::string& sentence) const { file_.fail(offset, sentence); }

 private:
  std::uint64_t checked_length(std::size_t start, std::uint64_t length, std::size_t bytes_each) const {
    if (length > left() / bytes_each) {
      fail(start, std::to_string(length) + " are announced, for which the file is too short.");
    }
    return length;
  }

  [[noreturn, gnu::cold, gnu::noinline]] void fail_number(std::size_t start, double value) const {
    if (!std::isfinite(value)) fail(start, "this number is not finite.");
    fail(start, "this number is below 2.2e-308: too small for a measurement.");
  }

  const Model_file& file_;
  const char* at_;
  bool has_count_ = false;
  std::uint64_t num_records_ = 0;
  std::size_t count_ = 0;
};

}  // namespace kelvane
