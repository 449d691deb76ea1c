// SPDX-License-Identifier: BSD-3-Clause
// Derivatives of one representation of a rotation by another, written to any matrix J of the right size that has J(i,
// j).
//
// Element (i, j) is d(output i) / d(input j), with the element orders of conversions.h. Nothing is checked or
// normalised. A quaternion is taken as of unit length: its angle is 2 acos(w), its axis the normalised vector part.
// Where the vector part is zero, or w is 1 or -1, elements are not finite.
#pragma once

#include <cmath>

namespace kelvane::rotations {

/// Sets every element of J to 0.
template <typename Matrix>
void set_zero(int num_rows, int num_columns, Matrix& J) {
  for (int i = 0; i < num_rows; ++i) {
    for (int j = 0; j < num_columns; ++j) J(i, j) = 0;
  }
}

/// N^(-3/2). The square root is a part of every processor; the general power would be a newer C library's.
template <typename T>
T inverse_cube_of_root(T N) {
  return 1 / (N * std::sqrt(N));
}

/// Rows 0 to 2, columns 0 to 2 become the derivative of v / |v|: N^(-1.5) (N I - v v') with N = v'v.
template <typename T, typename Matrix>
void set_direction_block(T x, T y, T z, Matrix& out) {
  const T factor = inverse_cube_of_root(x * x + y * y + z * z);
  out(0, 0) = (y * y + z * z) * factor;
  out(1, 1) = (z * z + x * x) * factor;
  out(2, 2) = (y * y + x * x) * factor;
  out(0, 1) = out(1, 0) = -x * y * factor;
  out(0, 2) = out(2, 0) = -x * z * factor;
  out(1, 2) = out(2, 1) = -y * z * factor;
}

/// J is 3 by 4 (docs/derivations.md, Eqs. 24 and 25).
template <typename T, typename Matrix>
void quaternion_to_rot_vec_jacobian(const T* q, Matrix& J) {
  const T x = q[0];
  const T y = q[1];
  const T z = q[2];
  const T w = q[3];
  const T N = x * x + y * y + z * z;
  const T P = inverse_cube_of_root(N);
  const T L = 1 / std::sqrt(N);
  const T alpha = std::acos(w);
  const T V = 1 / std::sqrt(1 - w * w);
  J(0, 0) = (z * z + y * y) * 2 * alpha * P;
  J(1, 1) = (z * z + x * x) * 2 * alpha * P;
  J(2, 2) = 2 * alpha * (y * y + x * x) * P;
  J(0, 1) = J(1, 0) = -2 * x * y * alpha * P;
  J(0, 2) = J(2, 0) = -2 * x * z * alpha * P;
  J(1, 2) = J(2, 1) = -2 * y * z * alpha * P;
  J(0, 3) = V * (-2 * x) * L;
  J(1, 3) = V * (-2 * y) * L;
  J(2, 3) = -2 * z * V * L;
}

/// J is 4 by 4 (docs/derivations.md, Eq. 26).
template <typename T, typename Matrix>
void quaternion_to_angle_axis_jacobian(const T* q, Matrix& J) {
  const T w = q[3];
  set_zero(4, 4, J);
  set_direction_block<T>(q[0], q[1], q[2], J);
  J(3, 3) = -2 / std::sqrt(1 - w * w);
}

/// J is 4 by 3 (docs/derivations.md, Eq. 27).
template <typename T, typename Matrix>
void rot_vec_to_quaternion_jacobian(const T* v, Matrix& J) {
  const T a = v[0];
  const T b = v[1];
  const T c = v[2];
  const T N = a * a + b * b + c * c;
  const T P = inverse_cube_of_root(N);
  const T L = 1 / std::sqrt(N);
  const T theta = std::sqrt(N);
  const T S = std::sin(theta / 2);
  const T C = std::cos(theta / 2);
  const T k = P * (-2) * S + C / N;
  J(0, 0) = (a * a * theta * C + 2 * (c * c + b * b) * S) * P * 0.5;
  J(1, 1) = (2 * (c * c + a * a) * S + b * b * theta * C) * P * 0.5;
  J(2, 2) = (2 * (b * b + a * a) * S + c * c * theta * C) * P * 0.5;
  J(0, 1) = J(1, 0) = k * a * b * 0.5;
  J(0, 2) = J(2, 0) = a * c * k * 0.5;
  J(1, 2) = J(2, 1) = b * c * k * 0.5;
  J(3, 0) = -a * L * S * 0.5;
  J(3, 1) = -b * L * S * 0.5;
  J(3, 2) = -c * L * S * 0.5;
}

/// J is 4 by 3 (docs/derivations.md, Eq. 28).
template <typename T, typename Matrix>
void rot_vec_to_angle_axis_jacobian(const T* v, Matrix& J) {
  const T N = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
  const T L = 1 / std::sqrt(N);
  set_direction_block<T>(v[0], v[1], v[2], J);
  for (int j = 0; j < 3; ++j) J(3, j) = v[j] * L;
}

/// J is 4 by 4 (docs/derivations.md, Eq. 29).
template <typename T, typename Matrix>
void angle_axis_to_quaternion_jacobian(const T* a, Matrix& J) {
  const T s = std::sin(a[3] / 2);
  const T c = std::cos(a[3] / 2);
  set_zero(4, 4, J);
  for (int i = 0; i < 3; ++i) {
    J(i, i) = s;
    J(i, 3) = a[i] * c * 0.5;
  }
  J(3, 3) = -s * 0.5;
}

/// J is 3 by 4 (docs/derivations.md, Eq. 30).
template <typename T, typename Matrix>
void angle_axis_to_rot_vec_jacobian(const T* a, Matrix& J) {
  set_zero(3, 4, J);
  for (int i = 0; i < 3; ++i) {
    J(i, i) = a[3];
    J(i, 3) = a[i];
  }
}

}  // namespace kelvane::rotations
