// SPDX-License-Identifier: BSD-3-Clause
// Powers of two that bring the columns of a system to a size whose squares are safe.
#pragma once

#include <cstddef>

#include "least_squares/block.h"

namespace kelvane {

/// Whether the triangle of n unknowns is finite, and each column of it and c of a length whose square neither overflows
/// nor underflows. If not, the rows hold something that is not finite, or have to be scaled first.
bool is_well_scaled(const double* triangle, std::size_t n);

/// Looks at all rows of a system, and divides them by powers of two when they are made again.
class Scaling {
 public:
  /// For n unknowns; all powers become 0.
  void start(std::size_t n);

  /// Remembers the largest entry of each column.
  void measure(Block& block, std::size_t num_rows);
  /// Whether all that was measured is finite.
  bool is_finite() const { return is_finite_; }
  /// Chooses a power for each range of columns [0, middle), [middle, n), and for b.
  void choose(std::size_t middle);

  /// That of column c; n is b.
  int power(std::size_t c) const { return static_cast<int>(power_[c]); }
  /// Divides every column by two to its power.
  void apply(Block& block, std::size_t num_rows) const;

 private:
  std::size_t n_ = 0;
  bool is_finite_ = true;
  Aligned_buffer<8> largest_;
  Aligned_buffer<8> power_;
};

/// value 2^power
double times_power_of_two(double value, int power);

}  // namespace kelvane
