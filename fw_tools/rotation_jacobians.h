// SPDX-License-Identifier: BSD-3-Clause
// Derivatives of one rotation representation by another.
//
// Element (i, j) of a result is d(output i) / d(input j), with the element orders of rotation.h. No function checks or
// normalises its input. A quaternion is taken as of unit length: its angle is 2 acos(w), its axis the normalised vector
// part. Where the vector part is zero, or w is 1 or -1, elements are not finite.
#pragma once

#include <cmath>
#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

#include "fw_tools/Opencv_io.h"
#include "fw_tools/report.h"

namespace fw {

/// 3 by 4 (docs/derivations.md, Eqs. 24 and 25)
template <typename T>
cv::Mat_<T> quaternion_to_rot_vec_jacobian(const std::vector<T>& q);

/// 4 by 4 (docs/derivations.md, Eq. 26)
template <typename T>
cv::Mat_<T> quaternion_to_angle_axis_jacobian(const std::vector<T>& q);

/// 4 by 3 (docs/derivations.md, Eq. 27)
template <typename T>
cv::Mat_<T> rot_vec_to_quaternion_jacobian(const std::vector<T>& v);

/// 4 by 3 (docs/derivations.md, Eq. 28)
template <typename T>
cv::Mat_<T> rot_vec_to_angle_axis_jacobian(const std::vector<T>& v);

/// 4 by 4, the axis entering unnormalised (docs/derivations.md, Eq. 29)
template <typename T>
cv::Mat_<T> angle_axis_to_quaternion_jacobian(const std::vector<T>& a);

/// 3 by 4, the axis entering unnormalised (docs/derivations.md, Eq. 30)
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

namespace rotation_jacobians_detail {

/// Rows 0 to 2, columns 0 to 2 become the derivative of v / |v|: N^(-1.5) (N I - v v') with N = v'v.
template <typename T>
void set_direction_block(T x, T y, T z, cv::Mat_<T>& out) {
  const T factor = std::pow(x * x + y * y + z * z, -1.5);
  out(0, 0) = (y * y + z * z) * factor;
  out(1, 1) = (z * z + x * x) * factor;
  out(2, 2) = (y * y + x * x) * factor;
  out(0, 1) = out(1, 0) = -x * y * factor;
  out(0, 2) = out(2, 0) = -x * z * factor;
  out(1, 2) = out(2, 1) = -y * z * factor;
}

}  // namespace rotation_jacobians_detail

template <typename T>
cv::Mat_<T> quaternion_to_rot_vec_jacobian(const std::vector<T>& q) {
  const T x = q[0];
  const T y = q[1];
  const T z = q[2];
  const T w = q[3];
  const T N = x * x + y * y + z * z;
  const T P = std::pow(N, -1.5);
  const T L = 1 / std::sqrt(N);
  const T alpha = std::acos(w);
  const T V = 1 / std::sqrt(1 - w * w);
  cv::Mat_<T> J(3, 4);
  J(0, 0) = (z * z + y * y) * 2 * alpha * P;
  J(1, 1) = (z * z + x * x) * 2 * alpha * P;
  J(2, 2) = 2 * alpha * (y * y + x * x) * P;
  J(0, 1) = J(1, 0) = -2 * x * y * alpha * P;
  J(0, 2) = J(2, 0) = -2 * x * z * alpha * P;
  J(1, 2) = J(2, 1) = -2 * y * z * alpha * P;
  J(0, 3) = V * (-2 * x) * L;
  J(1, 3) = V * (-2 * y) * L;
  J(2, 3) = -2 * z * V * L;
  return J;
}

template <typename T>
cv::Mat_<T> quaternion_to_angle_axis_jacobian(const std::vector<T>& q) {
  const T w = q[3];
  cv::Mat_<T> J(4, 4, T(0));
  rotation_jacobians_detail::set_direction_block<T>(q[0], q[1], q[2], J);
  J(3, 3) = -2 / std::sqrt(1 - w * w);
  return J;
}

template <typename T>
cv::Mat_<T> rot_vec_to_quaternion_jacobian(const std::vector<T>& v) {
  const T a = v[0];
  const T b = v[1];
  const T c = v[2];
  const T N = a * a + b * b + c * c;
  const T P = std::pow(N, -1.5);
  const T L = 1 / std::sqrt(N);
  const T theta = std::sqrt(N);
  const T S = std::sin(theta / 2);
  const T C = std::cos(theta / 2);
  const T k = P * (-2) * S + C / N;
  cv::Mat_<T> J(4, 3);
  J(0, 0) = (a * a * theta * C + 2 * (c * c + b * b) * S) * P * 0.5;
  J(1, 1) = (2 * (c * c + a * a) * S + b * b * theta * C) * P * 0.5;
  J(2, 2) = (2 * (b * b + a * a) * S + c * c * theta * C) * P * 0.5;
  J(0, 1) = J(1, 0) = k * a * b * 0.5;
  J(0, 2) = J(2, 0) = a * c * k * 0.5;
  J(1, 2) = J(2, 1) = b * c * k * 0.5;
  J(3, 0) = -a * L * S * 0.5;
  J(3, 1) = -b * L * S * 0.5;
  J(3, 2) = -c * L * S * 0.5;
  return J;
}

template <typename T>
cv::Mat_<T> rot_vec_to_angle_axis_jacobian(const std::vector<T>& v) {
  const T N = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
  const T L = 1 / std::sqrt(N);
  cv::Mat_<T> J(4, 3);
  rotation_jacobians_detail::set_direction_block<T>(v[0], v[1], v[2], J);
  for (int j = 0; j < 3; ++j) J(3, j) = v[static_cast<std::size_t>(j)] * L;
  return J;
}

template <typename T>
cv::Mat_<T> angle_axis_to_quaternion_jacobian(const std::vector<T>& a) {
  const T s = std::sin(a[3] / 2);
  const T c = std::cos(a[3] / 2);
  cv::Mat_<T> J(4, 4, T(0));
  for (int i = 0; i < 3; ++i) {
    J(i, i) = s;
    J(i, 3) = a[static_cast<std::size_t>(i)] * c * 0.5;
  }
  J(3, 3) = -s * 0.5;
  return J;
}

template <typename T>
cv::Mat_<T> angle_axis_to_rot_vec_jacobian(const std::vector<T>& a) {
  cv::Mat_<T> J(3, 4, T(0));
  for (int i = 0; i < 3; ++i) {
    J(i, i) = a[3];
    J(i, 3) = a[static_cast<std::size_t>(i)];
  }
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
