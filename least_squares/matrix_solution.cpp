// SPDX-License-Identifier: BSD-3-Clause
// The rows of a matrix, block by block.
#include "least_squares/matrix_solution.h"

#include <algorithm>
#include <limits>

#include "least_squares/scaling.h"
#include "least_squares/small_system.h"
#include "least_squares/triangle.h"

namespace kelvane {
namespace {

/// Rows of [J | b] on their way into a block.
struct Matrix_rows {
  const double* J;
  const double* b;
  std::size_t m, n;

  /// Calls visit(number of rows) for every block that it has filled.
  template <typename Visit>
  void visit_blocks(Block& block, const Visit& visit) const {
    for (std::size_t first = 0; first < m; first += Block::max_rows) {
      const std::size_t num_rows = std::min(Block::max_rows, m - first);
      const std::size_t num_filled = (num_rows + group_size - 1) / group_size * group_size;
      for (std::size_t c = 0; c <= n; ++c) {
        const double* entry = c < n ? J + first * n + c : b + first;
        double* column = block.column(c);
        for (std::size_t i = 0; i < num_rows; ++i, entry += c < n ? n : 1) column[i] = *entry;
        std::fill(column + num_rows, column + num_filled, 0.0);
      }
      visit(num_filled);
    }
  }
};

}  // namespace

void solve_least_squares(const double* J, const double* b, std::size_t m, std::size_t n, double* dx,
                         Instruction_set set) {
  const Matrix_rows rows{J, b, m, n};
  Block block;
  block.resize(n);
  Triangle triangle(set);
  triangle.start(n);
  rows.visit_blocks(block, [&](std::size_t num_rows) { triangle.absorb(block, num_rows); });
  Scaling scaling;
  scaling.start(n);
  if (!is_well_scaled(triangle.entries(), n)) {
    rows.visit_blocks(block, [&](std::size_t num_rows) { scaling.measure(block, num_rows); });
    if (!scaling.is_finite()) {
      std::fill_n(dx, n, std::numeric_limits<double>::quiet_NaN());
      return;
    }
    scaling.choose(0);
    triangle.start(n);
    rows.visit_blocks(block, [&](std::size_t num_rows) {
      scaling.apply(block, num_rows);
      triangle.absorb(block, num_rows);
    });
  }
  Small_system().solve_shortest(triangle.entries(), n, m, Small_system::Units::each, dx);
  for (std::size_t d = 0; d < n; ++d) dx[d] = times_power_of_two(dx[d], scaling.power(n) - scaling.power(d));
}

}  // namespace kelvane
