// SPDX-License-Identifier: BSD-3-Clause
// Linear least-squares systems for tests: random ones, ones of chosen singular values, and how they are sent.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

#include "least_squares/block.h"
#include "least_squares/matrix_solution.h"
#include "support/cases.h"
#include "support/reference_svd.h"

namespace support {

using Columns = std::vector<std::vector<double>>;

/// n columns of J, then b.
struct Linear_system {
  Columns columns;
  std::size_t n() const { return columns.size() - 1; }
  std::size_t m() const { return columns[0].size(); }
  std::vector<double>& b() { return columns.back(); }

  /// In the digits of the reference.
  reference::Matrix rows() const {
    reference::Matrix rows(m(), reference::Vector(n()));
    for (std::size_t i = 0; i < m(); ++i) {
      for (std::size_t c = 0; c < n(); ++c) rows[i][c] = columns[c][i];
    }
    return rows;
  }
  reference::Vector right_hand_side() const { return {columns.back().begin(), columns.back().end()}; }
};

inline double product_of(const std::vector<double>& a, const std::vector<double>& b) {
  double total = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) total += a[i] * b[i];
  return total;
}

inline double length_of(const std::vector<double>& a) { return std::sqrt(product_of(a, a)); }

/// a += factor b
inline void add(std::vector<double>& a, double factor, const std::vector<double>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) a[i] += factor * b[i];
}

/// Entries in [-1, 1].
inline Columns random_columns(std::size_t count, std::size_t m, Random& random) {
  Columns columns;
  while (columns.size() < count) columns.push_back(random.vector_in_cube(m, 1.0));
  return columns;
}

inline Linear_system random_system(std::size_t m, std::size_t n, Random& random) {
  return {random_columns(n + 1, m, random)};
}

/// Up to m orthonormal columns: each is cleaned twice of those in front, so they are orthogonal to rounding.
inline Columns orthonormal(std::size_t count, std::size_t m, Random& random) {
  Columns columns = random_columns(count, m, random);
  for (std::size_t c = 0; c < count; ++c) {
    for (std::size_t k = 0; k < 2 * c; ++k) {
      add(columns[c], -product_of(columns[c], columns[k % c]), columns[k % c]);
    }
    const double length = length_of(columns[c]);
    for (double& entry : columns[c]) entry /= length;
  }
  return columns;
}

/// J = U diag(sigma) V', b = U components + distance e with a unit vector e orthogonal to U; e is there where m > n.
inline Linear_system system_of(std::size_t m, const std::vector<double>& sigma, const std::vector<double>& components,
                               double distance, Random& random) {
  const std::size_t n = sigma.size();
  const Columns U = orthonormal(std::min(n + 1, m), m, random);
  const Columns V = orthonormal(n, n, random);
  Linear_system system{Columns(n + 1, std::vector<double>(m, 0.0))};
  for (std::size_t k = 0; k < n; ++k) {
    for (std::size_t c = 0; c < n; ++c) add(system.columns[c], sigma[k] * V[k][c], U[k]);
    add(system.b(), components[k], U[k]);
  }
  if (m > n) add(system.b(), distance, U[n]);
  return system;
}

/// Puts a system into a block so many rows at a time, zeros behind the last, and calls visit(number of rows, filled up
/// to a multiple of 8).
template <typename Visit>
void visit_blocks(const Linear_system& system, std::size_t rows_per_block, kelvane::Block& block, const Visit& visit) {
  for (std::size_t first = 0; first < system.m(); first += rows_per_block) {
    const std::size_t num_rows = std::min(rows_per_block, system.m() - first);
    const std::size_t num_filled = (num_rows + 7) / 8 * 8;
    for (std::size_t c = 0; c <= system.n(); ++c) {
      std::fill_n(block.column(c), num_filled, 0.0);
      std::copy_n(system.columns[c].data() + first, num_rows, block.column(c));
    }
    visit(num_filled);
  }
}

/// The step of a system as a matrix.
inline std::vector<double> step_of(const Linear_system& system,
                                   kelvane::Instruction_set set = kelvane::best_instruction_set()) {
  std::vector<double> J;
  for (std::size_t i = 0; i < system.m(); ++i) {
    for (std::size_t c = 0; c < system.n(); ++c) J.push_back(system.columns[c][i]);
  }
  std::vector<double> dx(system.n(), -1.5);
  kelvane::solve_least_squares(J.data(), system.columns.back().data(), system.m(), system.n(), dx.data(), set);
  return dx;
}

/// |a - b|
template <typename Numbers>
double distance_between(const std::vector<double>& a, const Numbers& b) {
  long double total = 0.0L;
  for (std::size_t i = 0; i < a.size(); ++i) total += (a[i] - b[i]) * (a[i] - b[i]);
  return static_cast<double>(std::sqrt(total));
}

inline bool are_same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

}  // namespace support
