// SPDX-License-Identifier: BSD-3-Clause
// The random problems that everyone is given.
#pragma once

#include <array>
#include <vector>

#include "pose_refinement/refine.h"

namespace bench {

/// Scenes of one kind. Points lie at any depth between 4 and 8, within 2.5 % of the distance beside a tilted plane, or
/// on it.
struct Cell {
  enum Shape : unsigned { volume, shallow, flat } shape;
  double sigma;  ///< of the noise, pixels in each coordinate
  unsigned num_points;
  unsigned percent_wrong;  ///< observations that are anywhere in the picture

  unsigned num_right() const { return num_points - num_points * percent_wrong / 100; }
};

/// Points, X, Y, Z of each, and where they were observed, u, v of each.
struct Matches {
  std::vector<double> points;
  std::vector<double> pixels;
};

/// What a camera saw: the same for the same arguments, whichever other scenes there are.
struct Scene {
  static constexpr double f = 600;
  static constexpr double cx = 320;
  static constexpr double cy = 240;

  Matches all;
  Matches right;  ///< of them
  kelvane::Pose truth;
  kelvane::Pose start;  ///< off by up to 1 degree, and by 1 % of the points' distance
  double sigma;

  Scene(const Cell& cell, unsigned number);
  static kelvane::Camera_model camera() { return kelvane::pixel_camera(f, cx, cy); }
  std::size_t size() const { return all.points.size() / 3; }
  kelvane::Refine_problem problem() const { return {start, all.points, all.pixels, camera()}; }
  /// Of the right observations, from the truth on, with the noise known.
  kelvane::Refine_result refined_truth(int max_iterations) const;
};

/// A pose as most solvers take it: a rotation vector and a translation.
using Parameters = std::array<double, 6>;

inline Parameters parameters_of(const kelvane::Pose& pose,
                                kelvane::Pose_frame frame = kelvane::Pose_frame::camera_from_world) {
  const auto [r, s] = rotation_vector_of(pose, frame);
  return {r[0], r[1], r[2], s[0], s[1], s[2]};
}

inline kelvane::Pose pose_of(const double* r, const double* s,
                             kelvane::Pose_frame frame = kelvane::Pose_frame::camera_from_world) {
  return pose_of(kelvane::Rotation_vector_pose{{r[0], r[1], r[2]}, {s[0], s[1], s[2]}}, frame);
}

/// The squared Mahalanobis distance of the pose from the truth, by the covariance of the right observations there;
/// infinite where they do not determine a pose.
double squared_distance(const Scene& scene, const kelvane::Pose& pose);

}  // namespace bench
