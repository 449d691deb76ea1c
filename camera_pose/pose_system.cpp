// SPDX-License-Identifier: BSD-3-Clause
// The loop over the pieces, and the solution of what is left of them.
#include "camera_pose/pose_system.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kelvane {

Pose_system::Pose_system(const Pose_problem& problem, Instruction_set set)
    : problem_(problem), rows_(problem, set), triangles_{Triangle(set), Triangle(set), Triangle(set)}, product_(set) {}

template <typename Visit>
double Pose_system::visit_blocks(const Visit& visit) {
  block_.resize(rows_.num_columns());
  double error = 0.0;
  for (std::size_t i = 0; i < problem_.data->num_pieces(); ++i) {
    const Piece piece = problem_.data->piece(i);
    for (std::size_t k = 0; k < rows_.num_made(); ++k) {
      error += rows_.make(piece, k, block_);
      visit(k, rows_.num_rows(piece));
    }
  }
  return error;
}

double Pose_system::linearise(const double* x, bool weighs_predictions) {
  rows_.go_to(x, weighs_predictions);
  start_triangles();
  return visit_blocks([this](std::size_t k, std::size_t num_rows) { absorb(k, num_rows); });
}

/// Blocks by a twist have a triangle each, as each has a chart of its own. Others share one.
void Pose_system::start_triangles() {
  const std::size_t count = rows_.are_by_twist() ? rows_.num_made() : 1;
  for (std::size_t k = 0; k < count; ++k) triangles_[k].start(rows_.num_columns());
}

void Pose_system::absorb(std::size_t k, std::size_t num_rows) {
  Triangle& triangle = triangles_[rows_.are_by_twist() ? k : 0];
  if (rows_.are_pairs()) {
    triangle.absorb_pairs(block_, num_rows / (2 * group_size));
  } else {
    triangle.absorb(block_, num_rows);
  }
}

void Pose_system::step(double* dx) {
  if (solve_twist(Doubt::none, dx)) return;
  scaling_.start(rows_.num_columns());
  if (!are_well_scaled() && !scale()) {
    std::fill_n(dx, problem_.n(), std::numeric_limits<double>::quiet_NaN());
  } else if (!rows_.are_by_twist()) {
    solve_parameters(dx);
  } else if (!solve_twist(Doubt::settled, dx)) {
    solve_product(dx);
  }
}

/// With charts J = A T, and the ranks of A and T are decided apart (docs/numerics.md). Where both are full, the
/// solution is a twist brought to the parameters (docs/derivations.md, Eq. 51). False where they are not, for more than
/// one block, and where it cannot be told without a doubt about units and rank.
bool Pose_system::solve_twist(Doubt doubt, double* dx) {
  double twist[6];
  if (!rows_.are_by_twist() || rows_.num_blocks() > 1) return false;
  if (doubt == Doubt::none) {
    if (!small_.solve_plainly(triangles_[0].entries(), 6, num_rows_of_block(), twist)) return false;
  } else {
    if (!is_full(0, twist)) return false;
    for (std::size_t c = 0; c < 6; ++c) twist[c] = times_power_of_two(twist[c], scaling_.power(6) - scaling_.power(c));
  }
  const Chart& chart = rows_.chart(0);
  if (!turn_parameters(chart, twist + 3, dx)) return false;
  shift_parameters(chart, twist, dx + chart.model.n);
  return true;
}

bool Pose_system::are_well_scaled() const {
  const std::size_t count = rows_.are_by_twist() ? rows_.num_made() : 1;
  return std::all_of(triangles_, triangles_ + count,
                     [](const Triangle& triangle) { return is_well_scaled(triangle.entries(), triangle.n()); });
}

/// Makes all rows again, scaled; false when something is not finite.
bool Pose_system::scale() {
  rows_.part_pairs();
  visit_blocks([this](std::size_t /*k*/, std::size_t num_rows) { scaling_.measure(block_, num_rows); });
  if (!scaling_.is_finite()) return false;
  scaling_.choose(rows_.are_by_twist() ? 3 : 0);
  start_triangles();
  visit_blocks([this](std::size_t k, std::size_t num_rows) {
    scaling_.apply(block_, num_rows);
    absorb(k, num_rows);
  });
  return true;
}

