// SPDX-License-Identifier: BSD-3-Clause
// Singular values of a few rows, and the shortest solution that follows from them.
#pragma once

#include <cstddef>
#include <limits>

#include "least_squares/aligned_buffer.h"

namespace kelvane {

inline constexpr double eps = std::numeric_limits<double>::epsilon();  ///< from 1 to the next double

/// A = U S V' of a small A with its right-hand side c, by rotations of its columns (one-sided Jacobi: Demmel and
/// Veselić 1992), which finds small singular values as exactly as the columns determine them, down to eps times the
/// longest column. Memory is kept for the next.
class Singular_values {
 public:
  /// Rows of [A | c] one behind the other, n + 1 entries each; finite, and no larger than their squares allow.
  void decompose(const double* rows, std::size_t num_rows, std::size_t n);

  /// Unknowns, and singular values, the zeros included.
  std::size_t n() const { return n_; }
  /// Singular value i, in no order.
  double sigma(std::size_t i) const { return sigma_[i]; }
  /// Entry i of U'c; zero where sigma(i) is.
  double component(std::size_t i) const { return component_[i]; }
  /// Column i of V, n entries.
  const double* v(std::size_t i) const { return v_.data() + i * n_; }
  /// The largest singular value.
  double largest() const;
  /// The limit of cv::solve: those up to 2 eps times the sum of all count as zero.
  double usual_limit() const;

 private:
  bool rotate(std::size_t p, std::size_t q);

  static constexpr std::size_t usual_n = 8;

  std::size_t num_rows_ = 0;
  std::size_t n_ = 0;
  double negligible_ = 0.0;                    // squared length of a column
  Aligned_buffer<usual_n * usual_n> columns_;  // of A V
  Aligned_buffer<usual_n * usual_n> v_;
  Aligned_buffer<usual_n> sigma_;
  Aligned_buffer<usual_n> component_;
};

}  // namespace kelvane
