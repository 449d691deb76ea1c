// SPDX-License-Identifier: BSD-3-Clause
// Back-substitution where the rank is beyond doubt, singular values where it is not.
#include "fw_opt/triangular_system.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fw {
namespace {

constexpr double eps = std::numeric_limits<double>::epsilon();

/// Row by row, n entries of a triangle and one of a right-hand side.
std::size_t at(std::size_t i, std::size_t j, std::size_t n) { return i * (n + 1) + j; }

/// Column by column, so that the sums do not wait for each other.
template <std::size_t static_n>
[[gnu::always_inline]] inline double squared_norm(const double* triangle, std::size_t dynamic_n) {
  const std::size_t n = static_n == 0 ? dynamic_n : static_n;
  double total = 0.0;
#pragma GCC unroll 8
  for (std::size_t i = 0; i < n; ++i) {
    double of_row = 0.0;
#pragma GCC unroll 8
    for (std::size_t j = i; j < n; ++j) of_row += triangle[at(i, j, n)] * triangle[at(i, j, n)];
    total += of_row;
  }
  return total;
}

/// (R^-1)_jj = 1 / R_jj, (R^-1)_ij = -(sum over i < k <= j of R_ik (R^-1)_kj) / R_ii.
[[gnu::always_inline]] inline void invert(const double* triangle, std::size_t n, double* inverse) {
#pragma GCC unroll 8
  for (std::size_t j = 0; j < n; ++j) inverse[at(j, j, n)] = 1.0 / triangle[at(j, j, n)];
#pragma GCC unroll 8
  for (std::size_t j = 1; j < n; ++j) {
#pragma GCC unroll 8
    for (std::size_t i = j; i-- > 0;) {
      double total = 0.0;
#pragma GCC unroll 8
      for (std::size_t k = j; k > i; --k) total += triangle[at(i, k, n)] * inverse[at(k, j, n)];  // newest last
      inverse[at(i, j, n)] = -total * inverse[at(i, i, n)];
    }
  }
}

[[gnu::always_inline]] inline void substitute_back(const double* triangle, const double* inverse, std::size_t n,
                                                   double* dx) {
#pragma GCC unroll 8
  for (std::size_t i = n; i-- > 0;) {
    double total = triangle[at(i, n, n)];
#pragma GCC unroll 8
    for (std::size_t j = n - 1; j > i; --j) total -= triangle[at(i, j, n)] * dx[j];
    dx[i] = total * inverse[at(i, i, n)];
  }
}

/// Solves where the rank is beyond doubt: sigma_max / sigma_min <= |R|_F |R^-1|_F, and up to this bound no rounding of
/// J or R can bring sigma_min near the limit below which it would count as zero. With a static size, that of a pose,
/// the loops are unrolled.
template <std::size_t static_n>
bool solve_regular(const double* triangle, double squared_norm_of_R, std::size_t dynamic_n, double rank_limit,
                   double* inverse, double* dx) {
  constexpr double largest_condition = 1e8;  // the inverse still has half of its digits
  constexpr double distance_from_limit = 100.0;
  const std::size_t n = static_n == 0 ? dynamic_n : static_n;
  invert(triangle, n, inverse);
  const double squared_condition = squared_norm_of_R * squared_norm<static_n>(inverse, n);
  const double bound = std::min(largest_condition, 1.0 / (rank_limit * distance_from_limit));
  if (!(squared_condition <= bound * bound)) return false;  // or NaN
  substitute_back(triangle, inverse, n, dx);
  return true;
}

}  // namespace

double squared_norm_of_triangle(const double* triangle, std::size_t n) {
  return n == 6 ? squared_norm<6>(triangle, n) : n == 7 ? squared_norm<7>(triangle, n) : squared_norm<0>(triangle, n);
}

void Triangular_system::solve(const double* triangle, double squared_norm, std::size_t n, std::size_t num_rows,
                              double* dx) {
  const double rank_limit = static_cast<double>(std::max(num_rows, n)) * eps;
  inverse_.resize(n * (n + 1));
  const auto solve_at_once = n == 6 ? solve_regular<6> : n == 7 ? solve_regular<7> : solve_regular<0>;
  if (!solve_at_once(triangle, squared_norm, n, rank_limit, inverse_.data(), dx)) {
    solve_by_singular_values(triangle, n, rank_limit, dx);
  }
}

void Triangular_system::solve_by_singular_values(const double* triangle, std::size_t n, double rank_limit, double* dx) {
  const int size = static_cast<int>(n);
  // OpenCV does not write to the source.
  const cv::Mat R(size, size, CV_64F, const_cast<double*>(triangle), (n + 1) * sizeof(double));
  if (decomposition_ == nullptr) decomposition_ = std::make_unique<Decomposition>();
  const auto& [sigma_matrix, U, Vt] = *decomposition_;
  cv::SVD::compute(R, decomposition_->sigma, decomposition_->U, decomposition_->Vt);
  const double* sigma = sigma_matrix.ptr<double>();
  double sum = 0.0;
  for (std::size_t i = 0; i < n; ++i) sum += sigma[i];
  const double limit = std::max(2.0 * eps * sum, rank_limit * sigma[0]);

  std::fill_n(dx, n, 0.0);
  for (std::size_t i = 0; i < n && sigma[i] > limit; ++i) {
    double component = 0.0;  // of c along column i of U
    for (std::size_t k = 0; k < n; ++k) component += U.ptr<double>(static_cast<int>(k))[i] * triangle[at(k, n, n)];
    component /= sigma[i];
    const double* v = Vt.ptr<double>(static_cast<int>(i));
    for (std::size_t k = 0; k < n; ++k) dx[k] += component * v[k];
  }
}

}  // namespace fw