void Pose_system::solve_parameters(double* dx) {
  const std::size_t n = problem_.n();
  const std::size_t num_rows = num_rows_of_block() * rows_.num_blocks();
  // A column of differences that is nothing but rounding would pass for one when it is brought to the size of the
  // others.
  const auto units =
      problem_.difference_steps != nullptr ? Small_system::Units::as_they_are : Small_system::Units::each;
  small_.solve_shortest(triangles_[0].entries(), n, num_rows, units, dx);
  for (std::size_t d = 0; d < n; ++d) dx[d] = times_power_of_two(dx[d], scaling_.power(n) - scaling_.power(d));
}

/// Whether the equations of block k fix all of a twist, and which.
bool Pose_system::is_full(std::size_t k, double* twist) {
  return small_.solve(triangles_[k].entries(), 6, num_rows_of_block(), Small_system::Units::last_three, twist);
}

/// What the blocks leave, each times its chart, is a system of its own (docs/derivations.md, Eq. 52).
void Pose_system::solve_product(double* dx) {
  const std::size_t n = problem_.n();
  block_.resize(n);
  std::size_t num_rows = 0;
  Rows rows;
  for (std::size_t k = 0; k < rows_.num_blocks(); ++k) {
    double twist[6];
    if (k < rows_.num_made()) rows = is_full(k, twist) ? Rows{triangles_[k].entries(), 6} : small_.rows();
    num_rows = write_product(rows, rows_.chart(k), num_rows);
  }
  const std::size_t num_filled = (num_rows + group_size - 1) / group_size * group_size;
  for (std::size_t c = 0; c <= n; ++c) std::fill(block_.column(c) + num_rows, block_.column(c) + num_filled, 0.0);
  product_.start(n);
  product_.absorb(block_, num_filled);
  // Charts of one rotation differ by roundings, as if so many rows had been added up.
  constexpr std::size_t roundings_of_charts = 100;
  const double* triangle = product_.entries();
  if (!small_.solve(triangle, n, roundings_of_charts, Small_system::Units::last_three, dx)) small_.shortest(dx);
  for (std::size_t d = 0; d < n; ++d) {
    const std::size_t c = d < n - 3 ? 3 : 0;  // of the twist: entries of the rotation are divided as the turn
    dx[d] = times_power_of_two(dx[d], scaling_.power(6) - scaling_.power(c) + restored_power(c));
  }
}

/// What of the scaling of column c of a twist is taken back for the product: the shortest step is that of the original
/// units, unless they are so far apart that squares would not bear it.
int Pose_system::restored_power(std::size_t c) const {
  constexpr int farthest_apart = 180;
  const int common = std::max(scaling_.power(0), scaling_.power(3));
  const int apart = 2 * common - scaling_.power(0) - scaling_.power(3);
  return apart <= farthest_apart ? scaling_.power(c) - common : 0;
}

/// Puts the rows times T into the block; returns the row behind them.
std::size_t Pose_system::write_product(const Rows& rows, const Chart& chart, std::size_t first_row) {
  const double unit[] = {std::scalbn(1.0, restored_power(0)), std::scalbn(1.0, restored_power(3))};
  for (std::size_t c = 0; c < problem_.n(); ++c) {
    const auto [first, T] = column_of(chart, c);
    double* const to = block_.column(c) + first_row;
    for (std::size_t i = 0; i < rows.num_rows; ++i) {
      const double* a = rows.entries + 7 * i + first;
      to[i] = (a[0] * T[0] + a[1] * T[1] + a[2] * T[2]) * unit[first / 3];
    }
  }
  double* const b = block_.column(problem_.n()) + first_row;
  for (std::size_t i = 0; i < rows.num_rows; ++i) b[i] = rows.entries[7 * i + 6];
  return first_row + rows.num_rows;
}

}  // namespace kelvane
