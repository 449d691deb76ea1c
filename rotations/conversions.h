// SPDX-License-Identifier: BSD-3-Clause
// Conversions between representations of a rotation on plain arrays: no allocation, no check.
//
// Layouts (angles in radians); element (i, j) of a rotation matrix is R[i][j]:
// - rotation matrix: 3 by 3, maps a point p to R p
// - angle-axis: (x, y, z, angle), axis first
// - rotation vector: axis times angle
// - quaternion: (x, y, z, w), scalar last, of any length but zero
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

/// Conversions between representations of a rotation, which check nothing.
namespace kelvane::rotations {

inline constexpr double pi = 3.14159265358979323846;  ///< a half turn, radians
inline constexpr double matrix_tolerance = 1e-12;     ///< distance from trace 3, trace -1 or 0 that counts as equal
inline constexpr double axis_tolerance = 1e-16;       ///< squared length up to which an axis has no direction

/// Angle-axis at the angle pi, where R = 2 x x' - I leaves the axis its magnitudes and the signs of its products.
template <typename T>
void half_turn_to_ang_axis(const T (&R)[3][3], T* a) {
  for (int i = 0; i < 3; ++i) {
    const T magnitude = std::sqrt(std::max<T>((1 + R[i][i]) * 0.5, 0));
    a[i] = magnitude <= matrix_tolerance ? 0 : magnitude;
  }
  // Only R(1, 2) is probed, and a negative one turns the first element round, whatever the other products say.
  if (R[1][2] < -matrix_tolerance) a[0] = -a[0];
  a[3] = pi;
}

/// Angle-axis of a rotation matrix with that trace (docs/derivations.md, Eq. 6).
template <typename T>
void rot_mat_to_ang_axis_rad(const T (&R)[3][3], T trace, T* a) {
  if (std::abs(trace - 3) <= matrix_tolerance) {
    a[0] = a[2] = a[3] = 0;
    a[1] = 1;
    return;
  }
  if (!(std::abs(trace + 1) > matrix_tolerance)) return half_turn_to_ang_axis(R, a);
  const T angle = std::acos((trace - 1) * 0.5);
  const T d = 2 * std::sin(angle);
  a[0] = (R[2][1] - R[1][2]) / d;
  a[1] = (R[0][2] - R[2][0]) / d;
  a[2] = (R[1][0] - R[0][1]) / d;
  a[3] = angle;
}

/// Angle-axis of a rotation matrix (docs/derivations.md, Eq. 6).
template <typename T>
void rot_mat_to_ang_axis_rad(const T (&R)[3][3], T* a) {
  rot_mat_to_ang_axis_rad(R, R[0][0] + R[1][1] + R[2][2], a);
}

/// Quaternion of a rotation matrix (docs/derivations.md, Eq. 7).
template <typename T>
void rot_mat_to_quaternion(const T (&R)[3][3], T* q) {
  // Divides by the largest of the four elements, but for ties, which go to the later axis.
  const T trace = R[0][0] + R[1][1] + R[2][2];
  if (trace > 0) {
    const T S = 0.5 / std::sqrt(trace + 1);
    q[0] = (R[2][1] - R[1][2]) * S;
    q[1] = (R[0][2] - R[2][0]) * S;
    q[2] = (R[1][0] - R[0][1]) * S;
    q[3] = 0.25 / S;
    return;
  }
  const int i = R[0][0] > R[1][1] && R[0][0] > R[2][2] ? 0 : R[1][1] > R[2][2] ? 1 : 2;
  const int j = (i + 1) % 3;
  const int k = (i + 2) % 3;
  const int first = j < k ? j : k;  // the order of the two subtractions shows in the last bit
  const int second = j < k ? k : j;
  const T S = 2 * std::sqrt(1 + R[i][i] - R[first][first] - R[second][second]);
  q[i] = 0.25 * S;
  q[j] = (R[i][j] + R[j][i]) / S;
  q[k] = (R[i][k] + R[k][i]) / S;
  q[3] = (R[k][j] - R[j][k]) / S;
}

/// The length of v, and v divided by it; a zero vector gives zeros. v and direction may be the same.
template <typename T>
T split_length(const T* v, std::size_t size, T* direction) {
  T squared_length = 0;
  for (std::size_t k = 0; k < size; ++k) squared_length += v[k] * v[k];
  const T length = std::sqrt(squared_length);
  for (std::size_t k = 0; k < size; ++k) direction[k] = length == 0.0 ? T{} : v[k] / length;
  return length;
}

/// Brings an axis to unit length in place; one without a direction is multiplied by 1e-16.
template <typename T>
void normalise_axis(T* axis, std::size_t size) {
  T squared_length = 0;
  for (std::size_t k = 0; k < size; ++k) squared_length += axis[k] * axis[k];
  // An axis without a direction is shrunk further, not left alone.
  const T scale = squared_length > axis_tolerance ? 1 / std::sqrt(squared_length) : 1e-16;
  for (std::size_t k = 0; k < size; ++k) axis[k] *= scale;
}

/// The unit axis of a times its angle: a is an axis of axis_size elements and the angle behind it. v and a may be the
/// same.
template <typename T>
void ang_axis_to_rot_vec(const T* a, std::size_t axis_size, T* v) {
  const T angle = a[axis_size];
  for (std::size_t k = 0; k < axis_size; ++k) v[k] = a[k];
  normalise_axis(v, axis_size);
  for (std::size_t k = 0; k < axis_size; ++k) v[k] *= angle;
}

/// Rotation matrix of a quaternion of any length but zero (docs/derivations.md, Eq. 3).
template <typename T>
void quaternion_to_rot_mat(const T* q, T (&R)[3][3]) {
  const T x = q[0];
  const T y = q[1];
  const T z = q[2];
  const T w = q[3];
  const T k = 1 / (x * x + y * y + z * z + w * w);
  R[0][0] = (x * x - y * y - z * z + w * w) * k;
  R[1][1] = (y * y - x * x - z * z + w * w) * k;
  R[2][2] = (-x * x - y * y + z * z + w * w) * k;
  R[1][0] = 2 * (x * y + z * w) * k;
  R[0][1] = 2 * (x * y - z * w) * k;
  R[2][0] = 2 * (x * z - y * w) * k;
  R[0][2] = 2 * (x * z + y * w) * k;
  R[2][1] = 2 * (y * z + x * w) * k;
  R[1][2] = 2 * (y * z - x * w) * k;
}

/// Rotation matrix of an angle-axis, whose axis is brought to unit length first (docs/derivations.md, Eq. 2).
template <typename T>
void ang_axis_rad_to_rot_mat(const T* a, T (&R)[3][3]) {
  T axis[] = {a[0], a[1], a[2]};
  normalise_axis(axis, 3);
  const T x = axis[0];
  const T y = axis[1];
  const T z = axis[2];
  const T s = std::sin(a[3]);
  const T c = std::cos(a[3]);
  const T t = 1 - c;
  R[0][0] = x * (t * x) + c;
  R[0][1] = t * x * y - s * z;
  R[0][2] = t * x * z + s * y;
  R[1][0] = t * x * y + s * z;
  R[1][1] = y * (t * y) + c;
  R[1][2] = t * y * z - s * x;
  R[2][0] = t * x * z - s * y;
  R[2][1] = t * y * z + s * x;
  R[2][2] = z * (t * z) + c;
}

/// Rotation matrix of a rotation vector (docs/derivations.md, Eqs. 4 and 2).
template <typename T>
void rot_vec_rad_to_rot_mat(const T* v, T (&R)[3][3]) {
  T a[4];
  a[3] = split_length(v, 3, a);
  ang_axis_rad_to_rot_mat(a, R);
}

}  // namespace kelvane::rotations
