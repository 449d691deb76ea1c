// SPDX-License-Identifier: BSD-3-Clause
// What a pose costs.
#pragma once

#include <cstddef>
#include <vector>

#include "pose_refinement/refine_input.h"
#include "pose_refinement/robust_loss.h"

namespace kelvane {

/// The weighted lengths of the residuals of all groups: the root of the sum of weight times square over the
/// coordinates. Zero without weight, NaN where a residual with a weight is NaN. Whether squares stayed in range, and
/// nothing is NaN.
bool lengths_of_whitened(const Sights& sights, const Sight_kernels& kernels, const double* residuals, double* lengths);
/// The same of residuals that are not yet multiplied by the roots of what covariances tell.
bool lengths_of_sights(const Sights& sights, const Sight_kernels& kernels, const double* residuals, double* lengths);

/// The cost of poses in the world of the data. The input must outlive this.
class Pose_cost {
 public:
  explicit Pose_cost(const Refine_input& input) : data_(input.data), rows_(input.rows), prior_(input.prior) {}

  /// The sum of the losses and of what the prior adds; infinite where it is not finite.
  double cost(const Pose& pose, const Robust_loss& loss);
  /// Without the prior's part.
  double cost_of_points(const Pose& pose, const Robust_loss& loss);
  /// The lengths of the residuals, in the order of the points; those of the last pose are kept.
  const std::vector<double>& lengths(const Pose& pose);
  /// Those of the observations themselves, from the principal point on.
  std::vector<double> lengths_of_observations() const;
  /// Below it a cost is nothing but the rounding of what is seen.
  double rounding() const;
  /// Whether more than half of the weight lies behind the camera; directions have no front.
  bool is_behind(const Pose& pose) const;

 private:
  const Observed_points& data_;
  const Camera_rows& rows_;
  const Known_pose& prior_;
  Pose pose_;
  std::vector<double> lengths_;  // at pose_, if there are any
};

}  // namespace kelvane
