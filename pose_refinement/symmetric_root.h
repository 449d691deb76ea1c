// SPDX-License-Identifier: BSD-3-Clause
// Roots of covariances and of what they tell, their inverses.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kelvane {

/// Whether a symmetric matrix has the root that was wanted.
enum class Root { found, not_symmetric, not_positive };

/// What is below, of n by n numbers row by row. Only their ratios to the roots of the diagonal decide, so that no unit
/// does. The two halves may differ by the rounding of single precision; their mean counts.
template <std::size_t n>
class Symmetric_root {
 public:
  /// W with W'W = C^-1 for a covariance C, n rows of W one behind the other. C must be positive definite.
  static Root of_covariance(const double* C, double* W) {
    Symmetric_root root;
    const Root found = root.factorise(C, false);
    if (found != Root::found) return found;
    for (std::size_t j = 0; j < n; ++j) {  // U' (W D) = I, row by row
      for (std::size_t i = 0; i < n; ++i) {
        double entry = i == j ? 1.0 : 0.0;
        for (std::size_t k = j; k < i; ++k) entry -= root.U_[k][i] * W[n * k + j];
        W[n * i + j] = i < j ? 0.0 : entry / root.U_[i][i];
      }
    }
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j <= i; ++j) W[n * i + j] /= root.D_[j];
    }
    return Root::found;
  }

  /// W with W'W = C for information C, which may leave directions open.
  static Root of_information(const double* C, double* W) {
    Symmetric_root root;
    const Root found = root.factorise(C, true);
    if (found != Root::found) return found;
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) W[n * i + j] = i > j ? 0.0 : root.U_[i][j] * root.D_[j];
    }
    return Root::found;
  }

 private:
  /// C = D U'U D, U upper triangular, D the roots of the diagonal. Rows without a pivot are zero.
  Root factorise(const double* C, bool may_be_singular) {
    constexpr double least_pivot = 1e-12;  // of 1
    constexpr double single = 1e-6;
    for (std::size_t i = 0; i < n; ++i) {
      if (!(C[(n + 1) * i] >= 0.0)) return Root::not_positive;
      D_[i] = std::sqrt(C[(n + 1) * i]);
    }
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = i; j < n; ++j) {
        const double size = D_[i] * D_[j];
        const double upper = C[n * i + j];
        const double lower = C[n * j + i];
        if (!(std::abs(upper - lower) <= single * std::max(size, std::abs(upper)))) return Root::not_symmetric;
        double entry = 0.5 * upper + 0.5 * lower;
        if (size == 0.0 && entry != 0.0) return Root::not_positive;
        if (size != 0.0) entry = entry / D_[i] / D_[j];
        for (std::size_t k = 0; k < i; ++k) entry -= U_[k][i] * U_[k][j];
        U_[i][j] = entry;
      }
      if (!take_root_of_row(i, least_pivot, may_be_singular)) return Root::not_positive;
    }
    return Root::found;
  }

  /// A matrix that is not negative has no entry larger than the root of the product of the pivots.
  bool take_root_of_row(std::size_t i, double least_pivot, bool may_be_singular) {
    const double pivot = U_[i][i];
    if (pivot > least_pivot) {
      for (std::size_t j = i; j < n; ++j) U_[i][j] /= std::sqrt(pivot);
      return true;
    }
    constexpr double single = 1e-6;  // what rounding may have made of 0
    constexpr double most = 1e-3;    // its root
    bool is_none = may_be_singular && pivot >= -single;
    for (std::size_t j = i; j < n; ++j) {
      is_none = is_none && std::abs(U_[i][j]) <= most;
      U_[i][j] = 0.0;
    }
    return is_none;
  }

  double U_[n][n] = {};
  double D_[n] = {};
};

}  // namespace kelvane
