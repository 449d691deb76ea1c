// SPDX-License-Identifier: BSD-3-Clause
// Scenes whose pose is known, with observations that are wrong.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "pose_estimation/estimate.h"
#include "support/refined_problems.h"

namespace support {

enum class Shape { volume, shallow, flat };

/// A problem of pose_of_scene with what is right in it: the last observations are wrong.
struct Estimated_scene {
  std::vector<double> points, observations;
  kelvane::Camera_model camera;
  std::size_t num_right = 0;

  kelvane::Estimate_problem view() const { return {points, observations, camera}; }
  std::size_t size() const { return points.size() / 3; }
  std::size_t d() const { return camera.sees_directions ? 3 : 2; }
  void add(const std::vector<double>& X, const std::vector<double>& seen) {
    points.insert(points.end(), X.begin(), X.end());
    observations.insert(observations.end(), seen.begin(), seen.end());
  }
};

/// Through the lens, if there is one; NaN where there is no image.
inline std::vector<double> seen_through(const kelvane::Camera_model& camera, const kelvane::Pose& pose,
                                        const double* X) {
  if (!camera.lens) return seen(camera, pose, X);
  double p[3] = {};
  for (std::size_t j = 0; j < 3; ++j) {
    for (std::size_t i = 0; i < 3; ++i) p[j] += pose.rotation[i][j] * (X[i] - pose.centre[i]);
  }
  std::vector<double> pixel(2);
  project(*camera.lens, p, pixel.data());
  return pixel;
}

/// BAL's camera looks down -z.
inline kelvane::Pose pose_seen_by(const kelvane::Camera_model& camera) {
  kelvane::Pose pose = pose_of_scene;
  if (!camera.lens || camera.lens->forward > 0.0) return pose;
  for (auto& row : pose.rotation) row[1] = -row[1], row[2] = -row[2];
  return pose;
}

inline std::vector<double> random_point(Random& random, Shape shape, bool is_all_round) {
  std::vector<double> X = random.vector_in_cube(3, is_all_round ? 6.0 : 1.0);
  X[2] *= shape == Shape::flat ? 0.0 : shape == Shape::shallow ? 0.1 : 1.0;
  return X;
}

/// n points, the part num_wrong / n of them with an observation of another place.
inline Estimated_scene random_scene(Random& random, const kelvane::Camera_model& camera, Shape shape, std::size_t n,
                                    std::size_t num_wrong, double noise) {
  Estimated_scene scene;
  scene.camera = camera;
  scene.num_right = n - num_wrong;
  const kelvane::Pose pose = pose_seen_by(camera);
  while (scene.size() < n) {
    const auto X = random_point(random, shape, camera.sees_directions);
    const auto other = random_point(random, Shape::volume, camera.sees_directions);
    auto observed = seen_through(camera, pose, scene.size() < scene.num_right ? X.data() : other.data());
    for (double& coordinate : observed) coordinate += noise * normal(random);
    if (std::isfinite(observed[0])) scene.add(X, observed);
  }
  return scene;
}

/// The squared Mahalanobis distance of the truth from what was found, by the covariance that is told.
inline double squared_distance(const kelvane::Refine_result& result, const kelvane::Pose& truth) {
  double e[6], C[6][6];
  std::memcpy(C, result.covariance, sizeof C);
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3, k = (i + 2) % 3;
    e[i] = e[3 + i] = 0.0;
    for (const int sign : {1, -1}) {
      const int a = sign > 0 ? k : j, b = sign > 0 ? j : k;
      for (int m = 0; m < 3; ++m) e[i] += 0.5 * sign * result.pose.rotation[m][a] * truth.rotation[m][b];
    }
    e[3 + i] = truth.centre[i] - result.pose.centre[i];
  }
  double sum = 0.0;  // of e' C^-1 e, by elimination
  for (int c = 0; c < 6; ++c) {
    if (!(C[c][c] > 0.0)) return std::numeric_limits<double>::infinity();
    sum += e[c] * e[c] / C[c][c];
    for (int r = c + 1; r < 6; ++r) {
      const double factor = C[r][c] / C[c][c];
      for (int k = c; k < 6; ++k) C[r][k] -= factor * C[c][k];
      e[r] -= factor * e[c];
    }
  }
  return sum;
}

/// Six degrees of freedom, 99.9 %, by the noise that there is: of few observations it is told too large or too small.
inline bool is_right(const kelvane::Refine_result& result, const kelvane::Pose& truth, double noise) {
  const double ratio = result.noise_sigma / noise;
  return squared_distance(result, truth) * ratio * ratio < 22.5;
}

}  // namespace support
