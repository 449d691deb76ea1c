// SPDX-License-Identifier: BSD-3-Clause
// Rotations by routes of their own: the matrix exponential as a series, and the product of quaternions.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "fw_tools/matrix.h"
#include "support/matrix_of.h"

namespace support {

using Matrix3 = std::array<std::array<double, 3>, 3>;

inline Matrix3 product(const Matrix3& a, const Matrix3& b) {
  Matrix3 c{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

/// The rotation about r by its length: the exponential of the matrix of the cross product with r. Halved until the
/// series converges quickly, then squared back.
inline fw::matrix<double> rotation_by_series(const std::vector<double>& r) {
  int halvings = 0;
  double scale = 1.0;
  while (std::hypot(r[0], r[1], r[2]) * scale > 0.5) {
    scale *= 0.5;
    ++halvings;
  }
  const double x = scale * r[0], y = scale * r[1], z = scale * r[2];
  const Matrix3 cross = {{{0, -z, y}, {z, 0, -x}, {-y, x, 0}}};
  Matrix3 sum = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  Matrix3 term = sum;
  for (int n = 1; n <= 20; ++n) {
    term = product(term, cross);
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) {
        term[i][j] /= n;
        sum[i][j] += term[i][j];
      }
    }
  }
  for (; halvings > 0; --halvings) sum = product(sum, sum);
  return matrix_of(
      {{sum[0][0], sum[0][1], sum[0][2]}, {sum[1][0], sum[1][1], sum[1][2]}, {sum[2][0], sum[2][1], sum[2][2]}});
}

/// p q, scalar last.
inline std::vector<double> quaternion_product(const std::vector<double>& p, const std::vector<double>& q) {
  return {p[3] * q[0] + p[0] * q[3] + p[1] * q[2] - p[2] * q[1], p[3] * q[1] - p[0] * q[2] + p[1] * q[3] + p[2] * q[0],
          p[3] * q[2] + p[0] * q[1] - p[1] * q[0] + p[2] * q[3], p[3] * q[3] - p[0] * q[0] - p[1] * q[1] - p[2] * q[2]};
}

/// The rotation of a unit quaternion: column j is q e_j q*.
inline fw::matrix<double> rotation_by_conjugation(const std::vector<double>& q) {
  const std::vector<double> conjugate = {-q[0], -q[1], -q[2], q[3]};
  fw::matrix<double> R(3, 3);
  for (unsigned j = 0; j < 3; ++j) {
    std::vector<double> e(4, 0.0);
    e[j] = 1.0;
    const std::vector<double> turned = quaternion_product(quaternion_product(q, e), conjugate);
    for (unsigned i = 0; i < 3; ++i) R.set(i, j, turned[i]);
  }
  return R;
}

}  // namespace support
