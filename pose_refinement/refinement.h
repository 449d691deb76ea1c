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
  const Rotation_type* type;                    ///< a row of the table
  std::vector<double> x0;                       ///< 3 or 4 rotation entries, then the camera centre (world units)
  Intrinsics intrinsics;                        ///< one focal length for both axes (pixels)
  std::shared_ptr<const Packed_points> points;  ///< N points, world frame and units
  /// Pairs (u, v) point by point, the whole block once for each representation. Bearing types get the same layout, so
  /// only their first two rows are used and the last third of the target is zero.
  std::vector<double> target;
  std::vector<double> weights;  ///< one for each equation, or none

  /// Copies what it needs; the arrays are not used afterwards.
  explicit Problem(const Arguments& arguments);
};

/// When a refinement stops, and how it differentiates.
struct Settings {
  int max_iters = 10;            ///< as Solver::set_max_iters
  float min_x_step = 0.0F;       ///< as Solver::set_min_x_step
  float min_y_step = -10000.0F;  ///< as Solver::set_min_y_step
  bool is_analytic = true;       ///< derivatives in closed form, not by forward differences

  /// Those of a call: without criteria the values above. The first criterion is not used: where criteria are given, 3
  /// iterations are made for type 0 and 1 for every other type. All four can be changed afterwards.
  explicit Settings(const Arguments& arguments);
};

/// A solver with nothing but sizes and stopping rules set.
void configure(fw::Linear_taylor_solver& solver, const Problem& problem, const Settings& settings);

/// Gives the solver the Jacobian of the problem's type, with the objective as base function.
/// Raises "Invalid rotation type!" (kelvane_mex.cpp, 1971) for a type that has no Jacobian.
void add_jacobian(fw::Linear_taylor_solver& solver, const Problem& problem);
/// The same with the objective and its difference steps: 0.0314 for each rotation entry, 0.314 where the representation
/// is the quaternion, 0.01 world units for the camera centre.
void add_objective(fw::Linear_taylor_solver& solver, const Problem& problem);

/// The refined search vector, in the units and order of Problem::x0: what one call of the module returns. Errors from
/// inside get the context of kelvane_mex.cpp, 2003, with the problem's sizes.
std::vector<double> refine(const Problem& problem, const Settings& settings);

}  // namespace pose_refinement
