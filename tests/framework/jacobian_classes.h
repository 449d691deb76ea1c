// SPDX-License-Identifier: BSD-3-Clause
// The four Jacobian classes, each with its independent model, and random scenes to run them on.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_opt_func.h"
#include "support/camera_model.h"
#include "support/cases.h"

namespace jacobian_classes {

using support::Regime, support::Random, support::Matrix3;

constexpr double zero_replacement = 1e-9;

inline std::vector<double> without_zero_vector(std::vector<double> x) {
  if (x[0] == 0.0 && x[1] == 0.0 && x[2] == 0.0) x[0] = x[1] = x[2] = zero_replacement;
  return x;
}

struct Aau {
  using Class = Camera_position_grad_func_aau;
  static constexpr std::size_t n_r = 3;
  static constexpr std::size_t num_free = 0;  // leading entries whose common scale is free
  static constexpr int type = 0;
  static std::vector<double> rotation(const std::vector<double>& a) { return support::rotation_vector_from(a); }
  static std::vector<double> guarded(const std::vector<double>& x) { return without_zero_vector(x); }
  template <typename T>
  static Matrix3<T> matrix(const std::array<T, 3>& r) {
    return support::rotation_of_vector(r);
  }
};

struct Aan {
  using Class = Camera_position_grad_func_aan;
  static constexpr std::size_t n_r = 4;
  static constexpr std::size_t num_free = 3;
  static constexpr int type = 1;
  static std::vector<double> rotation(const std::vector<double>& a) { return a; }
  static std::vector<double> guarded(const std::vector<double>& x) { return x; }
  template <typename T>
  static Matrix3<T> matrix(const std::array<T, 4>& a) {
    return support::rotation_of_angle_axis(a);
  }
};

struct Qu {
  using Class = Camera_position_grad_func_qu;
  static constexpr std::size_t n_r = 4;
  static constexpr std::size_t num_free = 4;
  static constexpr int type = 2;
  static std::vector<double> rotation(const std::vector<double>& a) { return support::quaternion_from(a); }
  static std::vector<double> guarded(const std::vector<double>& x) { return without_zero_vector(x); }
  template <typename T>
  static Matrix3<T> matrix(const std::array<T, 4>& q) {
    return support::rotation_of_quaternion(q);
  }
};

struct Qn : Qu {
  using Class = Camera_position_grad_func_qn;
  static constexpr std::size_t num_free = 0;
  static constexpr int type = 3;
  static std::vector<double> guarded(const std::vector<double>& x) { return x; }
  template <typename T>
  static Matrix3<T> matrix(const std::array<T, 4>& q) {
    return support::matrix_of_unit_quaternion(q);
  }
};

using All = testing::Types<Aau, Aan, Qu, Qn>;
using Exact = testing::Types<Aau, Aan, Qu>;  // derivatives of the prediction of their type
using Redundant = testing::Types<Aan, Qu>;   // with a length that the prediction does not depend on

struct Names {
  template <typename Model>
  static std::string GetName(int /*index*/) {
    return Model::type == 0 ? "Aau" : Model::type == 1 ? "Aan" : Model::type == 2 ? "Qu" : "Qn";
  }
};

template <typename Model>
constexpr std::size_t num_columns = Model::n_r + 3;

struct Scene {
  std::vector<double> x;
  support::Intrinsics intrinsics;
  std::vector<std::vector<double>> points;

  fw::matrix<double> K() const {
    fw::matrix<double> result(3, 3);
    result[0][0] = result[1][1] = intrinsics.f;
    result[0][2] = intrinsics.cx;
    result[1][2] = intrinsics.cy;
    result[2][2] = 1.0;
    return result;
  }
};

/// The first n entries of x, as the array that the models take.
template <std::size_t n>
std::array<double, n> leading(const std::vector<double>& x) {
  std::array<double, n> result;
  std::copy_n(x.begin(), n, result.begin());
  return result;
}

/// Three points in view of a camera with these rotation entries.
template <typename Model>
Scene scene_with_rotation(const std::vector<double>& rotation, Random& random) {
  Scene scene{rotation, support::random_intrinsics(random), {}};
  const std::vector<double> t = random.vector_in_cube(3, 2.0);
  scene.x.insert(scene.x.end(), t.begin(), t.end());
  const auto R = Model::matrix(leading<Model::n_r>(Model::guarded(scene.x)));
  for (int i = 0; i < 3; ++i) scene.points.push_back(random_point(random, t, {R[0][2], R[1][2], R[2][2]}));
  return scene;
}

/// A scene in the case's regime, the rotation entries of redundant representations between half and twice unit length.
template <typename Model>
Scene random_scene(support::Case& which) {
  const std::vector<double> unit = Model::rotation(support::random_angle_axis(which.regime, which.random));
  const std::size_t num_scaled = Model::type == 0 ? 0 : Model::type == 1 ? 3 : 4;
  return scene_with_rotation<Model>(support::scaled(unit, num_scaled, which.random.uniform(0.5, 2.0)), which.random);
}

template <typename Model>
typename Model::Class jacobian_of(const Scene& scene) {
  return typename Model::Class(scene.points, scene.K(), nullptr);
}

/// What the class writes, in a matrix that held NaN before.
template <typename Model>
cv::Mat closed_form(const Scene& scene) {
  const int rows = 2 * static_cast<int>(scene.points.size());
  cv::Mat J(rows, static_cast<int>(num_columns<Model>), CV_64F, cv::Scalar(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(jacobian_of<Model>(scene)(scene.x, J, 0), rows);
  return J;
}

/// The same from dual numbers: du/dx, then dv/dx of one point.
template <typename Model>
std::vector<double> dual_rows(const Scene& scene, const std::vector<double>& X) {
  constexpr std::size_t n = num_columns<Model>;
  using Number = support::Dual<n>;
  const auto x = support::variables<n>(Model::guarded(scene.x));
  std::array<Number, Model::n_r> rotation;
  std::copy_n(x.begin(), Model::n_r, rotation.begin());
  const support::Vector3<Number> t = {x[Model::n_r], x[Model::n_r + 1], x[Model::n_r + 2]};
  const auto p = support::camera_frame_point(Model::template matrix<Number>(rotation), t, X);
  std::vector<double> rows;
  for (const Number& coordinate : support::pixel(scene.intrinsics.f, scene.intrinsics.cx, scene.intrinsics.cy, p)) {
    rows.insert(rows.end(), coordinate.derivatives.begin(), coordinate.derivatives.end());
  }
  return rows;
}

/// The two rows of point i, one after the other.
inline std::vector<double> rows_of_point(const cv::Mat& J, std::size_t i) {
  const double* first = J.ptr<double>(2 * static_cast<int>(i));
  return {first, first + 2 * J.cols};
}

}  // namespace jacobian_classes
