// SPDX-License-Identifier: BSD-3-Clause
// Rank and solution of a least-squares system of which only its triangle is left.
#pragma once

#include <cstddef>

#include "least_squares/aligned_buffer.h"
#include "least_squares/singular_values.h"

namespace kelvane {

/// Rows of [A | c], one behind the other.
struct Rows {
  const double* entries;
  std::size_t num_rows;
};

/// Solves small systems one after the other in the same memory.
class Small_system {
 public:
  /// How the unit of an unknown is chosen for the decision about the rank.
  enum class Units {
    as_they_are,  ///< what a column has lost to rounding shows against the others only
    each,         ///< every column by itself brought to one size, but those that cv::solve would not see
    last_three    ///< the last three columns together: angles against lengths, or lengths against angles
  };

  /// Takes the triangle of a system of num_rows rows. True: all in it is finite and well scaled, its rank is n beyond
  /// doubt, and y is the solution. False: nothing is known.
  bool solve_plainly(const double* triangle, std::size_t n, std::size_t num_rows, double* y);
  /// The same for a triangle that is finite and well scaled, and where it takes singular values to decide. True: the
  /// rank is n. False: rows() are what is left of it without the part that is rounding, in the original units.
  bool solve(const double* triangle, std::size_t n, std::size_t num_rows, Units units, double* y);
  /// See solve(); valid until the next call.
  Rows rows() const { return {kept_.data(), num_kept_}; }

  /// The y of least length among those of least squares for rows(), in the original units; singular values up to 2 eps
  /// times their sum count as zero, as in cv::solve.
  void shortest(double* y);
  /// shortest() where solve_plainly() is in doubt.
  void solve_shortest(const double* triangle, std::size_t n, std::size_t num_rows, Units units, double* y);

 private:
  void cut(const double* triangle, std::size_t n, std::size_t num_rows, Units units);
  void choose_units(const double* triangle, Units units);
  void truncate(double limit);
  void add_up(double limit, double* y) const;

  std::size_t n_ = 0;
  std::size_t num_kept_ = 0;
  Singular_values singular_values_;
  Aligned_buffer<8> unit_;  // powers of two by which columns are multiplied
  Aligned_buffer<64> scaled_;
  Aligned_buffer<64> inverse_;
  Aligned_buffer<64> kept_;
};

/// Whether squares and products of two squares keep their digits at this size; not so for NaN.
constexpr bool is_safe_square(double square) { return square >= 1e-120 && square <= 1e140; }

/// The squared lengths of the columns of a triangle of n unknowns; entry n is that of c.
void squared_column_lengths(const double* triangle, std::size_t n, double* squared_lengths);

}  // namespace kelvane
