// SPDX-License-Identifier: BSD-3-Clause
// A camera pose and the search vectors that stand for it.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace bench {

/// R maps the camera frame to the world, t is the camera centre in the world: p = R' (X - t).
struct Pose {
  cv::Matx33d R;
  cv::Vec3d t;
};

/// [v]x, the matrix of the cross product with v
cv::Matx33d cross_matrix(const cv::Vec3d& v);

cv::Matx33d rotation_matrix(const cv::Vec3d& rotation_vector);
/// For rotations by less than half a turn.
cv::Vec3d rotation_vector(const cv::Matx33d& R);
/// Derivative of exp([r + d]x) = exp([J d]x) exp([r]x) to first order in d: Sola, Deray and Atchuthan 2018, Eq. 145.
cv::Matx33d left_jacobian(const cv::Vec3d& r);

/// Rotation entries of `type` (rotation vector; types 1 and -3: unit axis, angle; types 2 and -1: unit quaternion,
/// scalar last), then t.
std::vector<double> search_vector(int type, const Pose& pose);
/// The pose of a search vector; axis and quaternion may have any length but zero.
Pose pose_of(int type, const std::vector<double>& x);

/// A pose as OpenCV and most users of Ceres write it, world to camera: p = exp([rotation]x) X + translation.
struct World_to_camera {
  cv::Vec3d rotation;
  cv::Vec3d translation;
};
World_to_camera world_to_camera(const Pose& pose);
Pose pose_of(const World_to_camera& transform);

}  // namespace bench
