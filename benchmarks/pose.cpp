// SPDX-License-Identifier: BSD-3-Clause
// Conversions between poses and search vectors, all of them outside of what is timed.
#include "benchmarks/pose.h"

#include <cmath>
#include <stdexcept>

namespace bench {

cv::Matx33d cross_matrix(const cv::Vec3d& v) { return {0, -v[2], v[1], v[2], 0, -v[0], -v[1], v[0], 0}; }

cv::Matx33d rotation_matrix(const cv::Vec3d& rotation_vector) {
  const double angle = cv::norm(rotation_vector);
  if (angle == 0) return cv::Matx33d::eye();
  const cv::Vec3d n = rotation_vector * (1 / angle);
  const double s = std::sin(angle);
  const double c = std::cos(angle);
  return c * cv::Matx33d::eye() + s * cross_matrix(n) + (1 - c) * (n * n.t());
}

cv::Vec3d rotation_vector(const cv::Matx33d& R) {
  const cv::Vec3d axis_2s(R(2, 1) - R(1, 2), R(0, 2) - R(2, 0), R(1, 0) - R(0, 1));
  const double twice_sine = cv::norm(axis_2s);
  if (twice_sine == 0) return {0, 0, 0};
  return axis_2s * (std::atan2(twice_sine, cv::trace(R) - 1) / twice_sine);
}

cv::Matx33d left_jacobian(const cv::Vec3d& r) {
  const double angle = cv::norm(r);
  const cv::Matx33d cross = cross_matrix(r);
  if (angle < 1e-6) return cv::Matx33d::eye() + 0.5 * cross;  // the next term is below the rounding
  const double angle_2 = angle * angle;
  const double half_sine = std::sin(angle / 2);
  return cv::Matx33d::eye() + (2 * half_sine * half_sine / angle_2) * cross +
         ((angle - std::sin(angle)) / (angle_2 * angle)) * (cross * cross);
}

std::vector<double> search_vector(int type, const Pose& pose) {
  const cv::Vec3d r = rotation_vector(pose.R);
  const double angle = cv::norm(r);
  const bool is_axis = type == 1 || type == -3;
  const bool is_quaternion = type == 2 || type == -1;
  if (!is_axis && !is_quaternion) return {r[0], r[1], r[2], pose.t[0], pose.t[1], pose.t[2]};
  const cv::Vec3d v = r * ((is_axis ? 1 : std::sin(angle / 2)) / angle);
  return {v[0], v[1], v[2], is_axis ? angle : std::cos(angle / 2), pose.t[0], pose.t[1], pose.t[2]};
}

Pose pose_of(int type, const std::vector<double>& x) {
  const cv::Vec3d v(x[0], x[1], x[2]);
  const double length = cv::norm(v);
  switch (type) {
    case 0:
    case -2:
    case 10:
      return {rotation_matrix(v), {x[3], x[4], x[5]}};
    case 1:
    case -3:
      return {rotation_matrix(v * (x[3] / length)), {x[4], x[5], x[6]}};
    case 2:
    case -1:
      return {rotation_matrix(v * (2 * std::atan2(length, x[3]) / length)), {x[4], x[5], x[6]}};
    default:
      throw std::invalid_argument("no benchmark for this rotation type");
  }
}

World_to_camera world_to_camera(const Pose& pose) { return {-rotation_vector(pose.R), -(pose.R.t() * pose.t)}; }

Pose pose_of(const World_to_camera& transform) {
  const cv::Matx33d R = rotation_matrix(-transform.rotation);
  return {R, -(R * transform.translation)};
}

}  // namespace bench
