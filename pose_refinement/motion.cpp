// SPDX-License-Identifier: BSD-3-Clause
// Twists, and what keeps a product of rotations a rotation.
#include "pose_refinement/motion.h"

#include <algorithm>
#include <cmath>

#include "rotations/conversions.h"

namespace kelvane {

double determinant(const double (&R)[3][3]) {
  return R[0][0] * (R[1][1] * R[2][2] - R[1][2] * R[2][1]) - R[0][1] * (R[1][0] * R[2][2] - R[1][2] * R[2][0]) +
         R[0][2] * (R[1][0] * R[2][1] - R[1][1] * R[2][0]);
}

/// Newton's step (R + R^-T) / 2; R^-T is the matrix of the cofactors over the determinant.
void make_orthogonal(double (&R)[3][3]) {
  const double d = determinant(R);
  double next[3][3];
  for (int i = 0; i < 3; ++i) {
    const double* a = R[(i + 1) % 3];
    const double* b = R[(i + 2) % 3];
    for (int j = 0; j < 3; ++j) {
      const int k = (j + 1) % 3;
      const int l = (j + 2) % 3;
      next[i][j] = 0.5 * (R[i][j] + (a[k] * b[l] - a[l] * b[k]) / d);
    }
  }
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) R[i][j] = next[i][j];
  }
}

Pose moved_by(const Pose& pose, const double* twist) {
  double turn[3][3];
  rotations::rot_vec_rad_to_rot_mat(twist + 3, turn);
  const auto& R = pose.rotation;
  Pose moved;
  for (int i = 0; i < 3; ++i) {
    moved.centre[i] = pose.centre[i] + (R[i][0] * twist[0] + R[i][1] * twist[1] + R[i][2] * twist[2]);
    for (int j = 0; j < 3; ++j) {
      moved.rotation[i][j] = R[i][0] * turn[0][j] + R[i][1] * turn[1][j] + R[i][2] * turn[2][j];
    }
  }
  make_orthogonal(moved.rotation);
  return moved;
}

bool are_same(const Pose& a, const Pose& b) {
  return std::equal(a.centre, a.centre + 3, b.centre) &&
         std::equal(&a.rotation[0][0], &a.rotation[0][0] + 9, &b.rotation[0][0]);
}

double angle_between(const Pose& a, const Pose& b) {
  double square = 0.0;  // of the difference, 8 sin^2(angle / 2)
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) square += std::pow(b.rotation[i][j] - a.rotation[i][j], 2);
  }
  return 2.0 * std::asin(std::min(1.0, std::sqrt(square / 8.0)));
}

double length_between(const Pose& a, const Pose& b) {
  return std::hypot(b.centre[0] - a.centre[0], b.centre[1] - a.centre[1], b.centre[2] - a.centre[2]);
}

}  // namespace kelvane
