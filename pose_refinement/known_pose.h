// SPDX-License-Identifier: BSD-3-Clause
// The prior of a pose as a part of the cost.
#pragma once

#include <optional>

#include "pose_refinement/observed_points.h"

namespace kelvane {

/// sigma^2 e' L e for the prior's information L and e = [w; dt] from its pose on, in the world of the data. The sigma
/// is that of the observations, whose residuals it is added to.
class Known_pose {
 public:
  /// Throws Bad_argument.
  Known_pose(const Pose_prior& prior, const World& world, double sigma);

  bool is_given() const { return root_.has_value(); }
  /// 0 where none is given.
  double cost(const Pose& pose) const;
  /// Rows whose squared length is the cost: what is missing, -e, behind its derivative by a twist (v, omega) of the
  /// camera frame (docs/derivations.md, Eq. 56). Where one is given.
  void linearise(const Pose& pose, double (&rows)[6][7]) const;

 private:
  struct Matrix {
    double rows[6][6];
  };

  void set_error(const Pose& pose, double* e) const;

  double unit_;
  Pose pose_;                   // in the world of the data
  std::optional<Matrix> root_;  // W with W'W = sigma^2 L, of e in the caller's units
};

}  // namespace kelvane
