// SPDX-License-Identifier: BSD-3-Clause
// Back-substitution where the rank is beyond doubt, singular values where it is not.
#include "least_squares/small_system.h"

#include <algorithm>
#include <cmath>

namespace kelvane {
namespace {

/// Below this part of the largest, a singular value of so many rows is made of rounding.
double rank_limit(std::size_t num_rows, std::size_t n) { return static_cast<double>(std::max(num_rows, n)) * eps; }

/// Row by row, n entries of a triangle and one of a right-hand side.
std::size_t at(std::size_t i, std::size_t j, std::size_t n) { return i * (n + 1) + j; }

/// Column by column, so that the sums do not wait for each other.
[[gnu::always_inline]] inline double squared_norm(const double* triangle, std::size_t n) {
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
                                                   double* y) {
#pragma GCC unroll 8
  for (std::size_t i = n; i-- > 0;) {
    double total = triangle[at(i, n, n)];
#pragma GCC unroll 8
    for (std::size_t j = n - 1; j > i; --j) total -= triangle[at(i, j, n)] * y[j];
    y[i] = total * inverse[at(i, i, n)];
  }
}

/// The squared length of c.
[[gnu::always_inline]] inline double squared_length_of_last(const double* triangle, std::size_t n) {
  double total = 0.0;
#pragma GCC unroll 8
  for (std::size_t i = 0; i < n; ++i) total += triangle[at(i, n, n)] * triangle[at(i, n, n)];
  return total;
}

/// Solves where the rank is beyond doubt: sigma_max / sigma_min <= |R|_F |R^-1|_F, and up to this bound no rounding of
/// the rows can bring sigma_min near the limit below which it would count as zero. No column is shorter than
/// sigma_min, so that |R|_F tells whether the scale is good. With a static size, that of a pose, the loops are
/// unrolled.
template <std::size_t static_n>
bool solve_plain(const double* triangle, std::size_t dynamic_n, double limit, double* inverse, double* y) {
  constexpr double distance_from_limit = 100.0;
  const std::size_t n = static_n == 0 ? dynamic_n : static_n;
  invert(triangle, n, inverse);
  const double square = squared_norm(triangle, n);
  const double square_of_c = squared_length_of_last(triangle, n);
  const double bound = 1.0 / (limit * distance_from_limit);
  const bool is_regular = square * squared_norm(inverse, n) <= bound * bound;  // not so for NaN
  const bool is_safe = is_safe_square(square) && (square_of_c == 0.0 || is_safe_square(square_of_c));
  if (!is_regular || !is_safe) return false;
  substitute_back(triangle, inverse, n, y);
  return true;
}

/// Entries left of the diagonal are zero, and cost less than to leave them out.
template <std::size_t static_n>
void sum_up_squares(const double* triangle, std::size_t dynamic_n, double* sums) {
  const std::size_t n = static_n == 0 ? dynamic_n : static_n;
  for (std::size_t j = 0; j <= n; ++j) {
    double total = 0.0;
    for (std::size_t i = 0; i < n; ++i) total += triangle[at(i, j, n)] * triangle[at(i, j, n)];
    sums[j] = total;
  }
}

}  // namespace

void squared_column_lengths(const double* triangle, std::size_t n, double* squared_lengths) {
  const auto sum_up = n == 6 ? sum_up_squares<6> : n == 7 ? sum_up_squares<7> : sum_up_squares<0>;
  sum_up(triangle, n, squared_lengths);
}

bool Small_system::solve_plainly(const double* triangle, std::size_t n, std::size_t num_rows, double* y) {
  inverse_.resize(n * (n + 1));
  const auto solve = n == 6 ? solve_plain<6> : n == 7 ? solve_plain<7> : solve_plain<0>;
  return solve(triangle, n, rank_limit(num_rows, n), inverse_.data(), y);
}

bool Small_system::solve(const double* triangle, std::size_t n, std::size_t num_rows, Units units, double* y) {
  if (solve_plainly(triangle, n, num_rows, y)) return true;
  cut(triangle, n, num_rows, units);
  if (num_kept_ < n) return false;
  add_up(0.0, y);
  for (std::size_t j = 0; j < n; ++j) y[j] *= unit_[j];
  return true;
}

void Small_system::solve_shortest(const double* triangle, std::size_t n, std::size_t num_rows, Units units, double* y) {
  if (solve_plainly(triangle, n, num_rows, y)) return;
  cut(triangle, n, num_rows, units);
  shortest(y);
}

/// Leaves the rows above the limit of rounding.
void Small_system::cut(const double* triangle, std::size_t n, std::size_t num_rows, Units units) {
  n_ = n;
  choose_units(triangle, units);
  scaled_.resize(n * (n + 1));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) scaled_[at(i, j, n)] = triangle[at(i, j, n)] * unit_[j];
    scaled_[at(i, n, n)] = triangle[at(i, n, n)];
  }
  singular_values_.decompose(scaled_.data(), n, n);
  truncate(std::max(rank_limit(num_rows, n) * singular_values_.largest(), singular_values_.usual_limit()));
}

void Small_system::choose_units(const double* triangle, Units units) {
  Aligned_buffer<8> lengths;
  lengths.resize(n_ + 1);
  squared_column_lengths(triangle, n_, lengths.data());
  // Next to the whole, a column shorter than this has no singular value above the usual limit.
  double visible = 0.0;
  if (units == Units::last_three) {
    std::fill_n(lengths.data(), n_ - 3, *std::max_element(lengths.data(), lengths.data() + n_ - 3));
    std::fill_n(lengths.data() + n_ - 3, 3, *std::max_element(lengths.data() + n_ - 3, lengths.data() + n_));
  } else {
    for (std::size_t j = 0; j < n_; ++j) visible += 4.0 * eps * eps * lengths[j];
  }
  const double largest = *std::max_element(lengths.data(), lengths.data() + n_);
  const auto power_of = [](double squared_length) { return std::ilogb(std::sqrt(squared_length)); };
  unit_.resize(n_);
  for (std::size_t j = 0; j < n_; ++j) {
    unit_[j] = units != Units::as_they_are && lengths[j] > visible
                   ? std::scalbn(1.0, power_of(largest) - power_of(lengths[j]))
                   : 1.0;
  }
}

/// Keeps one row for each singular value above the limit, in the original units.
void Small_system::truncate(double limit) {
  kept_.resize(n_ * (n_ + 1));
  num_kept_ = 0;
  for (std::size_t i = 0; i < n_; ++i) {
    const double sigma = singular_values_.sigma(i);
    if (!(sigma > limit)) continue;
    double* row = &kept_[num_kept_++ * (n_ + 1)];
    for (std::size_t j = 0; j < n_; ++j) row[j] = sigma * singular_values_.v(i)[j] / unit_[j];
    row[n_] = singular_values_.component(i);
  }
}

void Small_system::shortest(double* y) {
  std::fill_n(y, n_, 0.0);
  if (num_kept_ == 0) return;
  singular_values_.decompose(kept_.data(), num_kept_, n_);
  add_up(singular_values_.usual_limit(), y);
}

/// The solution along the singular values above the limit.
void Small_system::add_up(double limit, double* y) const {
  std::fill_n(y, n_, 0.0);
  for (std::size_t i = 0; i < n_; ++i) {
    if (!(singular_values_.sigma(i) > limit)) continue;
    const double along = singular_values_.component(i) / singular_values_.sigma(i);
    for (std::size_t j = 0; j < n_; ++j) y[j] += along * singular_values_.v(i)[j];
  }
}

}  // namespace kelvane
