// SPDX-License-Identifier: BSD-3-Clause
// Residuals and closed-form Jacobian as a careful user would write them for a general solver.
#pragma once

#include <cstddef>

#include "benchmarks/scene.h"

namespace bench {

/// Residuals u - u_seen, v - v_seen, point by point, at x = (rotation vector, translation), world to camera.
/// d residual i / d x[j] is written to jacobian[i row_stride + j column_stride], unless jacobian is null.
inline void pixel_residuals(const Scene& scene, const double* x, double* residuals, double* jacobian,
                            std::size_t row_stride, std::size_t column_stride) {
  const cv::Vec3d r(x[0], x[1], x[2]);
  const cv::Matx33d R = rotation_matrix(r);
  const cv::Matx33d L = left_jacobian(r);
  const double f = scene.intrinsics.f;
  const double* X = scene.points.data();
  const double* seen = scene.pixels.data();
  for (int i = 0; i < scene.num_points; ++i, X += 3, seen += 2, residuals += 2) {
    // p = q + translation with q = R X, and dp/dr = -[q]x L
    const double q[3] = {R(0, 0) * X[0] + R(0, 1) * X[1] + R(0, 2) * X[2],
                         R(1, 0) * X[0] + R(1, 1) * X[1] + R(1, 2) * X[2],
                         R(2, 0) * X[0] + R(2, 1) * X[1] + R(2, 2) * X[2]};
    const double inverse_depth = 1 / (q[2] + x[5]);
    const double a = (q[0] + x[3]) * inverse_depth;
    const double b = (q[1] + x[4]) * inverse_depth;
    residuals[0] = f * a + scene.intrinsics.cx - seen[0];
    residuals[1] = f * b + scene.intrinsics.cy - seen[1];
    if (jacobian == nullptr) continue;

    const double scale = f * inverse_depth;  // du/dp = scale (1, 0, -a), dv/dp = scale (0, 1, -b)
    const double du_turn[3] = {-scale * a * q[1], scale * (q[2] + a * q[0]), -scale * q[1]};
    const double dv_turn[3] = {-scale * (q[2] + b * q[1]), scale * b * q[0], scale * q[0]};
    double* du = jacobian;
    double* dv = jacobian + row_stride;
    for (int j = 0; j < 3; ++j) {
      const std::size_t column = static_cast<std::size_t>(j) * column_stride;
      du[column] = du_turn[0] * L(0, j) + du_turn[1] * L(1, j) + du_turn[2] * L(2, j);
      dv[column] = dv_turn[0] * L(0, j) + dv_turn[1] * L(1, j) + dv_turn[2] * L(2, j);
    }
    du[3 * column_stride] = scale;
    dv[3 * column_stride] = 0;
    du[4 * column_stride] = 0;
    dv[4 * column_stride] = scale;
    du[5 * column_stride] = -scale * a;
    dv[5 * column_stride] = -scale * b;
    jacobian += 2 * row_stride;
  }
}

}  // namespace bench
