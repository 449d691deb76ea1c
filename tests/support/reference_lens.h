// SPDX-License-Identifier: BSD-3-Clause
// Every camera model as its source writes it down, one by one, in numbers of any kind; and random cameras.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "cameras/lens.h"
#include "support/cases.h"
#include "support/dual_functions.h"

namespace support {

template <typename T>
using Pair = std::array<T, 2>;

/// OpenCV's documentation of calib3d: k1 k2 p1 p2 k3 k4 k5 k6 s1 s2 s3 s4 tau_x tau_y.
template <typename T>
Pair<T> distorted_by_opencv(const T& a, const T& b, std::vector<double> k) {
  k.resize(14);
  const T r2 = a * a + b * b;
  const T r4 = r2 * r2;
  const T r6 = r4 * r2;
  const T radial = (T(1.0) + k[0] * r2 + k[1] * r4 + k[4] * r6) / (T(1.0) + k[5] * r2 + k[6] * r4 + k[7] * r6);
  const T x = a * radial + T(2.0 * k[2]) * a * b + k[3] * (r2 + T(2.0) * a * a) + k[8] * r2 + k[9] * r4;
  const T y = b * radial + k[2] * (r2 + T(2.0) * b * b) + T(2.0 * k[3]) * a * b + k[10] * r2 + k[11] * r4;
  const double R[3][3] = {{std::cos(k[13]), std::sin(k[13]) * std::sin(k[12]), -std::sin(k[13]) * std::cos(k[12])},
                          {0.0, std::cos(k[12]), std::sin(k[12])},
                          {std::sin(k[13]), -std::cos(k[13]) * std::sin(k[12]), std::cos(k[13]) * std::cos(k[12])}};
  const T turned[3] = {R[0][0] * x + R[0][1] * y + R[0][2], R[1][0] * x + R[1][1] * y + R[1][2],
                       R[2][0] * x + R[2][1] * y + R[2][2]};
  return {(R[2][2] * turned[0] - R[0][2] * turned[2]) / turned[2],
          (R[2][2] * turned[1] - R[1][2] * turned[2]) / turned[2]};
}

/// COLMAP's sensor/models.h: theta (1 + k1 theta^2 + ...) along the ray.
template <typename T>
Pair<T> distorted_by_fisheye(const T& x, const T& y, const T& z, const std::vector<double>& k) {
  using std::atan2, std::sqrt;
  const T r = sqrt(x * x + y * y);
  const T theta = atan2(r, z);
  const T t2 = theta * theta;
  T theta_d = theta;
  T power = theta;
  for (const double coefficient : k) {
    power = power * t2;
    theta_d = theta_d + coefficient * power;
  }
  return {theta_d * x / r, theta_d * y / r};
}

/// COLMAP's thin prism fisheye, whose k1 k2 p1 p2 k3 k4 s1 s3 count in the plane of the angles.
template <typename T>
Pair<T> distorted_by_thin_prism(const T& x, const T& y, const T& z, const double* k) {
  const auto [u, v] = distorted_by_fisheye(x, y, z, {});
  const T r2 = u * u + v * v;
  const T r4 = r2 * r2;
  const T radial = k[0] * r2 + k[1] * r4 + k[4] * r4 * r2 + k[5] * r4 * r4;
  return {u + u * radial + T(2.0 * k[2]) * u * v + k[3] * (r2 + T(2.0) * u * u) + k[6] * r2,
          v + v * radial + T(2.0 * k[3]) * u * v + k[2] * (r2 + T(2.0) * v * v) + k[7] * r2};
}

/// COLMAP's field of view, by Devernay and Faugeras 2001, for points in front.
template <typename T>
Pair<T> distorted_by_field_of_view(const T& a, const T& b, double omega) {
  using std::atan, std::sqrt;
  const T radius = sqrt(a * a + b * b);
  const T factor = atan(radius * T(2.0 * std::tan(omega / 2.0))) / (radius * T(omega));
  return {a * factor, b * factor};
}

/// The pixel of (x, y, z) in a camera by its name and parameters.
template <typename T>
Pair<T> pixel_by_definition(const std::string& name, const std::vector<double>& g, const T& x, const T& y, const T& z) {
  const T a = x / z;
  const T b = y / z;
  const auto rest = [&](std::size_t first) {
    return std::vector<double>(g.begin() + static_cast<std::ptrdiff_t>(first), g.end());
  };
  const auto with_one_length = [&](const Pair<T>& d) { return Pair<T>{g[0] * d[0] + g[1], g[0] * d[1] + g[2]}; };
  const auto with_two_lengths = [&](const Pair<T>& d) { return Pair<T>{g[0] * d[0] + g[2], g[1] * d[1] + g[3]}; };
  const auto with_skew = [&](const Pair<T>& d) {
    return Pair<T>{g[0] * d[0] + g[4] * d[1] + g[2], g[1] * d[1] + g[3]};
  };
  if (name == "SIMPLE_PINHOLE") return with_one_length({a, b});
  if (name == "PINHOLE") return with_two_lengths({a, b});
  if (name == "SIMPLE_RADIAL" || name == "RADIAL") return with_one_length(distorted_by_opencv(a, b, rest(3)));
  if (name == "OPENCV" || name == "FULL_OPENCV") return with_two_lengths(distorted_by_opencv(a, b, rest(4)));
  if (name == "OPENCV_FISHEYE") return with_two_lengths(distorted_by_fisheye(x, y, z, rest(4)));
  if (name == "SIMPLE_RADIAL_FISHEYE" || name == "RADIAL_FISHEYE") {
    return with_one_length(distorted_by_fisheye(x, y, z, rest(3)));
  }
  if (name == "FOV") return with_two_lengths(distorted_by_field_of_view(a, b, g[4]));
  if (name == "THIN_PRISM_FISHEYE") return with_two_lengths(distorted_by_thin_prism(x, y, z, &g[4]));
  if (name == "GENERAL_PERSPECTIVE") return with_skew(distorted_by_opencv(a, b, rest(5)));
  if (name == "GENERAL_FISHEYE") return with_skew(distorted_by_fisheye(x, y, z, rest(5)));
  if (name == "BAL") {  // grail.cs.washington.edu/projects/bal: p = -P / P.z, p' = f r(p) p
    const T r2 = a * a + b * b;
    const T factor = -(g[0] * (T(1.0) + g[1] * r2 + g[2] * r2 * r2));
    return {factor * a, factor * b};
  }
  throw std::logic_error("no definition of " + name);
}

/// Parameters as calibrations have them.
inline std::vector<double> random_parameters(const kelvane::Lens_model& model, Random& random) {
  using P = kelvane::Lens_parameter;
  const bool is_fisheye = model.plane == kelvane::Lens_plane::fisheye;
  std::vector<double> values;
  for (std::size_t i = 0; i < model.num_parameters(); ++i) {
    switch (model.parameters[i]) {
      case P::f:
      case P::fx:
      case P::fy:
        values.push_back(random.uniform(300, 2000));
        break;
      case P::cx:
      case P::cy:
        values.push_back(random.uniform(200, 1000));
        break;
      case P::skew:
        values.push_back(random.uniform(-20, 20));
        break;
      case P::k1:
        values.push_back(is_fisheye ? random.uniform(-0.06, 0.06) : random.uniform(-0.3, 0.3));
        break;
      case P::k2:
      case P::k4:
        values.push_back(is_fisheye ? random.uniform(-0.01, 0.01) : random.uniform(-0.1, 0.1));
        break;
      case P::k3:
      case P::k5:
        values.push_back(is_fisheye ? random.uniform(-2e-3, 2e-3) : random.uniform(-0.02, 0.05));
        break;
      case P::k4_of_fisheye:
        values.push_back(random.uniform(-3e-4, 3e-4));
        break;
      case P::k6:
        values.push_back(random.uniform(-5e-3, 1e-2));
        break;
      case P::tau_x:
      case P::tau_y:
        values.push_back(random.uniform(-0.15, 0.15));
        break;
      case P::omega:
        values.push_back(random.uniform(0.1, 1.9));
        break;
      default:  // tangential, prism
        values.push_back(random.uniform(-3e-3, 3e-3));
    }
  }
  return values;
}

/// A direction that the lens has an image of, evenly over the angles up to a part of its field of view; 80 degrees at
/// most where the plane is that of a perspective.
inline std::array<double, 3> seen_direction(const kelvane::Lens& lens, Random& random, double part) {
  const double most = lens.is_angular ? kelvane::largest_angle(lens) : std::min(1.4, kelvane::largest_angle(lens));
  const double angle = part * most * std::sqrt(random.uniform(0.0, 1.0));
  const double turn = random.uniform(-3.2, 3.2);
  return {std::sin(angle) * std::cos(turn), std::sin(angle) * std::sin(turn), lens.forward * std::cos(angle)};
}

/// Without its underscores, which GoogleTest has for itself.
inline std::string name_of_model(const testing::TestParamInfo<kelvane::Lens_model>& info) {
  std::string name = info.param.name;
  name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
  return name;
}

}  // namespace support
