// SPDX-License-Identifier: BSD-3-Clause
// The minimum-norm least-squares solution of a linear system that comes in pieces.
#pragma once

#include <cstddef>

#include "fw_opt/packed_equations.h"
#include "fw_opt/row_reduction.h"
#include "fw_opt/triangular_system.h"

namespace fw {

/// A system J dx = b of n unknowns whose rows can be had more than once.
class Row_source {
 public:
  /// Gives every row to the sink, piece by piece, as n columns of J and one of b.
  virtual void send(Row_sink& sink) = 0;

 protected:
  ~Row_source() = default;
};

/// Solves one system after the other in the same memory.
class Least_squares {
 public:
  /// Takes the rows of a system of n >= 1 unknowns.
  void reduce(Row_source& source, std::size_t n);
  /// Solves the system that was reduced last, whose source has to be able to send the same rows again: dx becomes the
  /// vector of least length among those of least |J dx - b|, n entries; NaN when J or b holds a NaN or an infinity. J
  /// has num_rows >= n rows, not counting those that only fill up. Which singular values count as zero: see
  /// Triangular_system.
  void solve(Row_source& source, std::size_t n, std::size_t num_rows, double* dx);

 private:
  void solve_scaled(Row_source& source, std::size_t n, std::size_t num_rows, double* dx);

  Row_reduction reduction_;
  Triangular_system triangular_system_;
};

}  // namespace fw
