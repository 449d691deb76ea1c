// SPDX-License-Identifier: BSD-3-Clause
// The camera model derived a second time, over any scalar (double or dual numbers), without loss of digits anywhere.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "support/dual.h"

namespace support {

template <typename T>
using Vector3 = std::array<T, 3>;
template <typename T>
using Matrix3 = std::array<Vector3<T>, 3>;

/// sum of (-x)^k / (first + 2 k)!, for 0 <= x <= 1, where twelve terms leave an error below 1e-24.
template <typename T>
T alternating_series(const T& x, int first) {
  double factorial = 1.0;
  for (int i = 2; i <= first; ++i) factorial *= i;
  T sum = 0.0;
  T power = 1.0;
  for (int k = 0; k < 12; ++k) {
    sum = sum + power * (1.0 / factorial);
    power = power * -x;
    factorial *= (first + 2 * k + 1.0) * (first + 2 * k + 2.0);
  }
  return sum;
}

/// I + a S + b S^2 with S the matrix of the cross product with v
template <typename T>
Matrix3<T> cross_polynomial(const Vector3<T>& v, const T& a, const T& b) {
  const Matrix3<T> S = {{{0.0, -v[2], v[1]}, {v[2], 0.0, -v[0]}, {-v[1], v[0], 0.0}}};
  Matrix3<T> R;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t k = 0; k < 3; ++k) {
      const T square = S[i][0] * S[0][k] + S[i][1] * S[1][k] + S[i][2] * S[2][k];
      R[i][k] = T(i == k ? 1.0 : 0.0) + a * S[i][k] + b * square;
    }
  }
  return R;
}

/// exp of the cross product with r: sin(theta) / theta and (1 - cos(theta)) / theta^2 are analytic in theta^2, so below
/// one radian their power series gives value and derivative without a quotient of small numbers.
template <typename T>
Matrix3<T> rotation_of_vector(const Vector3<T>& r) {
  using std::cos, std::sin, std::sqrt;
  const T theta_2 = r[0] * r[0] + r[1] * r[1] + r[2] * r[2];
  if (value_of(theta_2) < 1.0) {
    return cross_polynomial(r, alternating_series(theta_2, 1), alternating_series(theta_2, 2));
  }
  const T theta = sqrt(theta_2);
  const T half_sine = sin(theta * 0.5);
  return cross_polynomial<T>(r, sin(theta) / theta, T(2.0) * half_sine * half_sine / theta_2);
}

/// The rotation by an angle about an axis of any length.
template <typename T>
Matrix3<T> rotation_of_angle_axis(const std::array<T, 4>& a) {
  using std::sin, std::sqrt;
  const T length = sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
  const T half_sine = sin(a[3] * 0.5);
  return cross_polynomial<T>({a[0] / length, a[1] / length, a[2] / length}, sin(a[3]), T(2.0) * half_sine * half_sine);
}

/// Hamilton's product of quaternions (x, y, z, w), scalar last.
template <typename T>
std::array<T, 4> product(const std::array<T, 4>& p, const std::array<T, 4>& q) {
  return {p[3] * q[0] + p[0] * q[3] + p[1] * q[2] - p[2] * q[1], p[3] * q[1] + p[1] * q[3] + p[2] * q[0] - p[0] * q[2],
          p[3] * q[2] + p[2] * q[3] + p[0] * q[1] - p[1] * q[0], p[3] * q[3] - p[0] * q[0] - p[1] * q[1] - p[2] * q[2]};
}

/// Column k is the vector part of q e_k q*: |q|^2 times a rotation matrix.
template <typename T>
Matrix3<T> quaternion_sandwich(const std::array<T, 4>& q) {
  Matrix3<T> R;
  for (std::size_t k = 0; k < 3; ++k) {
    std::array<T, 4> unit{};
    unit[k] = 1.0;
    const std::array<T, 4> image = product(product(q, unit), {-q[0], -q[1], -q[2], q[3]});
    for (std::size_t i = 0; i < 3; ++i) R[i][k] = image[i];
  }
  return R;
}

/// The rotation of a quaternion of any length.
template <typename T>
Matrix3<T> rotation_of_quaternion(const std::array<T, 4>& q) {
  const T squared_norm = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
  Matrix3<T> R = quaternion_sandwich(q);
  for (auto& row : R) {
    for (T& entry : row) entry = entry / squared_norm;
  }
  return R;
}

/// The model of type qn: as for a unit quaternion, but 1 - 2 a - 2 b on the diagonal instead of 1 - 2 a^2 - 2 b^2.
template <typename T>
Matrix3<T> matrix_of_unit_quaternion(const std::array<T, 4>& q) {
  Matrix3<T> R = quaternion_sandwich(q);
  for (std::size_t i = 0; i < 3; ++i) {
    R[i][i] = T(1.0) - T(2.0) * q[(i + 1) % 3] - T(2.0) * q[(i + 2) % 3];
  }
  return R;
}

/// R' (X - t)
template <typename T>
Vector3<T> camera_frame_point(const Matrix3<T>& R, const Vector3<T>& t, const std::vector<double>& X) {
  const Vector3<T> d = {T(X[0]) - t[0], T(X[1]) - t[1], T(X[2]) - t[2]};
  Vector3<T> p;
  for (std::size_t j = 0; j < 3; ++j) p[j] = R[0][j] * d[0] + R[1][j] * d[1] + R[2][j] * d[2];
  return p;
}

/// (u, v) of the camera-frame point p through [f 0 cx; 0 f cy; 0 0 1]
template <typename T>
std::array<T, 2> pixel(double f, double cx, double cy, const Vector3<T>& p) {
  return {(T(f) * p[0] + T(cx) * p[2]) / p[2], (T(f) * p[1] + T(cy) * p[2]) / p[2]};
}

}  // namespace support
