// SPDX-License-Identifier: BSD-3-Clause
// The Gauss-Newton step of a pose.
#pragma once

#include <cstddef>

#include "camera_pose/pose_rows.h"
#include "least_squares/scaling.h"
#include "least_squares/small_system.h"
#include "least_squares/triangle.h"

namespace kelvane {

/// The linear least-squares problem of a pose at one search vector after the other: made, reduced and solved without
/// ever existing as a whole. The data must outlive it.
class Pose_system {
 public:
  explicit Pose_system(const Pose_problem& problem, Instruction_set set = best_instruction_set());

  /// Reduces the weighted equations at x (n entries): W J dx = W y - v, where v are the predictions f(x), or W f(x)
  /// when they are weighed. Returns the squared error |y - f(x)|^2, which knows no weights.
  double linearise(const double* x, bool weighs_predictions);
  /// The squared error alone.
  double squared_error(const double* x) const { return rows_.squared_error(x); }
  /// The step dx of least length among those of least squares, n entries (docs/derivations.md, Eq. 1), for the
  /// equations reduced last; NaN when J or b holds a NaN or an infinity.
  void step(double* dx);

 private:
  /// About units and rank: whether they must be good beyond doubt, or singular values may tell.
  enum class Doubt { none, settled };

  template <typename Visit>
  double visit_blocks(const Visit& visit);
  void start_triangles();
  void absorb(std::size_t k, std::size_t num_rows);
  bool are_well_scaled() const;
  bool scale();
  bool solve_twist(Doubt doubt, double* dx);
  void solve_parameters(double* dx);
  void solve_product(double* dx);
  bool is_full(std::size_t k, double* twist);
  int restored_power(std::size_t c) const;
  std::size_t write_product(const Rows& rows, const Chart& chart, std::size_t first_row);
  std::size_t num_rows_of_block() const { return problem_.data->num_points() * problem_.data->observation_size(); }

  Pose_problem problem_;
  Pose_rows rows_;
  Block block_;
  Triangle triangles_[max_blocks];
  Triangle product_;
  Small_system small_;
  Scaling scaling_;  // of the rows in the triangles
};

}  // namespace kelvane
