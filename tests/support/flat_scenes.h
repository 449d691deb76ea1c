// SPDX-License-Identifier: BSD-3-Clause
// Flat targets, which may be tilted one way or the other.
#pragma once

#include <cmath>
#include <cstddef>

#include "pose_refinement/motion.h"
#include "support/refined_problems.h"

namespace support {

/// A flat target of n points with a side of 1 in the plane z = 0, seen from a distance that makes it so large in
/// pixels, tilted by an angle.
inline Refined_problem flat_scene(Random& random, std::size_t n, double distance, double tilt, double noise,
                                  bool sees_directions = false) {
  Refined_problem problem;
  problem.camera = sees_directions ? kelvane::direction_camera() : kelvane::pixel_camera(800, 320, 240);
  const double about = random.uniform(0.0, 6.28);
  const kelvane::Pose turn = pose_at({tilt * std::cos(about), tilt * std::sin(about), 0.0}, {0, 0, 0});
  kelvane::Pose truth = turn;
  for (int i = 0; i < 3; ++i) truth.centre[i] = -distance * turn.rotation[i][2];
  for (std::size_t i = 0; i < n; ++i) {
    const double X[] = {random.uniform(-0.5, 0.5), random.uniform(-0.5, 0.5), 0.0};
    problem.points.insert(problem.points.end(), X, X + 3);
    for (const double coordinate : seen(problem.camera, truth, X)) {
      problem.observations.push_back(coordinate + noise * normal(random));
    }
  }
  for (std::size_t i = 0; sees_directions && i < problem.observations.size(); i += 3) {
    double* e = &problem.observations[i];
    const double length = std::hypot(e[0], e[1], e[2]);
    for (int k = 0; k < 3; ++k) e[k] /= length;
  }
  const double w[] = {0.05 * random.uniform(-1, 1), 0.05 * random.uniform(-1, 1), 0.05 * random.uniform(-1, 1)};
  const double v[] = {0.02, -0.01, 0.03 * distance};
  const double twist[] = {v[0], v[1], v[2], w[0], w[1], w[2]};
  problem.start = moved_by(truth, twist);
  return problem;
}

/// Reflected at the plane z = 0, with p turned into -p: the same pixels of points that lie behind the camera.
inline kelvane::Pose behind_target(kelvane::Pose pose) {
  pose.centre[2] = -pose.centre[2];
  for (int i = 0; i < 6; ++i) (&pose.rotation[0][0])[i] *= -1.0;
  return pose;
}

}  // namespace support
