// SPDX-License-Identifier: BSD-3-Clause
// The random problems without a start that all estimators are given, and which of their poses are right.
#pragma once

#include <string>
#include <vector>

#include "pose_refinement/refine.h"

namespace bench {

/// Scenes of one kind. Points lie at any depth between 4 and 8, within 2.5 % of the distance beside a tilted plane, or
/// on it.
struct Estimation_cell {
  enum Shape : unsigned { volume, shallow, flat } shape;
  double sigma;  ///< of the noise, pixels in each coordinate
  unsigned num_points;
  unsigned percent_wrong;  ///< observations that are anywhere in the picture

  unsigned num_right() const { return num_points - num_points * percent_wrong / 100; }
  /// Enough are right for a success.
  bool is_solvable() const { return num_right() >= 5; }
  /// "volume,1,100,50"
  std::string name() const;
};

/// All 225 of them.
std::vector<Estimation_cell> all_estimation_cells();

/// Points, X, Y, Z of each, and where they were observed, u, v of each.
struct Matches {
  std::vector<double> points;
  std::vector<double> pixels;
};

/// What a camera saw: the same for the same arguments, whichever other scenes there are.
struct Estimation_scene {
  static constexpr double f = 600;
  static constexpr double width = 640;
  static constexpr double height = 480;

  Matches all;
  Matches right;  ///< of them
  kelvane::Pose truth;
  double sigma;

  Estimation_scene(const Estimation_cell& cell, unsigned number);
  static kelvane::Camera_model camera() { return kelvane::pixel_camera(f, width / 2, height / 2); }
  /// Of those that are right, from the truth on, with the noise known.
  kelvane::Refine_result refined(int max_iterations) const;
};

/// The squared Mahalanobis distance from the truth, by the covariance of the right observations there; infinite where
/// they do not determine a pose.
double squared_distance(const Estimation_scene& scene, const kelvane::Pose& pose);

}  // namespace bench
