// SPDX-License-Identifier: BSD-3-Clause
// Problems as refine() takes them: measured ones, and scenes whose pose is known.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "pose_refinement/refine.h"
#include "support/cases.h"
#include "support/csv.h"
#include "support/posedata.h"

namespace support {

/// A problem with its numbers.
struct Refined_problem {
  std::vector<double> points, observations, weights;
  kelvane::Pose start;
  kelvane::Camera_model camera;

  kelvane::Refine_problem view() const { return {start, points, observations, camera, weights}; }
  std::size_t d() const { return camera.sees_directions ? 3 : 2; }
};

/// A pose of a rotation vector and a centre.
inline kelvane::Pose pose_at(const std::array<double, 3>& r, const std::array<double, 3>& centre) {
  return kelvane::pose_of(kelvane::Rotation_vector_pose{r, centre}, kelvane::Pose_frame::world_from_camera);
}

/// What the camera sees of a point, worked out on its own.
inline std::vector<double> seen(const kelvane::Camera_model& camera, const kelvane::Pose& pose, const double* X) {
  double p[3] = {};
  for (std::size_t j = 0; j < 3; ++j) {
    for (std::size_t i = 0; i < 3; ++i) p[j] += pose.rotation[i][j] * (X[i] - pose.centre[i]);
  }
  const double length = std::hypot(p[0], p[1], p[2]);
  if (camera.sees_directions) return {p[0] / length, p[1] / length, p[2] / length};
  return {(camera.fx * p[0] + camera.skew * p[1]) / p[2] + camera.cx, camera.fy * p[1] / p[2] + camera.cy};
}

/// A camera for everything: unequal focal lengths and skew, or directions.
inline kelvane::Camera_model camera_of_scene(bool sees_directions) {
  return sees_directions ? kelvane::direction_camera()
                         : kelvane::pixel_camera({{800, 12, 320}, {0, 650, 240}, {0, 0, 1}});
}

inline const kelvane::Pose pose_of_scene = pose_at({0.3, -0.5, 0.2}, {0.1, -0.2, -4.0});

/// Standard normal, by the sum of two in a circle.
inline double normal(Random& random) {
  constexpr double least = 1e-300;
  return std::sqrt(-2.0 * std::log(random.uniform(least, 1.0))) * std::cos(random.uniform(0.0, 2.0 * pi));
}

/// n points in a cube (in front of the camera), or all round it where it sees directions, observed with noise, and a
/// start turned by a few degrees and moved.
inline Refined_problem random_scene(Random& random, std::size_t n, bool sees_directions, double noise) {
  Refined_problem problem;
  problem.camera = camera_of_scene(sees_directions);
  for (std::size_t i = 0; i < n; ++i) {
    const std::vector<double> X = random.vector_in_cube(3, sees_directions ? 6.0 : 1.0);
    problem.points.insert(problem.points.end(), X.begin(), X.end());
    for (const double coordinate : seen(problem.camera, pose_of_scene, X.data())) {
      problem.observations.push_back(coordinate + noise * normal(random));
    }
  }
  problem.start = pose_at({0.36, -0.45, 0.17}, {0.3, -0.3, -3.7});
  return problem;
}

/// A problem of a set that comes with the project, as pixels or as directions.
inline Refined_problem measured_problem(const std::string& set, int id, bool sees_directions) {
  const std::filesystem::path project = KELVANE_PROJECT_FOLDER;
  const std::filesystem::path folder = project / (set == "chessboard" ? "examples/data" : "tests/data") / set;
  Refined_problem problem;
  for (const auto& row : read_csv(folder / "problems.csv")) {
    if (static_cast<int>(row[0]) != id) continue;
    if (!sees_directions) problem.camera = kelvane::pixel_camera(row[2], row[3], row[4]);
    for (const auto& point : read_csv(folder / ("obs_0" + std::to_string(id) + ".csv"))) {
      problem.points.insert(problem.points.end(), point.begin(), point.begin() + 3);
      std::vector<double> observed(point.begin() + 3, point.end());
      if (sees_directions && observed.size() == 2) {
        observed = {(observed[0] - row[3]) / row[2], (observed[1] - row[4]) / row[2], 1.0};
      }
      problem.observations.insert(problem.observations.end(), observed.begin(), observed.end());
    }
  }
  for (const auto& row : read_csv(folder / "pose_start.csv")) {
    const Measured_pose pose(row);
    if (static_cast<int>(row[0]) == id) problem.start = pose_at(pose.rotation_vector, pose.centre);
  }
  return problem;
}

/// The rotation row by row, and the centre.
inline std::vector<double> numbers_of(const kelvane::Pose& pose) {
  std::vector<double> all(&pose.rotation[0][0], &pose.rotation[0][0] + 9);
  all.insert(all.end(), pose.centre, pose.centre + 3);
  return all;
}

/// The bits of all that a result holds but its message.
inline std::vector<double> numbers_of(const kelvane::Refine_result& result) {
  std::vector<double> all = {static_cast<double>(result.exit),
                             result.noise_sigma,
                             result.loss_scale,
                             result.before.robust,
                             result.before.plain,
                             result.before.inliers,
                             result.after.robust,
                             result.after.plain,
                             result.after.inliers,
                             static_cast<double>(result.num_left_out),
                             static_cast<double>(result.num_behind),
                             static_cast<double>(result.num_inliers)};
  const auto append = [&all](const kelvane::Pose& pose) {
    const std::vector<double> numbers = numbers_of(pose);
    all.insert(all.end(), numbers.begin(), numbers.end());
  };
  append(result.pose);
  all.insert(all.end(), &result.covariance[0][0], &result.covariance[0][0] + 36);
  all.insert(all.end(), result.residuals.begin(), result.residuals.end());
  all.insert(all.end(), result.is_inlier.begin(), result.is_inlier.end());
  for (const kelvane::Refine_step& step : result.history) {
    append(step.pose);
    all.insert(all.end(), {step.rms, step.turn, step.shift});
  }
  if (result.alternative) {
    append(result.alternative->pose);
    all.push_back(result.alternative->rms);
  }
  return all;
}

/// NaN is NaN, and 0 is not -0.
inline bool have_same_bits(const kelvane::Refine_result& a, const kelvane::Refine_result& b) {
  const std::vector<double> first = numbers_of(a);
  const std::vector<double> second = numbers_of(b);
  return first.size() == second.size() && a.message == b.message &&
         std::memcmp(first.data(), second.data(), first.size() * sizeof(double)) == 0;
}

}  // namespace support
