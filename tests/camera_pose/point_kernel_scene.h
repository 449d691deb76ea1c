// SPDX-License-Identifier: BSD-3-Clause
// A camera with points before it, and what a kernel over points makes of them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "camera_pose/point_kernels.h"
#include "least_squares/aligned_buffer.h"
#include "support/bits.h"
#include "support/camera_model.h"
#include "support/cases.h"

namespace point_kernels {

using kelvane::Instruction_set;
using support::Random;

inline constexpr std::uint64_t seed = 60611;
inline constexpr std::size_t max_points = 24;
inline constexpr std::size_t stride = 3 * max_points + 8;
inline constexpr double untouched = -1.5;

/// A camera somewhere, and points 2 to 4 units in front of it. The points lie behind each other, filled up to a group.
struct Scene {
  kelvane::Camera camera{};
  kelvane::Projection projection{};
  kelvane::Moved_cameras cameras{};
  support::Matrix3<double> R;
  std::size_t num_points;
  std::vector<double> points;

  Scene(std::size_t count, std::size_t n_r, Random& random) : Scene(count, n_r, random, random_rotation(random)) {}

  static support::Matrix3<double> random_rotation(Random& random) {
    const std::vector<double> a = support::random_angle_axis(support::Regime::ordinary, random);
    return support::rotation_of_angle_axis<double>({a[0], a[1], a[2], a[3]});
  }

  Scene(std::size_t count, std::size_t n_r, Random& random, const support::Matrix3<double>& rotation)
      : R(rotation), num_points(count) {
    camera.K = {random.uniform(500, 900), random.uniform(200, 400), random.uniform(100, 300)};
    for (std::size_t i = 0; i < 3; ++i) {
      camera.t[i] = projection.t[i] = random.uniform(-1.0, 1.0);
      for (std::size_t j = 0; j < 3; ++j) camera.rotation[i][j] = R[j][i];
    }
    kelvane::Rotation_model model{n_r, true, {}, {}};
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) {
        model.R[i][j] = R[i][j];
        for (auto& dR : model.dR) dR[i][j] = random.uniform(-1.0, 1.0);  // of any parameters
      }
    }
    projection = kelvane::make_projection(camera.K, model, camera.t);
    cameras = {n_r + 3, camera, {}, {}};
    for (std::size_t j = 0; j < cameras.n; ++j) {
      cameras.moved[j] = camera;
      for (double& entry : cameras.moved[j].t) entry += random.uniform(-0.1, 0.1);
      for (auto& row : cameras.moved[j].rotation) row[j % 3] += random.uniform(-0.1, 0.1);
      cameras.inverse_step[j] = random.uniform(3.0, 100.0);
    }
    for (std::size_t k = 0; k < count; ++k) {
      const double p[] = {random.uniform(-1, 1), random.uniform(-1, 1), random.uniform(2, 4)};
      for (std::size_t i = 0; i < 3; ++i) {
        points.push_back(camera.t[i] + R[i][0] * p[0] + R[i][1] * p[1] + R[i][2] * p[2]);
      }
    }
    fill();
  }

  void fill() {
    points.resize(3 * num_points);
    while (points.size() % 24 != 0) points.push_back(points[points.size() - 3]);
  }

  /// K p as dual numbers in a twist (v, omega) of the camera frame.
  std::array<support::Dual<6>, 3> twisted(std::size_t k) const {
    using Dual = support::Dual<6>;
    std::array<double, 3> p{};
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t i = 0; i < 3; ++i) p[j] += R[i][j] * (points[3 * k + i] - camera.t[i]);
    }
    // exp(-[omega]) (p - v) to first order
    std::array<Dual, 3> d;
    for (std::size_t j = 0; j < 3; ++j) {
      d[j] = p[j];
      d[j].derivatives[j] = -1.0;
    }
    for (std::size_t j = 0; j < 3; ++j) {  // p x omega
      d[j].derivatives[3 + (j + 2) % 3] += p[(j + 1) % 3];
      d[j].derivatives[3 + (j + 1) % 3] -= p[(j + 2) % 3];
    }
    const auto [f, cx, cy] = camera.K;
    return {Dual(f) * d[0] + Dual(cx) * d[2], Dual(f) * d[1] + Dual(cy) * d[2], d[2]};
  }

  /// M (X - t) as dual numbers in the rotation parameters and t.
  std::array<support::Dual<7>, 3> moved(std::size_t k) const {
    std::array<support::Dual<7>, 3> result;
    for (std::size_t i = 0; i < 3; ++i) {
      result[i] = 0.0;
      for (std::size_t c = 0; c < 3; ++c) {
        const double d = points[3 * k + c] - projection.t[c];
        result[i].value += projection.M[i][c] * d;
        for (std::size_t j = 0; j < projection.n; ++j) result[i].derivatives[j] += projection.dM[j][i][c] * d;
        result[i].derivatives[projection.n + c] = -projection.M[i][c];
      }
    }
    return result;
  }
};

/// Columns of rows, or values in one column, as a kernel wrote them.
struct Output {
  static constexpr std::size_t size = 8 * stride;
  alignas(kelvane::cache_line) double memory[size];
  Output() { std::fill_n(memory, size, untouched); }
  double at(std::size_t column, std::size_t k, std::size_t output, std::size_t num_outputs) const {
    return memory[column * stride + (k / 8 * num_outputs + output) * 8 + k % 8];
  }
  bool operator==(const Output& other) const { return support::have_same_bits(memory, other.memory, size); }
};

enum class Kernel { twist, parameters, differences, prediction };

inline Output output_of(Instruction_set set, const Scene& scene, Kernel kernel, bool is_bearing) {
  const kelvane::Point_kernels& kernels = kelvane::point_kernels(set);
  Output output;
  double* const to = output.memory;
  if (kernel == Kernel::twist) {
    (is_bearing ? kernels.bearing_rows : kernels.pixel_rows)(scene.points.data(), scene.num_points, scene.camera, to,
                                                             stride);
  } else if (kernel == Kernel::parameters) {
    (is_bearing ? kernels.bearing_rows_by_parameters : kernels.pixel_rows_by_parameters)(
        scene.points.data(), scene.num_points, scene.projection, to, stride);
  } else if (kernel == Kernel::differences) {
    (is_bearing ? kernels.bearing_differences : kernels.pixel_differences)(scene.points.data(), scene.num_points,
                                                                           scene.cameras, to, stride);
  } else {
    (is_bearing ? kernels.predict_bearings : kernels.predict_pixels)(scene.points.data(), scene.num_points,
                                                                     scene.camera, to);
  }
  return output;
}

}  // namespace point_kernels
