// SPDX-License-Identifier: BSD-3-Clause
// The minimum-norm solution of a small triangular least-squares system.
#pragma once

#include <cstddef>
#include <memory>
#include <opencv2/core.hpp>

#include "fw_tools/aligned_buffer.h"

namespace fw {

/// sum R_ij^2 over the triangle; c does not count.
double squared_norm_of_triangle(const double* triangle, std::size_t n);

/// Solves R dx = c for the n by n upper triangle R that stands for a J of num_rows rows: the dx of least length among
/// those of least |R dx - c|. Singular values up to max(2 eps sum(sigma), max(num_rows, n) eps max(sigma)) count as
/// zero: the first is OpenCV's own limit, the second grows with the rounding of J. Memory is kept for the next system.
class Triangular_system {
 public:
  /// `triangle` as Row_reduction leaves it, finite and well scaled, with its squared norm; dx has n entries.
  void solve(const double* triangle, double squared_norm, std::size_t n, std::size_t num_rows, double* dx);

 private:
  void solve_by_singular_values(const double* triangle, std::size_t n, double rank_limit, double* dx);

  struct Decomposition {
    cv::Mat sigma, U, Vt;
  };

  Small_buffer<56> inverse_;                      // seven unknowns
  std::unique_ptr<Decomposition> decomposition_;  // made when it is first needed
};

}  // namespace fw
