// SPDX-License-Identifier: BSD-3-Clause
// Residuals and closed-form Jacobian as a careful user would write them for a general solver.
#pragma once

#include <Eigen/Geometry>
#include <cmath>
#include <cstddef>

#include "benchmarks/scene.h"

namespace bench {

/// Of exp([r + d]x) = exp([L d]x) exp([r]x) to first order in d: Sola, Deray and Atchuthan 2018, Eq. 145.
inline Eigen::Matrix3d left_jacobian(const Eigen::Vector3d& r) {
  const double angle = r.norm();
  Eigen::Matrix3d cross;
  cross << 0, -r[2], r[1], r[2], 0, -r[0], -r[1], r[0], 0;
  if (angle < 1e-6) return Eigen::Matrix3d::Identity() + 0.5 * cross;  // the next term is below the rounding
  const double angle_2 = angle * angle;
  return Eigen::Matrix3d::Identity() + ((1 - std::cos(angle)) / angle_2) * cross +
         ((angle - std::sin(angle)) / (angle_2 * angle)) * (cross * cross);
}

/// Residuals u - u_seen, v - v_seen of points side by side, point by point, at parameters x.
/// d residual i / d x[j] is written to jacobian[i row_stride + j column_stride], unless jacobian is null.
inline void pixel_residuals(const double* X, const double* seen, std::size_t num_points, const double* x,
                            double* residuals, double* jacobian, std::size_t row_stride, std::size_t column_stride) {
  const Eigen::Vector3d r(x[0], x[1], x[2]);
  const double angle = r.norm();
  const Eigen::Matrix3d R =
      Eigen::AngleAxisd(angle, angle > 0 ? Eigen::Vector3d(r / angle) : Eigen::Vector3d::UnitX()).toRotationMatrix();
  const Eigen::Matrix3d L = left_jacobian(r);
  for (std::size_t i = 0; i < num_points; ++i, X += 3, seen += 2, residuals += 2) {
    // p = q + translation with q = R X, and dp/dr = -[q]x L
    const Eigen::Vector3d q = R * Eigen::Map<const Eigen::Vector3d>(X);
    const double inverse_depth = 1 / (q[2] + x[5]);
    const double a = (q[0] + x[3]) * inverse_depth;
    const double b = (q[1] + x[4]) * inverse_depth;
    residuals[0] = Scene::f * a + Scene::cx - seen[0];
    residuals[1] = Scene::f * b + Scene::cy - seen[1];
    if (jacobian == nullptr) continue;

    const double scale = Scene::f * inverse_depth;  // du/dp = scale (1, 0, -a), dv/dp = scale (0, 1, -b)
    const Eigen::RowVector3d du_dr = Eigen::RowVector3d(-a * q[1], q[2] + a * q[0], -q[1]) * scale * L;
    const Eigen::RowVector3d dv_dr = Eigen::RowVector3d(-q[2] - b * q[1], b * q[0], q[0]) * scale * L;
    const double du[6] = {du_dr[0], du_dr[1], du_dr[2], scale, 0, -scale * a};
    const double dv[6] = {dv_dr[0], dv_dr[1], dv_dr[2], 0, scale, -scale * b};
    for (std::size_t j = 0; j < 6; ++j) {
      jacobian[j * column_stride] = du[j];
      jacobian[j * column_stride + row_stride] = dv[j];
    }
    jacobian += 2 * row_stride;
  }
}

}  // namespace bench
