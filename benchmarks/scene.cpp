// SPDX-License-Identifier: BSD-3-Clause
// Draws scenes, and measures how well a pose explains them.
#include "benchmarks/scene.h"

#include <cmath>
#include <random>

namespace bench {
namespace {

using Generator = std::mt19937;

double uniform(Generator& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

cv::Vec3d unit_vector(Generator& random) {
  std::normal_distribution<double> normal;
  const double x = normal(random);
  const double y = normal(random);
  return cv::normalize(cv::Vec3d(x, y, normal(random)));
}

cv::Vec3d camera_frame_point(const Pose& pose, const double* X) {
  return pose.R.t() * (cv::Vec3d(X[0], X[1], X[2]) - pose.t);
}

void append(const cv::Vec3d& v, std::vector<double>& values) { values.insert(values.end(), v.val, v.val + 3); }

void add_point(Scene& scene, const Pose& truth, double depth, Generator& random) {
  std::normal_distribution<double> noise(0, 0.5);
  const Intrinsics& K = scene.intrinsics;
  const double u = uniform(random, 0, 2 * K.cx);
  const double v = uniform(random, 0, 2 * K.cy);
  const cv::Vec3d p = depth * cv::Vec3d((u - K.cx) / K.f, (v - K.cy) / K.f, 1);
  append(truth.R * p + truth.t, scene.points);
  const double seen_u = u + noise(random);
  const double seen_v = v + noise(random);
  scene.pixels.insert(scene.pixels.end(), {seen_u, seen_v});
  append(cv::normalize(cv::Vec3d((seen_u - K.cx) / K.f, (seen_v - K.cy) / K.f, 1)), scene.bearings);
}

}  // namespace

Scene random_scene(int num_points, unsigned seed) {
  constexpr double degree = 3.14159265358979323846 / 180;
  constexpr double near = 4;
  constexpr double far = 8;
  Generator random(seed);
  const double angle = uniform(random, 0.3, 2);  // away from the special cases of every representation
  const Pose truth{rotation_matrix(angle * unit_vector(random)), 10 * unit_vector(random)};

  Scene scene;
  scene.num_points = num_points;
  for (int i = 0; i < num_points; ++i) add_point(scene, truth, uniform(random, near, far), random);
  scene.start.R = rotation_matrix(degree * unit_vector(random)) * truth.R;
  scene.start.t = truth.t + 0.01 * (near + far) / 2 * unit_vector(random);
  return scene;
}

double pixel_rms(const Scene& scene, const Pose& pose) {
  const Intrinsics& K = scene.intrinsics;
  double total = 0;
  for (std::size_t i = 0; i < scene.points.size() / 3; ++i) {
    const cv::Vec3d p = camera_frame_point(pose, &scene.points[3 * i]);
    const double du = K.f * p[0] / p[2] + K.cx - scene.pixels[2 * i];
    const double dv = K.f * p[1] / p[2] + K.cy - scene.pixels[2 * i + 1];
    total += du * du + dv * dv;
  }
  return std::sqrt(total / scene.num_points);
}

double equation_rms(const Scene& scene, int type, const std::vector<double>& x) {
  const Pose pose = pose_of(type, x);
  if (type != 10) return pixel_rms(scene, pose);
  const std::size_t num_points = scene.points.size() / 3;
  double total = 0;
  for (std::size_t row = 0; row < 3 * num_points; ++row) {
    const cv::Vec3d p = camera_frame_point(pose, &scene.points[row - row % 3]);
    const double target = row < 2 * num_points ? scene.bearings[3 * (row / 2) + row % 2] : 0;
    const double difference = p[static_cast<int>(row % 3)] - target;
    total += difference * difference;
  }
  return std::sqrt(total / scene.num_points);
}

}  // namespace bench
