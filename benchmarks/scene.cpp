// SPDX-License-Identifier: BSD-3-Clause
// Draws scenes, and judges poses.
#include "benchmarks/scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <opencv2/core.hpp>
#include <random>

namespace bench {
namespace {

using Generator = std::mt19937_64;
using Ray = std::array<double, 3>;

constexpr double near = 4;
constexpr double far = 8;
constexpr double distance = (near + far) / 2;
constexpr double turn = 2 * 3.14159265358979323846;
constexpr double most_tilted = turn / 8;  // the picture's corners are 34 degrees off the axis

double uniform(Generator& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

kelvane::Pose random_pose(Generator& random) {
  std::normal_distribution<double> normal;
  kelvane::Quaternion_pose pose;
  for (double& entry : pose.q) entry = normal(random);
  for (double& entry : pose.s) entry = 5 * normal(random);
  return pose_of(pose, kelvane::Pose_frame::world_from_camera);
}

Ray random_normal(Generator& random) {
  const double tilt = uniform(random, 0, most_tilted);
  const double azimuth = uniform(random, 0, turn);
  return {std::sin(tilt) * std::cos(azimuth), std::sin(tilt) * std::sin(azimuth), std::cos(tilt)};
}

/// Along a ray of unit depth.
double random_depth(Cell::Shape shape, const Ray& normal, const Ray& ray, Generator& random) {
  if (shape == Cell::volume) return uniform(random, near, far);
  const double height = shape == Cell::flat ? 0 : uniform(random, -0.025, 0.025);
  return distance * (normal[2] + height) / std::inner_product(ray.begin(), ray.end(), normal.begin(), 0.0);
}

/// Adds a vector of that length in any direction.
void move(std::array<double, 3>& values, double length, Generator& random) {
  std::normal_distribution<double> normal;
  const Ray v{normal(random), normal(random), normal(random)};
  for (std::size_t i = 0; i < 3; ++i) values[i] += length * v[i] / std::hypot(v[0], v[1], v[2]);
}

}  // namespace

Scene::Scene(const Cell& cell, unsigned number) : sigma(cell.sigma) {
  std::seed_seq seed{unsigned{cell.shape}, static_cast<unsigned>(std::lround(10 * sigma)), cell.num_points,
                     cell.percent_wrong, number};
  Generator random(seed);
  std::normal_distribution<double> noise(0, sigma);
  truth = random_pose(random);
  const Ray normal = random_normal(random);
  std::vector<bool> is_right(cell.num_points, false);
  std::fill_n(is_right.begin(), cell.num_right(), true);
  std::shuffle(is_right.begin(), is_right.end(), random);
  for (const bool right_one : is_right) {
    const double u = uniform(random, 0, 2 * cx);
    const double v = uniform(random, 0, 2 * cy);
    const Ray ray{(u - cx) / f, (v - cy) / f, 1};
    const double depth = random_depth(cell.shape, normal, ray, random);
    const double seen_u = right_one ? u + noise(random) : uniform(random, 0, 2 * cx);
    const double seen_v = right_one ? v + noise(random) : uniform(random, 0, 2 * cy);
    for (Matches* matches : {&all, &right}) {
      if (matches == &right && !right_one) continue;
      matches->pixels.insert(matches->pixels.end(), {seen_u, seen_v});
      for (int i = 0; i < 3; ++i) {
        matches->points.push_back(truth.centre[i] +
                                  depth * std::inner_product(ray.begin(), ray.end(), truth.rotation[i], 0.0));
      }
    }
  }
  auto moved = rotation_vector_of(truth, kelvane::Pose_frame::world_from_camera);
  move(moved.r, turn / 360, random);
  move(moved.s, 0.01 * distance, random);
  start = pose_of(moved, kelvane::Pose_frame::world_from_camera);
}

kelvane::Refine_result Scene::refined_truth(int max_iterations) const {
  kelvane::Refine_options options;
  options.noise_sigma = sigma;
  options.max_iterations = max_iterations;
  return refine({truth, right.points, right.pixels, camera()}, options);
}

double squared_distance(const Scene& scene, const kelvane::Pose& pose) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if (scene.right.points.size() < 9) return infinity;
  const kelvane::Refine_result at_truth = scene.refined_truth(0);
  const cv::Matx66d covariance(&at_truth.covariance[0][0]);
  kelvane::Pose turned;  // by what is between the two rotations
  const cv::Matx33d between = cv::Matx33d(&scene.truth.rotation[0][0]).t() * cv::Matx33d(&pose.rotation[0][0]);
  std::copy_n(between.val, 9, &turned.rotation[0][0]);
  const auto angles = rotation_vector_of(turned, kelvane::Pose_frame::world_from_camera).r;
  cv::Matx<double, 6, 1> error;
  for (int i = 0; i < 3; ++i) {
    error(i) = angles[static_cast<std::size_t>(i)];
    error(i + 3) = pose.centre[i] - scene.truth.centre[i];
  }
  const double squared = error.dot(covariance.solve(error, cv::DECOMP_CHOLESKY));
  return std::isfinite(covariance(0, 0)) && std::isfinite(squared) ? squared : infinity;
}

}  // namespace bench
