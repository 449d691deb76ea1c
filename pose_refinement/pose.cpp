// SPDX-License-Identifier: BSD-3-Clause
// Forms of a pose, by way of its matrix.
#include "pose_refinement/pose.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/motion.h"
#include "rotations/conversions.h"

namespace kelvane {
namespace {

/// The largest entry of R' R - I.
double deviation_of(const double (&R)[3][3]) {
  double largest = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double product = i == j ? -1.0 : 0.0;
      for (const auto& row : R) product += row[i] * row[j];
      largest = std::max(largest, std::abs(product));
    }
  }
  return largest;
}

/// Turns world_from_camera into camera_from_world, and back.
Pose inverse(const Pose& pose) {
  Pose other;
  for (int i = 0; i < 3; ++i) {
    other.centre[i] = 0.0;
    for (int j = 0; j < 3; ++j) {
      other.rotation[i][j] = pose.rotation[j][i];
      other.centre[i] -= pose.rotation[j][i] * pose.centre[j];
    }
  }
  return other;
}

Pose from_frame(Pose pose, Pose_frame frame) { return frame == Pose_frame::world_from_camera ? pose : inverse(pose); }

std::array<double, 3> translation_of(const Pose& pose) { return {pose.centre[0], pose.centre[1], pose.centre[2]}; }

void set_translation(const std::array<double, 3>& s, Pose& pose) {
  check_finite("the translation", s.data(), 0, 3);
  for (std::size_t i = 0; i < 3; ++i) pose.centre[i] = s[i];
}

}  // namespace

void take_nearest_rotation(double (&R)[3][3], const char* name) {
  constexpr double six_digits = 1e-5;
  check_finite(name, &R[0][0], 0, 9);
  const double deviation = deviation_of(R);
  if (deviation > six_digits) {
    throw Bad_argument("notRotation", name,
                       " is not a rotation: R' * R differs from the identity by " + text_of(deviation, 2) +
                           ". A scale must be divided out first.");
  }
  if (determinant(R) < 0.0) {
    throw Bad_argument("leftHanded", name,
                       " has the determinant -1: it mirrors. Both frames must be right-handed; "
                       "negate the axis that points the other way.");
  }
  for (int step = 0; step < 2; ++step) make_orthogonal(R);
}

Pose checked(const Pose& pose) {
  Pose nearest = pose;
  take_nearest_rotation(nearest.rotation, "pose.rotation");
  check_finite("pose.centre", pose.centre, 0, 3);
  return nearest;
}

Pose pose_of(const Rotation_vector_pose& value, Pose_frame frame) {
  Pose pose;
  check_finite("the rotation vector", value.r.data(), 0, 3);
  set_translation(value.s, pose);
  rotations::rot_vec_rad_to_rot_mat(value.r.data(), pose.rotation);
  return from_frame(pose, frame);
}

Pose pose_of(const Quaternion_pose& value, Pose_frame frame) {
  Pose pose;
  check_finite("the quaternion", value.q.data(), 0, 4);
  set_translation(value.s, pose);
  double unit[4];
  const double length = rotations::split_length(value.q.data(), 4, unit);
  if (length < 1e-100) {
    throw Bad_argument(
        "zeroQuaternion", "",
        "A quaternion of length " + text_of(length, 2) + " is no rotation; without a turn it is 1 and three zeros.");
  }
  rotations::quaternion_to_rot_mat(unit, pose.rotation);
  return from_frame(pose, frame);
}

Pose pose_of(const Matrix_pose& value, Pose_frame frame) {
  Pose pose;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) pose.rotation[i][j] = value[i][j];
    pose.centre[i] = value[i][3];
  }
  return from_frame(checked(pose), frame);
}

Rotation_vector_pose rotation_vector_of(const Pose& pose, Pose_frame frame) {
  const Quaternion_pose quaternion = quaternion_of(pose, frame);
  const auto& q = quaternion.q;
  const double half_sine = std::hypot(q[0], q[1], q[2]);
  const double factor = half_sine == 0.0 ? 2.0 : 2.0 * std::atan2(half_sine, q[3]) / half_sine;
  return {{q[0] * factor, q[1] * factor, q[2] * factor}, quaternion.s};
}

Quaternion_pose quaternion_of(const Pose& pose, Pose_frame frame) {
  const Pose other = from_frame(pose, frame);
  double q[4];
  rotations::rot_mat_to_quaternion(other.rotation, q);
  const double sign = q[3] < 0.0 ? -1.0 : 1.0;
  return {{sign * q[0], sign * q[1], sign * q[2], sign * q[3]}, translation_of(other)};
}

Matrix_pose matrix_of(const Pose& pose, Pose_frame frame) {
  const Pose other = from_frame(pose, frame);
  Matrix_pose matrix;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) matrix[i][j] = other.rotation[i][j];
    matrix[i][3] = other.centre[i];
  }
  return matrix;
}

}  // namespace kelvane
