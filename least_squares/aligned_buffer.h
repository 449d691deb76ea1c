// SPDX-License-Identifier: BSD-3-Clause
// Memory for doubles that begins on a cache line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kelvane {

inline constexpr std::size_t cache_line = 64;  ///< bytes; as long as the widest vector

/// An array of doubles whose content is rubbish until it is written, with room for a few in the object itself, so that
/// the usual case takes no allocation.
template <std::size_t usual>
class Aligned_buffer {
 public:
  /// Room for the usual number.
  Aligned_buffer() = default;
  Aligned_buffer(const Aligned_buffer&) = delete;
  Aligned_buffer& operator=(const Aligned_buffer&) = delete;

  /// The content is rubbish afterwards. When there is no memory, the room is what it was.
  void resize(std::size_t size) {
    if (size <= capacity_) return;
    // Aligned by hand: the aligned allocation takes many times as long as this one.
    more_.reset(new double[size + cache_line / sizeof(double)]);
    const std::uintptr_t misalignment = reinterpret_cast<std::uintptr_t>(more_.get()) % cache_line;
    data_ = more_.get() + (cache_line - misalignment) / sizeof(double);
    capacity_ = size;
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
  std::size_t capacity_ = usual;
  std::unique_ptr<double[]> more_;
};

}  // namespace kelvane
