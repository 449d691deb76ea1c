// SPDX-License-Identifier: BSD-3-Clause
// The three hybrid Jacobian classes: the single classes behind their blocks, their conversions and their reports.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "framework/camera_position_grad_func_hybrid.h"
#include "framework/jacobian_classes.h"
#include "fw_tools/rotation.h"
#include "fw_tools/rotation_jacobians.h"

namespace hybrid_classes {

using jacobian_classes::Aan, jacobian_classes::Aau, jacobian_classes::Qu, jacobian_classes::Scene;
using Vector = std::vector<double>;

/// Type -1. The conversions go by way of the rotation matrix, while the Jacobians take q as it is.
struct Qu_aau_aan {
  using Class = Camera_position_grad_func_qu_aau_aan;
  using Primary = Qu;
  using Second = Aau;
  using Third = Aan;
  static constexpr int type = -1;
  static constexpr const char* name = "Camera_position_grad_func_qu_aau_aan";
  static constexpr int line = 1457;
  static constexpr int block_2_line = 1451;
  static constexpr const char* block_2_label = "aau";
  static Vector second(Vector q) { return fw::rot_mat_to_rot_vec_rad(fw::quaternion_to_rot_mat(q)); }
  static Vector third(Vector q) { return fw::rot_mat_to_ang_axis_rad(fw::quaternion_to_rot_mat(q)); }
  static cv::Mat second_by_primary(const Vector& q) { return fw::quaternion_to_rot_vec_jacobian(q); }
  static cv::Mat third_by_primary(const Vector& q) { return fw::quaternion_to_angle_axis_jacobian(q); }
};

/// Type -2.
struct Aau_qu_aan {
  using Class = Camera_position_grad_func_aau_qu_aan;
  using Primary = Aau;
  using Second = Qu;
  using Third = Aan;
  static constexpr int type = -2;
  static constexpr const char* name = "Camera_position_grad_func_aau_qu_aan";
  static constexpr int line = 1549;
  static constexpr int block_2_line = 1543;
  static constexpr const char* block_2_label = "quat";
  static Vector second(const Vector& r) { return fw::rot_mat_to_quaternion<double>(fw::rot_vec_rad_to_rot_mat(r)); }
  static Vector third(const Vector& r) { return fw::rot_vec_to_ang_axis(r); }
  static cv::Mat second_by_primary(const Vector& r) { return fw::rot_vec_to_quaternion_jacobian(r); }
  static cv::Mat third_by_primary(const Vector& r) { return fw::rot_vec_to_angle_axis_jacobian(r); }
};

/// Type -3.
struct Aan_qu_aau {
  using Class = Camera_position_grad_func_aan_qu_aau;
  using Primary = Aan;
  using Second = Qu;
  using Third = Aau;
  static constexpr int type = -3;
  static constexpr const char* name = "Camera_position_grad_func_aan_qu_aau";
  static constexpr int line = 1641;
  static constexpr int block_2_line = 1635;
  static constexpr const char* block_2_label = "aau";  // although the block is that of the quaternion
  static Vector second(const Vector& a) { return fw::rot_mat_to_quaternion<double>(fw::ang_axis_rad_to_rot_mat(a)); }
  static Vector third(const Vector& a) { return fw::ang_axis_to_rot_vec(a); }
  static cv::Mat second_by_primary(const Vector& a) { return fw::angle_axis_to_quaternion_jacobian(a); }
  static cv::Mat third_by_primary(const Vector& a) { return fw::angle_axis_to_rot_vec_jacobian(a); }
};

using All = testing::Types<Qu_aau_aan, Aau_qu_aan, Aan_qu_aau>;

struct Names {
  template <typename Hybrid>
  static std::string GetName(int /*index*/) {
    return Hybrid::type == -1 ? "QuAauAan" : Hybrid::type == -2 ? "AauQuAan" : "AanQuAau";
  }
};

template <typename Hybrid>
constexpr int num_rotation = static_cast<int>(Hybrid::Primary::n_r);
template <typename Hybrid>
constexpr int num_columns = num_rotation<Hybrid> + 3;

inline int num_block_rows(const Scene& scene) { return 2 * static_cast<int>(scene.points.size()); }

/// `num_points` points in view of a camera with these rotation entries.
template <typename Hybrid>
Scene scene_with_rotation(const Vector& rotation, support::Random& random, std::size_t num_points = 3) {
  using Primary = typename Hybrid::Primary;
  Scene scene = jacobian_classes::scene_with_rotation<Primary>(rotation, random);
  const auto R = Primary::matrix(jacobian_classes::leading<Primary::n_r>(Primary::guarded(scene.x)));
  const Vector t(scene.x.begin() + num_rotation<Hybrid>, scene.x.end());
  scene.points.clear();
  while (scene.points.size() < num_points) {
    scene.points.push_back(support::random_point(random, t, {R[0][2], R[1][2], R[2][2]}));
  }
  return scene;
}

inline Vector rotation_of(const Scene& scene) { return {scene.x.begin(), scene.x.end() - 3}; }

/// What the class writes, in a matrix that held NaN before.
template <typename Hybrid>
cv::Mat jacobian(const Scene& scene) {
  const int rows = 3 * num_block_rows(scene);
  cv::Mat J(rows, num_columns<Hybrid>, CV_64F, cv::Scalar(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(typename Hybrid::Class(scene.points, scene.K(), nullptr)(scene.x, J, 0), rows);
  return J;
}

/// Rows of block 1, 2 or 3.
inline cv::Mat block(const cv::Mat& J, int number) {
  const int n = J.rows / 3;
  return J.rowRange((number - 1) * n, number * n);
}

/// The Jacobian of a single class at its own rotation entries, at the scene's centre and points.
template <typename Model>
cv::Mat single_jacobian(const Scene& scene, const Vector& rotation) {
  Scene converted = scene;
  converted.x = rotation;
  converted.x.insert(converted.x.end(), scene.x.end() - 3, scene.x.end());
  return jacobian_classes::closed_form<Model>(converted);
}

inline bool is_finite(const cv::Mat& m) { return cv::checkRange(m); }

}  // namespace hybrid_classes
