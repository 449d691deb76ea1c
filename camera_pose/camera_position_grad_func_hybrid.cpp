// SPDX-License-Identifier: BSD-3-Clause
// The chain rule behind the second and third blocks of the hybrid Jacobians.
#include "camera_pose/camera_position_grad_func_hybrid.h"

#include <cstddef>

#include "camera_pose/hybrid_blocks.h"
#include "fw_tools/rotation.h"
#include "fw_tools/rotation_jacobians.h"

namespace {

/// The first `size` entries of x.
std::vector<double> rotation_entries(const std::vector<double>& x, std::size_t size) {
  return {x.begin(), x.begin() + static_cast<std::ptrdiff_t>(size)};
}

/// The search vector of another representation: its rotation, then the translation that ends x.
std::vector<double> search_vector(std::vector<double> rotation, const std::vector<double>& x,
                                  std::size_t num_rotation) {
  const auto t = x.begin() + static_cast<std::ptrdiff_t>(num_rotation);
  rotation.insert(rotation.end(), t, t + 3);
  return rotation;
}

/// The Jacobian of `inner` at its own search vector.
template <typename Jacobian>
cv::Mat evaluate(const Jacobian& inner, const std::vector<double>& x, int num_rows) {
  cv::Mat J(num_rows, static_cast<int>(x.size()), CV_64F);
  inner(x, J, 0);
  return J;
}

/// d(pixels) / d(primary) = d(pixels) / d(other) d(other) / d(primary)                  (Eq. 31)
cv::Mat carry_over(const cv::Mat& J, const cv::Mat_<double>& rotation_jacobian) {
  return J * fw::convert_rot_jac_to_full_jac(rotation_jacobian);
}

}  // namespace

Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid(const std::vector<std::vector<double>>& the_points,
                                                                   const fw::matrix<double>& K, fw::Opt_func* the_base)
    : Camera_position_grad_func_hybrid(std::make_shared<const Packed_points>(the_points), Intrinsics(K), the_base) {}

Camera_position_grad_func_hybrid::Camera_position_grad_func_hybrid(
    const std::shared_ptr<const Packed_points>& the_points, const Intrinsics& intrinsics,
    fw::Opt_func* the_base) noexcept
    : fw::Grad_func(the_base),
      points(the_points),
      aau(points, intrinsics, nullptr),
      aan(points, intrinsics, nullptr),
      qu(points, intrinsics, nullptr) {}

int Camera_position_grad_func_qu_aau_aan::operator()(const std::vector<double>& x, cv::Mat& J, int start) const try {
  if (points->size() == 0) return 0;  // OpenCV multiplies no matrix without rows
  const int n = qu(x, J, start);
  std::vector<double> q = rotation_entries(x, 4);
  const cv::Mat_<double> daau_dq = fw::quaternion_to_rot_vec_jacobian(q);
  const cv::Mat_<double> daan_dq = fw::quaternion_to_angle_axis_jacobian(q);
  const auto r = fw::rot_mat_to_rot_vec_rad(fw::quaternion_to_rot_mat(q));
  const auto a = fw::rot_mat_to_ang_axis_rad(fw::quaternion_to_rot_mat(q));

  const cv::Mat aan_block = carry_over(evaluate(aan, search_vector(a, x, 4), n), daan_dq);
  const cv::Mat aau_block = carry_over(evaluate(aau, search_vector(r, x, 4), n), daau_dq);
  return hybrid::copy_blocks(aau_block, hybrid::qu_aau_aan_check_2, aan_block, nullptr, J, start);
}
FW_ADD_CONTEXT(site::qu_aau_aan, "")

int Camera_position_grad_func_aau_qu_aan::operator()(const std::vector<double>& x, cv::Mat& J, int start) const try {
  if (points->size() == 0) return 0;
  const int n = aau(x, J, start);
  const std::vector<double> r = rotation_entries(x, 3);
  const cv::Mat_<double> dqu_dr = fw::rot_vec_to_quaternion_jacobian(r);
  const cv::Mat_<double> daan_dr = fw::rot_vec_to_angle_axis_jacobian(r);
  const auto q = fw::rot_mat_to_quaternion<double>(fw::rot_vec_rad_to_rot_mat(r));
  const auto a = fw::rot_vec_to_ang_axis(r);

  const cv::Mat qu_block = carry_over(evaluate(qu, search_vector(q, x, 3), n), dqu_dr);
  const cv::Mat aan_block = carry_over(evaluate(aan, search_vector(a, x, 3), n), daan_dr);
  return hybrid::copy_blocks(qu_block, hybrid::aau_qu_aan_check_2, aan_block, &hybrid::aau_qu_aan_check_3, J, start);
}
FW_ADD_CONTEXT(site::aau_qu_aan, "")

int Camera_position_grad_func_aan_qu_aau::operator()(const std::vector<double>& x, cv::Mat& J, int start) const try {
  if (points->size() == 0) return 0;
  const int n = aan(x, J, start);
  const std::vector<double> a = rotation_entries(x, 4);
  const cv::Mat_<double> dqu_da = fw::angle_axis_to_quaternion_jacobian(a);
  const cv::Mat_<double> daau_da = fw::angle_axis_to_rot_vec_jacobian(a);
  const auto q = fw::rot_mat_to_quaternion<double>(fw::ang_axis_rad_to_rot_mat(a));
  const auto r = fw::ang_axis_to_rot_vec(a);

  const cv::Mat qu_block = carry_over(evaluate(qu, search_vector(q, x, 4), n), dqu_da);
  const cv::Mat aau_block = carry_over(evaluate(aau, search_vector(r, x, 4), n), daau_da);
  return hybrid::copy_blocks(qu_block, hybrid::aan_qu_aau_check_2, aau_block, &hybrid::aan_qu_aau_check_3, J, start);
}
FW_ADD_CONTEXT(site::aan_qu_aau, "")
