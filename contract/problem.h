// SPDX-License-Identifier: BSD-3-Clause
// The arguments of a call as what the engine works on.
#pragma once

#include <vector>

#include "camera_pose/measurements.h"
#include "camera_pose/pose_rows.h"
#include "contract/argument_contract.h"

namespace kelvane::contract {

/// What a refinement works on. The arrays of the arguments are read in place and must outlive it.
class Problem {
 public:
  explicit Problem(const Arguments& arguments);

  std::vector<double> x0;  ///< 3 or 4 rotation entries, then the camera centre (world units)
  /// One step for each entry of x0: 0.0314 for rotation entries, 0.314 where the representation is the quaternion, 0.01
  /// world units for the camera centre.
  double difference_steps[max_dimensions];

  /// The equations, for derivatives in closed form or by differences.
  Pose_problem equations(bool is_analytic) const;
  int num_points() const { return arguments_.num_points; }          ///< N
  int num_equations() const { return arguments_.num_equations(); }  ///< of all blocks

 private:
  Arguments arguments_;
  std::vector<double> bearing_target_;  // empty for pixels, which are observations as they come
  Measurements data_;
};

}  // namespace kelvane::contract
