// SPDX-License-Identifier: BSD-3-Clause
// Memory for doubles that begins on a cache line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace fw {

inline constexpr std::size_t cache_line = 64;  ///< bytes; as long as the widest vector

/// An array of doubles whose content is rubbish until it is written.
class Aligned_buffer {
 public:
  /// No memory.
  Aligned_buffer() = default;
  /// Room for `size` doubles.
  explicit Aligned_buffer(std::size_t size) { resize(size); }

  /// The content is rubbish afterwards. Memory is given back only at the end.
  void resize(std::size_t size) {
    size_ = 0;
    if (size > capacity_) {
      capacity_ = 0;
      // Aligned by hand: the aligned allocation takes many times as long as this one.
      memory_.reset(new double[size + cache_line / sizeof(double)]);
      const std::uintptr_t misalignment = reinterpret_cast<std::uintptr_t>(memory_.get()) % cache_line;
      data_ = memory_.get() + (cache_line - misalignment) / sizeof(double);
      capacity_ = size;
    }
    size_ = size;
  }

  /// Whether the size is 0.
  bool empty() const { return size_ == 0; }
  /// Doubles, as last asked for.
  std::size_t size() const { return size_; }
  /// The first double, on a cache line; null while there has been no memory.
  double* data() { return data_; }
  /// The first double, on a cache line; null while there has been no memory.
  const double* data() const { return data_; }
  /// Double i, not checked.
  // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.UndefReturn): i is below the size, so there is memory
  double& operator[](std::size_t i) { return data_[i]; }
  /// Double i, not checked.
  double operator[](std::size_t i) const { return data_[i]; }

 private:
  std::unique_ptr<double[]> memory_;
  double* data_ = nullptr;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
};

/// The same with room for a few doubles in the object itself, so that the usual case takes no allocation.
template <std::size_t usual>
class Small_buffer {
 public:
  /// Room for the usual number.
  Small_buffer() = default;
  Small_buffer(const Small_buffer&) = delete;
  Small_buffer& operator=(const Small_buffer&) = delete;

  /// The content is rubbish afterwards.
  void resize(std::size_t size) {
    if (size > usual) more_.resize(size);
    data_ = size > usual ? more_.data() : usual_;
  }

  /// The first double, on a cache line.
  double* data() { return data_; }
  /// The first double, on a cache line.
  const double* data() const { return data_; }
  /// Double i, not checked.
  double& operator[](std::size_t i) { return data_[i]; }
  /// Double i, not checked.
  double operator[](std::size_t i) const { return data_[i]; }

 private:
  alignas(cache_line) double usual_[usual];
  double* data_ = usual_;
  Aligned_buffer more_;
};

}  // namespace fw
