// SPDX-License-Identifier: BSD-3-Clause
// An allocator that counts blocks and refuses chosen ones of those that the module asks for.
#pragma once

#include <cstddef>

namespace trust {

/// Whether one allocation fails or memory stays exhausted from there on.
enum class Shortage { once, lasting };

/// For counting only.
inline constexpr long none_fails = -1;

/// From construction to destruction: `count` allocations of the module succeed, on the thread that it was called on and
/// on those that it starts, and the next one fails. What the host allocates succeeds always. Counted are malloc and its
/// relatives, which operator new ends in; where a sanitizer has replaced those, operator new alone.
class Failing_memory {
 public:
  Failing_memory(long count, Shortage shortage);
  ~Failing_memory();
  Failing_memory(const Failing_memory&) = delete;
  Failing_memory& operator=(const Failing_memory&) = delete;

  bool has_failed() const;
  /// From here on only counts.
  void end_shortage();
  /// Blocks that were allocated since construction, by anybody, and not freed. Always 0 under a sanitizer, which looks
  /// for leaks itself.
  long num_blocks_left() const;
  /// Allocations since construction, by anybody, and what they asked for together.
  long num_allocations() const;
  std::size_t num_bytes() const;
};

}  // namespace trust
