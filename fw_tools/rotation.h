// SPDX-License-Identifier: BSD-3-Clause
// Conversions between rotation matrices, angle-axis, rotation vectors and quaternions.
//
// Layouts (angles in radians):
// - rotation matrix: 3 by 3, maps a point p to R p
// - angle-axis: (x, y, z, angle), axis first
// - rotation vector: axis times angle
// - quaternion: (x, y, z, w), scalar last, of any length but zero
#pragma once

#include <algorithm>
#include <vector>

#include "fw_tools/matrix.h"
#include "fw_tools/report.h"
#include "rotations/conversions.h"

namespace fw {

/// Angle-axis of a rotation matrix (docs/derivations.md, Eq. 6). No rotation gives the axis y and the angle 0; at the
/// angle pi the signs of the axis follow R(1, 2) alone. The axis is not renormalised.
/// Errors from inside get the context of fw_tools/rotation.h, 598.
template <typename T>
const std::vector<T> rot_mat_to_ang_axis_rad(const matrix<T>& R);

/// Rotation vector of a rotation matrix, by way of its angle-axis (docs/derivations.md, Eqs. 6 and 4).
template <typename T>
const std::vector<T> rot_mat_to_rot_vec_rad(const matrix<T>& R);

/// Quaternion of a rotation matrix (docs/derivations.md, Eq. 7), neither normalised nor brought to one sign.
/// Raises "Incorrectly sized matrix input. ..." (fw_tools/rotation.h, 655) unless R is 3 by 3.
template <typename T>
std::vector<T> rot_mat_to_quaternion(matrix<T> R);

/// Angle-axis of a rotation vector (docs/derivations.md, Eq. 4): appends the length of v as the angle and divides v by
/// it; a zero vector gives zeros. v may have any number of elements.
template <typename T>
const std::vector<T> rot_vec_to_ang_axis(const std::vector<T>& v);

/// Brings the axis (all elements but the last) to unit length in place. An axis whose squared length is 1e-16 or less
/// is multiplied by 1e-16 instead. The angle stays as it is. Vectors of one element are left alone.
template <typename T>
void enforce_ang_axis(std::vector<T>& a);

/// Rotation vector of an angle-axis: the unit axis, as enforce_ang_axis() makes it, times the angle
/// (docs/derivations.md, Eq. 4). a may have any number of elements from 2 on.
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

/// Rotation matrix of a rotation vector, by way of its angle-axis (docs/derivations.md, Eqs. 4 and 2).
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

/// The upper left 3 by 3 elements as a plain array.
template <typename T>
struct Elements {
  T R[3][3];
  explicit Elements(const matrix<T>& source) {
    for (unsigned int i = 0; i < 3; ++i) std::copy_n(source[i], 3, R[i]);
  }
};

template <typename T>
matrix<T> to_matrix(const T (&R)[3][3]) {
  matrix<T> result(3, 3);
  for (unsigned int i = 0; i < 3; ++i) std::copy_n(R[i], 3, result[i]);
  return result;
}

}  // namespace rotation_detail

template <typename T>
const std::vector<T> rot_mat_to_ang_axis_rad(const matrix<T>& R) try {
  T a[4];
  kelvane::rotations::rot_mat_to_ang_axis_rad(rotation_detail::Elements<T>(R).R, R.trace(), a);
  return {a, a + 4};
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
  T q[4];
  kelvane::rotations::rot_mat_to_quaternion(rotation_detail::Elements<T>(R).R, q);
  return {q, q + 4};
}

template <typename T>
const std::vector<T> rot_vec_to_ang_axis(const std::vector<T>& v) {
  std::vector<T> result(v.size() + 1);
  result.back() = kelvane::rotations::split_length(v.data(), v.size(), result.data());
  return result;
}

template <typename T>
void enforce_ang_axis(std::vector<T>& a) {
  if (a.size() >= 2) kelvane::rotations::normalise_axis(a.data(), a.size() - 1);
}

template <typename T>
const std::vector<T> ang_axis_to_rot_vec(const std::vector<T>& a) try {
  if (a.size() < 2) {
    raise(site::ang_axis_to_rot_vec_size,
          text("input std::vector had size ", a.size(), " doesn't seem to be a normalised angle axis std::vector"));
  }
  std::vector<T> v = a;
  kelvane::rotations::ang_axis_to_rot_vec(a.data(), a.size() - 1, v.data());
  v.pop_back();
  return v;
}
FW_ADD_CONTEXT(site::ang_axis_to_rot_vec_context, "")

template <typename T>
matrix<T> quaternion_to_rot_mat(std::vector<T>& q) {
  T R[3][3];
  kelvane::rotations::quaternion_to_rot_mat(q.data(), R);
  return rotation_detail::to_matrix(R);
}

template <typename T>
const matrix<T> ang_axis_rad_to_rot_mat(const std::vector<T>& a) try {
  if (a.size() != 4) {
    raise(site::ang_axis_to_rot_mat_size,
          text("Conversion only implemented for 3d rotations. input had size ", a.size()));
  }
  T R[3][3];
  kelvane::rotations::ang_axis_rad_to_rot_mat(a.data(), R);
  return rotation_detail::to_matrix(R);
}
FW_ADD_CONTEXT(site::ang_axis_to_rot_mat_context, "")

template <typename T>
const matrix<T> rot_vec_rad_to_rot_mat(const std::vector<T>& v) {
  if (v.size() != 3) raise(site::rot_vec_to_rot_mat_size, "Conversion only implemented for 3d rotations");
  T R[3][3];
  kelvane::rotations::rot_vec_rad_to_rot_mat(v.data(), R);
  return rotation_detail::to_matrix(R);
}

}  // namespace fw
