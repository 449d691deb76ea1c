// SPDX-License-Identifier: BSD-3-Clause
// Scenes that are seen through a lens.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "support/reference_lens.h"
#include "support/refined_problems.h"

namespace support {

/// A point in the frame of a camera.
inline std::array<double, 3> in_camera(const kelvane::Pose& pose, const double* X) {
  std::array<double, 3> p{};
  for (std::size_t j = 0; j < 3; ++j) {
    for (std::size_t i = 0; i < 3; ++i) p[j] += pose.rotation[i][j] * (X[i] - pose.centre[i]);
  }
  return p;
}

/// Points that the lens sees at the pose of the scene and at its start, as far off the axis as it does.
inline Refined_problem scene_through(const kelvane::Lens& lens, Random& random, std::size_t n, double noise,
                                     double part = 0.6) {
  Refined_problem problem;
  problem.camera = lens_camera(lens);
  problem.start = pose_at({0.33, -0.47, 0.19}, {0.2, -0.25, -3.9});
  const kelvane::Pose& truth = pose_of_scene;
  while (problem.points.size() < 3 * n) {
    const auto direction = seen_direction(lens, random, part);
    const double distance = random.uniform(3.0, 6.0);
    double X[3];
    for (int i = 0; i < 3; ++i) {
      X[i] = truth.centre[i];
      for (std::size_t j = 0; j < 3; ++j) X[i] += truth.rotation[i][j] * distance * direction[j];
    }
    double at_start[2];
    project(lens, in_camera(problem.start, X).data(), at_start);
    double pixel[2];
    project(lens, direction.data(), pixel);
    if (!std::isfinite(at_start[0]) || std::hypot(pixel[0], pixel[1]) > 1e4) continue;
    problem.points.insert(problem.points.end(), X, X + 3);
    for (const double coordinate : pixel) problem.observations.push_back(coordinate + noise * normal(random));
  }
  return problem;
}

/// The largest difference of an element of the rotations and centres.
inline double distance_of(const kelvane::Pose& a, const kelvane::Pose& b) {
  double most = 0.0;
  for (int i = 0; i < 3; ++i) {
    most = std::max(most, std::abs(a.centre[i] - b.centre[i]));
    for (int j = 0; j < 3; ++j) most = std::max(most, std::abs(a.rotation[i][j] - b.rotation[i][j]));
  }
  return most;
}

}  // namespace support
