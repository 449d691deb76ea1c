// SPDX-License-Identifier: BSD-3-Clause
// Derivatives of one rotation representation by another.
//
// Element (i, j) of a result is d(output i) / d(input j), with the element orders of rotation.h. No function checks or
// normalises its input. A quaternion is taken as of unit length: its angle is 2 acos(w), its axis the normalised vector
// part. Where the vector part is zero, or w is 1 or -1, elements are not finite.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "fw_tools/Opencv_io.h"
#include "fw_tools/report.h"
#include "rotations/conversion_jacobians.h"

namespace fw {

/// Rotation vector by quaternion, 3 by 4 (docs/derivations.md, Eqs. 24 and 25).
template <typename T>
cv::Mat_<T> quaternion_to_rot_vec_jacobian(const std::vector<T>& q);

/// Angle-axis by quaternion, 4 by 4 (docs/derivations.md, Eq. 26).
template <typename T>
cv::Mat_<T> quaternion_to_angle_axis_jacobian(const std::vector<T>& q);

/// Quaternion by rotation vector, 4 by 3 (docs/derivations.md, Eq. 27).
template <typename T>
cv::Mat_<T> rot_vec_to_quaternion_jacobian(const std::vector<T>& v);

/// Angle-axis by rotation vector, 4 by 3 (docs/derivations.md, Eq. 28).
template <typename T>
cv::Mat_<T> rot_vec_to_angle_axis_jacobian(const std::vector<T>& v);

/// Quaternion by angle-axis, 4 by 4, the axis entering unnormalised (docs/derivations.md, Eq. 29).
template <typename T>
cv::Mat_<T> angle_axis_to_quaternion_jacobian(const std::vector<T>& a);

/// Rotation vector by angle-axis, 3 by 4, the axis entering unnormalised (docs/derivations.md, Eq. 30).
template <typename T>
cv::Mat_<T> angle_axis_to_rot_vec_jacobian(const std::vector<T>& a);

/// Widens the m by n Jacobian of a rotation to the (m + 3) by (n + 3) one of a pose: the identity for the translation.
/// Raises "Size mismatch for subregion copy. ..." (fw_tools/rotation_jacobians.h, 34), which the construction rules
/// out.
template <typename T>
cv::Mat_<T> convert_rot_jac_to_full_jac(const cv::Mat_<T>& J);

namespace site {
inline constexpr Site full_jacobian_block{
    "fw_tools/rotation_jacobians.h", 34,
    "cv::Mat_<_Tp> fw::convert_rot_jac_to_full_jac(const cv::Mat_<_Tp>&) [with T = double]"};
}  // namespace site

template <typename T>
cv::Mat_<T> quaternion_to_rot_vec_jacobian(const std::vector<T>& q) {
  cv::Mat_<T> J(3, 4);
  kelvane::rotations::quaternion_to_rot_vec_jacobian(q.data(), J);
  return J;
}

template <typename T>
cv::Mat_<T> quaternion_to_angle_axis_jacobian(const std::vector<T>& q) {
  cv::Mat_<T> J(4, 4);
  kelvane::rotations::quaternion_to_angle_axis_jacobian(q.data(), J);
  return J;
}

template <typename T>
cv::Mat_<T> rot_vec_to_quaternion_jacobian(const std::vector<T>& v) {
  cv::Mat_<T> J(4, 3);
  kelvane::rotations::rot_vec_to_quaternion_jacobian(v.data(), J);
  return J;
}

template <typename T>
cv::Mat_<T> rot_vec_to_angle_axis_jacobian(const std::vector<T>& v) {
  cv::Mat_<T> J(4, 3);
  kelvane::rotations::rot_vec_to_angle_axis_jacobian(v.data(), J);
  return J;
}

template <typename T>
cv::Mat_<T> angle_axis_to_quaternion_jacobian(const std::vector<T>& a) {
  cv::Mat_<T> J(4, 4);
  kelvane::rotations::angle_axis_to_quaternion_jacobian(a.data(), J);
  return J;
}

template <typename T>
cv::Mat_<T> angle_axis_to_rot_vec_jacobian(const std::vector<T>& a) {
  cv::Mat_<T> J(3, 4);
  kelvane::rotations::angle_axis_to_rot_vec_jacobian(a.data(), J);
  return J;
}

template <typename T>
cv::Mat_<T> convert_rot_jac_to_full_jac(const cv::Mat_<T>& J) {
  cv::Mat_<T> full(J.rows + 3, J.cols + 3, T(0));
  cv::Mat block = full(cv::Range(0, J.rows), cv::Range(0, J.cols));
  if (block.size() != J.size()) {
    raise(site::full_jacobian_block, "Size mismatch for subregion copy. output roi was " + size_text(block.size()) +
                                         " but input was " + size_text(J.size()));
  }
  J.copyTo(block);
  for (int i = 0; i < 3; ++i) full(J.rows + i, J.cols + i) = 1;
  return full;
}

}  // namespace fw
