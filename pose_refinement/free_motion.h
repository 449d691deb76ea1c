// SPDX-License-Identifier: BSD-3-Clause
// The motions that fixed directions leave to a pose.
#pragma once

#include <cstddef>

#include "pose_refinement/observed_points.h"

namespace kelvane {

/// The poses exp [w]x R_0, t_0 + dt from a start R_0, t_0 on, with [w; dt] = S y: the columns of S, orthonormal in the
/// world of the data, are across all fixed directions (docs/derivations.md, Eq. 57).
class Free_motion {
 public:
  /// The start as it lies in the world of the data. Throws Bad_argument.
  Free_motion(const Numbers& fixed, const Pose& start, const World& world);

  bool is_whole() const { return num_free_ == 6; }
  std::size_t num_free() const { return num_free_; }

  /// The pose after a twist (v, omega) of the camera frame, made of such motions.
  Pose moved_by(const Pose& pose, const double* twist) const;
  /// The one of these poses that has the y of another one.
  Pose nearest(const Pose& pose) const;
  /// What y does at a pose, not where everything is free: a twist (v, omega) of the camera frame in each column,
  /// zero from num_free() on.
  void twists(const Pose& pose, double (&T)[6][6]) const;
  /// The same as the [w; dt] of a covariance, in units of the data. Where everything is free: what a twist does.
  void errors(const Pose& pose, double (&T)[6][6]) const;
  /// Puts the centre or the rotation of a start in place of a pose's where all of it is fixed, to the last bit.
  void restore(const Pose& start, Pose& pose) const;

 private:
  void set_parameters(const Pose& pose, double* y) const;
  void take_nearest_turn(double* x) const;
  void set_motion(const double* y, double* x) const;
  Pose pose_at(const double* y) const;
  void add_across(double (&taken)[6][6], std::size_t num_taken);

  Pose start_;
  std::size_t num_free_ = 6;
  double S_[6][6] = {};  // S_[j]: column j
};

}  // namespace kelvane
