// SPDX-License-Identifier: BSD-3-Clause
// Calls that the module accepts, for every rotation type: what the tests here spoil.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "camera_pose/rotation_type.h"
#include "mex_host.h"
#include "trust/tested_call.h"

namespace trust {

inline constexpr std::array<int, 10> all_types{0, 1, 2, 3, 10, 11, 12, -1, -2, -3};

inline std::size_t num_equations(int type, std::size_t num_points) {
  const kelvane::Rotation_type& row = *kelvane::find_rotation_type(type);
  return num_points * static_cast<std::size_t>(row.observation_size * row.num_representations);
}

/// No solution is defined by fewer equations than unknowns.
inline bool is_determined(int type, std::size_t num_points) {
  return num_equations(type, num_points) >=
         static_cast<std::size_t>(kelvane::find_rotation_type(type)->num_dimensions());
}

/// An angle of half a radian about an axis that has no zero in it, in the representation of `type`.
inline std::vector<double> rotation_of_type(int type) {
  switch (kelvane::find_rotation_type(type)->representation) {
    case kelvane::Representation::rotation_vector:
      return {0.1, -0.3, 0.4};
    case kelvane::Representation::angle_axis:
      return {0.2, -0.6, 0.75, 0.5};
    case kelvane::Representation::quaternion:
      break;
  }
  return {0.05, -0.15, 0.19, 0.96};
}

inline std::vector<double> camera_of_type(int type) {
  std::vector<double> camera = rotation_of_type(type);
  camera.insert(camera.end(), {0.1, -0.2, -8.0});
  const bool is_bearing = kelvane::find_rotation_type(type)->is_bearing();
  camera.insert(camera.end(), {is_bearing ? 1.0 : 500.0, is_bearing ? 0.0 : 320.0, is_bearing ? 0.0 : 240.0});
  return camera;
}

/// All six inputs, with points that lie nowhere on a line or plane together, and observations near their pictures.
inline std::vector<mxArray> good_inputs(int type, std::size_t num_points, bool is_analytic = true) {
  std::vector<double> points;
  std::vector<double> observations;
  const bool is_bearing = kelvane::find_rotation_type(type)->is_bearing();
  for (std::size_t i = 0; i < num_points; ++i) {
    const auto k = static_cast<double>(i % 97);
    const double X = (i % 2 == 0 ? -1.0 : 1.0) + 0.013 * k;
    const double Y = (i % 4 < 2 ? -0.7 : 0.9) - 0.007 * k;
    const double Z = static_cast<double>(i % 3) - 0.005 * k;
    points.insert(points.end(), {X, Y, Z});
    if (is_bearing) {
      observations.insert(observations.end(), {X, Y, Z + 8.0});
    } else {
      observations.insert(observations.end(), {500.0 * X / (Z + 8.0) + 320.0, 500.0 * Y / (Z + 8.0) + 240.0});
    }
  }
  return {mex_host::row(camera_of_type(type)),
          mex_host::real_matrix(3, num_points, points),
          mex_host::real_matrix(is_bearing ? 3 : 2, num_points, observations),
          mex_host::row({10, 0, -10000, is_analytic ? 0.0 : 1.0}),
          mex_host::scalar(type),
          mex_host::row(std::vector<double>(num_equations(type, num_points), 1.0))};
}

}  // namespace trust
