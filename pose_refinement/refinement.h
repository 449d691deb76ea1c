// SPDX-License-Identifier: BSD-3-Clause
// One refinement, from accepted arguments to the refined search vector.
#pragma once

#include <memory>
#include <vector>

#include "camera_pose/intrinsics.h"
#include "camera_pose/packed_points.h"
#include "fw_opt/linear_taylor_solver.h"
#include "pose_refinement/argument_contract.h"

namespace pose_refinement {

/// The containers of one refinement, built from the arguments of a call.
struct Problem {
  const Rotation_type* type;
  std::vector<double> x0;  // rotation, then the camera centre
  Intrinsics intrinsics;   // one focal length for both axes
  std::shared_ptr<const Packed_points> points;
  /// Pairs (u, v) point by point, the whole block once for each representation. Bearing types get the same layout, so
  /// only their first two rows are used and the last third of the target is zero.
  std::vector<double> target;
  std::vector<double> weights;  // one for each equation, or none

  explicit Problem(const Arguments& arguments);
};

/// When a refinement stops, and how it differentiates.
struct Settings {
  int max_iters = 10;
  float min_x_step = 0.0F;
  float min_y_step = -10000.0F;
  bool is_analytic = true;

  /// The first stopping criterion is not used: where criteria are given, 3 iterations are made for type 0 and 1 for
  /// every other type.
  explicit Settings(const Arguments& arguments);
};

/// A solver with nothing but sizes and stopping rules set.
void configure(fw::Linear_taylor_solver& solver, const Problem& problem, const Settings& settings);

/// Gives the solver the Jacobian of the problem's type, or the objective and its difference steps.
/// Raises "Invalid rotation type!" (kelvane_mex.cpp, 1971) for a type that has no Jacobian.
void add_jacobian(fw::Linear_taylor_solver& solver, const Problem& problem);
void add_objective(fw::Linear_taylor_solver& solver, const Problem& problem);

/// The refined search vector. Errors from inside get the context of kelvane_mex.cpp, 2003, with the problem's sizes.
std::vector<double> refine(const Problem& problem, const Settings& settings);

}  // namespace pose_refinement
