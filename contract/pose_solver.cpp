// SPDX-License-Identifier: BSD-3-Clause
// One iteration.
#include "contract/pose_solver.h"

#include <cstddef>

#include "camera_pose/bearing_intrinsics.h"
#include "fw_opt/linear_taylor_solver_sites.h"
#include "fw_opt/underdetermined_system.h"

namespace kelvane::contract {

std::vector<double> Pose_solver::refine(const std::vector<double>& x0) {
  reset();
  return iterate(x0, {});
}

void Pose_solver::inner_optimise(const std::vector<double>& x0, const std::vector<double>& /*target*/,
                                 std::vector<double>& x_out, double& err, int iter) try {
  if (is_first_) {
    check();
    system_.linearise(x0.data(), true);
    is_first_ = false;
  }
  double dx[max_dimensions];
  system_.step(dx);
  x_out = x0;
  for (std::size_t d = 0; d < problem_.n(); ++d) x_out[d] += dx[d];
  // Where another iteration follows its rows are made on the way: they need the same predictions.
  const bool is_last = iter + 1 >= get_max_iters();
  err = is_last ? system_.squared_error(x_out.data()) : system_.linearise(x_out.data(), false);
}
FW_ADD_CONTEXT(fw::site::inner_optimise, "")

void Pose_solver::check() const {
  const auto [f, cx, cy] = problem_.intrinsics;
  if (problem_.type->is_bearing()) check_bearing_intrinsics({{f, 0.0, cx}, {0.0, f, cy}, {0.0, 0.0, 1.0}});
  const std::size_t num_rows = problem_.data->num_points() * problem_.data->observation_size() * problem_.num_stacks();
  if (num_rows < problem_.n()) throw fw::Underdetermined_system();
}

}  // namespace kelvane::contract
