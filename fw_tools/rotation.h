// SPDX-License-Identifier: BSD-3-Clause
// Conversions between rotation matrices, angle-axis, rotation vectors and quaternions.
//
// Layouts (angles in radians):
//   rotation matrix  3 by 3, maps a point p to R p
//   angle-axis       (x, y, z, angle), axis first
//   rotation vector  axis times angle
//   quaternion       (x, y, z, w), scalar last, of any length but zero
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "fw_tools/matrix.h"
#include "fw_tools/report.h"
#include "fw_tools/scalar_helpers.h"

namespace fw {

/// Angle-axis of a rotation matrix (docs/derivations.md, Eq. 6). No rotation gives the axis y and the angle 0; at the
/// angle pi the signs of the axis follow R(1, 2) alone. The axis is not renormalised.
/// Errors from inside get the context of fw_tools/rotation.h, 598.
template <typename T>
const std::vector<T> rot_mat_to_ang_axis_rad(const matrix<T>& R);

/// Rotation vector of a rotation matrix, by way of its angle-axis.
template <typename T>
const std::vector<T> rot_mat_to_rot_vec_rad(const matrix<T>& R);

/// Quaternion of a rotation matrix (docs/derivations.md, Eq. 7), neither normalised nor brought to one sign.
/// Raises "Incorrectly sized matrix input. ..." (fw_tools/rotation.h, 655) unless R is 3 by 3.
template <typename T>
std::vector<T> rot_mat_to_quaternion(matrix<T> R);

/// Appends the length of v as the angle and divides v by it; a zero vector gives zeros. Any length.
template <typename T>
const std::vector<T> rot_vec_to_ang_axis(const std::vector<T>& v);

/// Brings the axis (all elements but the last) to unit length in place. An axis whose squared length is 1e-16 or less
/// is multiplied by 1e-16 instead. The angle stays as it is. Vectors of one element are left alone.
template <typename T>
void enforce_ang_axis(std::vector<T>& a);

/// The unit axis of a times its angle; any length from 2.
/// Raises "input std::vector had size ..." (fw_tools/rotation.h, 374 inside 382) for shorter vectors.
template <typename T>
const std::vector<T> ang_axis_to_rot_vec(const std::vector<T>& a);

/// Rotation matrix of a quaternion of 4 elements and any length (docs/derivations.md, Eq. 3); q is not changed. The
/// zero quaternion gives non-finite elements.
template <typename T>
matrix<T> quaternion_to_rot_mat(std::vector<T>& q);

/// Rotation matrix of an angle-axis (Rodrigues; docs/derivations.md, Eq. 2); the axis is brought to unit length first.
/// Raises "Conversion only implemented for 3d rotations. input had size ..." (fw_tools/rotation.h, 429 inside 454)
/// unless a has 4 elements.
template <typename T>
const matrix<T> ang_axis_rad_to_rot_mat(const std::vector<T>& a);

/// Rotation matrix of a rotation vector.
/// Raises "Conversion only implemented for 3d rotations" (fw_tools/rotation.h, 411) unless v has 3 elements.
template <typename T>
const matrix<T> rot_vec_rad_to_rot_mat(const std::vector<T>& v);

namespace site {
inline constexpr Site ang_axis_to_rot_vec_size{
    "fw_tools/rotation.h", 374,
    "const std::vector<_Tp> fw::ang_axis_to_rot_vec(const std::vector<_Tp>&) [with T = double]"};
inline constexpr Site ang_axis_to_rot_vec_context{ang_axis_to_rot_vec_size.file, 382,
                                                  ang_axis_to_rot_vec_size.signature};
inline constexpr Site rot_vec_to_rot_mat_size{
    "fw_tools/rotation.h", 411,
    "const fw::matrix<T> fw::rot_vec_rad_to_rot_mat(const std::vector<_Tp>&) [with T = double]"};
inline constexpr Site ang_axis_to_rot_mat_size{
    "fw_tools/rotation.h", 429,
    "const fw::matrix<T> fw::ang_axis_rad_to_rot_mat(const std::vector<_Tp>&) [with T = double]"};
inline constexpr Site ang_axis_to_rot_mat_context{ang_axis_to_rot_mat_size.file, 454,
                                                  ang_axis_to_rot_mat_size.signature};
inline constexpr Site rot_mat_to_ang_axis_context{
    "fw_tools/rotation.h", 598,
    "const std::vector<_Tp> fw::rot_mat_to_ang_axis_rad(const fw::matrix<T>&) [with T = double]"};
inline constexpr Site rot_mat_to_quaternion_size{
    "fw_tools/rotation.h", 655, "std::vector<_Tp> fw::rot_mat_to_quaternion(fw::matrix<T>) [with T = double]"};
}  // namespace site

namespace rotation_detail {
inline constexpr double pi = 3.14159265358979323846;
inline constexpr double matrix_tolerance = 1e-12;  // distance from trace 3, trace -1 or 0 that counts as equal
inline constexpr double axis_tolerance = 1e-16;    // squared length up to which an axis has no direction

/// Angle-axis at the angle pi, where R = 2 x x' - I leaves the axis its magnitudes and the signs of its products.
template <typename T>
std::vector<T> half_turn_to_ang_axis(const matrix<T>& R) {
  std::vector<T> result(4);
  for (unsigned int i = 0; i < 3; ++i) {
    const T magnitude = std::sqrt(max_portable<T>((1 + R.get(i, i)) * 0.5, 0));
    result[i] = magnitude <= matrix_tolerance ? 0 : magnitude;
  }
  // Only R(1, 2) is probed, and a negative one turns the first element round, whatever the other products say.
  if (R.get(1, 2) < -matrix_tolerance) result[0] = -result[0];
  result[3] = pi;
  return result;
}
}  // namespace rotation_detail

template <typename T>
const std::vector<T> rot_mat_to_ang_axis_rad(const matrix<T>& R) try {
  const T trace = R.trace();
  if (std::abs(trace - 3) <= rotation_detail::matrix_tolerance) return {0, 1, 0, 0};
  if (!(std::abs(trace + 1) > rotation_detail::matrix_tolerance)) return rotation_detail::half_turn_to_ang_axis(R);
  const T angle = std::acos((trace - 1) * 0.5);
  const T d = 2 * std::sin(angle);
  return {(R.get(2, 1) - R.get(1, 2)) / d, (R.get(0, 2) - R.get(2, 0)) / d, (R.get(1, 0) - R.get(0, 1)) / d, angle};
}
FW_ADD_CONTEXT(site::rot_mat_to_ang_axis_context, "")

template <typename T>
const std::vector<T> rot_mat_to_rot_vec_rad(const matrix<T>& R) {
  return ang_axis_to_rot_vec(rot_mat_to_ang_axis_rad(R));
}

template <typename T>
std::vector<T> rot_mat_to_quaternion(matrix<T> R) {
  if (R.get_dim1() != 3 || R.get_dim2() != 3) {
    raise(site::rot_mat_to_quaternion_size,
          text("Incorrectly sized matrix input. Quaternions only defined for 3d rotations, but matrix had size ",
               R.get_dim1(), " by ", R.get_dim2()));
  }
  // Divides by the largest of the four elements, but for ties, which go to the later axis.
  const T trace = R[0][0] + R[1][1] + R[2][2];
  if (trace > 0) {
    const T S = 0.5 / std::sqrt(trace + 1);
    return {(R[2][1] - R[1][2]) * S, (R[0][2] - R[2][0]) * S, (R[1][0] - R[0][1]) * S, 0.25 / S};
  }
  if (R[0][0] > R[1][1] && R[0][0] > R[2][2]) {
    const T S = 2 * std::sqrt(1 + R[0][0] - R[1][1] - R[2][2]);
    return {0.25 * S, (R[0][1] + R[1][0]) / S, (R[0][2] + R[2][0]) / S, (R[2][1] - R[1][2]) / S};
  }
  if (R[1][1] > R[2][2]) {
    const T S = 2 * std::sqrt(1 + R[1][1] - R[0][0] - R[2][2]);
    return {(R[0][1] + R[1][0]) / S, 0.25 * S, (R[1][2] + R[2][1]) / S, (R[0][2] - R[2][0]) / S};
  }
  const T S = 2 * std::sqrt(1 + R[2][2] - R[0][0] - R[1][1]);
  return {(R[0][2] + R[2][0]) / S, (R[1][2] + R[2][1]) / S, 0.25 * S, (R[1][0] - R[0][1]) / S};
}

template <typename T>
const std::vector<T> rot_vec_to_ang_axis(const std::vector<T>& v) {
  std::vector<T> result(v.size() + 1);
  T squared_length = 0;
  for (const T& element : v) squared_length += square(element);
  const T angle = std::sqrt(squared_length);
  result.back() = angle;
  if (angle == 0.0) return result;
  for (std::size_t k = 0; k < v.size(); ++k) result[k] = v[k] / angle;
  return result;
}

template <typename T>
void enforce_ang_axis(std::vector<T>& a) {
  if (a.size() < 2) return;
  const std::size_t axis_size = a.size() - 1;
  T squared_length = 0;
  for (std::size_t k = 0; k < axis_size; ++k) squared_length += square(a[k]);
  // An axis without a direction is shrunk further, not left alone.
  const T scale = squared_length > rotation_detail::axis_tolerance ? 1 / std::sqrt(squared_length) : 1e-16;
  for (std::size_t k = 0; k < axis_size; ++k) a[k] *= scale;
}

template <typename T>
const std::vector<T> ang_axis_to_rot_vec(const std::vector<T>& a) try {
  if (a.size() < 2) {
    raise(site::ang_axis_to_rot_vec_size,
          text("input std::vector had size ", a.size(), " doesn't seem to be a normalised angle axis std::vector"));
  }
  std::vector<T> v = a;
  enforce_ang_axis(v);
  const T angle = v.back();
  v.pop_back();
  for (T& element : v) element *= angle;
  return v;
}
FW_ADD_CONTEXT(site::ang_axis_to_rot_vec_context, "")

template <typename T>
matrix<T> quaternion_to_rot_mat(std::vector<T>& q) {
  const T x = q[0];
  const T y = q[1];
  const T z = q[2];
  const T w = q[3];
  const T k = 1 / (x * x + y * y + z * z + w * w);
  matrix<T> R(3, 3);
  R[0][0] = (x * x - y * y - z * z + w * w) * k;
  R[1][1] = (y * y - x * x - z * z + w * w) * k;
  R[2][2] = (-x * x - y * y + z * z + w * w) * k;
  R[1][0] = 2 * (x * y + z * w) * k;
  R[0][1] = 2 * (x * y - z * w) * k;
  R[2][0] = 2 * (x * z - y * w) * k;
  R[0][2] = 2 * (x * z + y * w) * k;
  R[2][1] = 2 * (y * z + x * w) * k;
  R[1][2] = 2 * (y * z - x * w) * k;
  return R;
}

template <typename T>
const matrix<T> ang_axis_rad_to_rot_mat(const std::vector<T>& a) try {
  matrix<T> R(3, 3);
  if (a.size() != 4) {
    raise(site::ang_axis_to_rot_mat_size,
          text("Conversion only implemented for 3d rotations. input had size ", a.size()));
  }
  std::vector<T> unit = a;
  enforce_ang_axis(unit);
  const T x = unit[0];
  const T y = unit[1];
  const T z = unit[2];
  const T s = std::sin(unit[3]);
  const T c = std::cos(unit[3]);
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
  return R;
}
FW_ADD_CONTEXT(site::ang_axis_to_rot_mat_context, "")

template <typename T>
const matrix<T> rot_vec_rad_to_rot_mat(const std::vector<T>& v) {
  if (v.size() != 3) raise(site::rot_vec_to_rot_mat_size, "Conversion only implemented for 3d rotations");
  return ang_axis_rad_to_rot_mat(rot_vec_to_ang_axis(v));
}

}  // namespace fw
