// SPDX-License-Identifier: BSD-3-Clause
// robust_refinement: prints how long a refinement with Huber's loss takes until the pose is still, next to Ceres with
// its HuberLoss and TinySolver reweighted by hand, and what a second thread does for many.
#include <ceres/ceres.h>
#include <ceres/tiny_solver.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/markdown.h"
#include "benchmarks/peers/pixel_residuals.h"
#include "benchmarks/timing.h"
#include "pose_refinement/refine.h"

namespace {

using namespace bench;

constexpr double scale = 1.0;  // pixels, of the loss: twice the noise
constexpr double step_tolerance = 1e-9;

/// Every tenth pixel is somewhere else.
Scene scene_with_outliers(int num_points, unsigned seed) {
  Scene scene = random_scene(num_points, seed);
  for (std::size_t i = 0; i < scene.pixels.size(); i += 20) {
    scene.pixels[i] = std::fmod(scene.pixels[i] * 7.3 + 100.0, 640.0);
  }
  return scene;
}

using Parameters = std::array<double, 6>;  // rotation vector and translation, world to camera

Parameters start_of(const Scene& scene) {
  const World_to_camera start = world_to_camera(scene.start);
  Parameters x;
  std::copy_n(start.rotation.val, 3, x.begin());
  std::copy_n(start.translation.val, 3, x.begin() + 3);
  return x;
}

kelvane::Refine_problem problem_of(const Scene& scene) {
  kelvane::Refine_problem problem;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) problem.start.rotation[i][j] = scene.start.R(i, j);
    problem.start.centre[i] = scene.start.t[i];
  }
  problem.points = scene.points;
  problem.observations = scene.pixels;
  problem.camera = kelvane::pixel_camera(scene.intrinsics.f, scene.intrinsics.cx, scene.intrinsics.cy);
  return problem;
}

kelvane::Refine_options huber() {
  kelvane::Refine_options options;
  options.loss = kelvane::Loss::huber;
  options.loss_scale = scale;
  options.step_tolerance = step_tolerance;
  return options;
}

Parameters by_kelvane(const Scene& scene) {
  const auto found =
      rotation_vector_of(refine(problem_of(scene), huber()).pose, kelvane::Pose_frame::camera_from_world);
  return {found.r[0], found.r[1], found.r[2], found.s[0], found.s[1], found.s[2]};
}

/// One point, as ceres::HuberLoss bounds the residual of a block.
class Point_residual final : public ceres::SizedCostFunction<2, 6> {
 public:
  Point_residual(const Scene& scene, std::size_t i) {
    scene_.num_points = 1;
    scene_.intrinsics = scene.intrinsics;
    scene_.points.assign(&scene.points[3 * i], &scene.points[3 * i] + 3);
    scene_.pixels.assign(&scene.pixels[2 * i], &scene.pixels[2 * i] + 2);
  }
  bool Evaluate(const double* const* x, double* residuals, double** jacobians) const override {
    pixel_residuals(scene_, x[0], residuals, jacobians != nullptr ? jacobians[0] : nullptr, 6, 1);
    return true;
  }

 private:
  Scene scene_;
};

/// The problem is made beforehand.
class By_ceres {
 public:
  explicit By_ceres(const Scene& scene) : start_(start_of(scene)) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(scene.num_points); ++i) {
      problem_.AddResidualBlock(new Point_residual(scene, i), new ceres::HuberLoss(scale), x_.data());
    }
    options_.linear_solver_type = ceres::DENSE_QR;
    options_.max_num_iterations = 100;
    options_.num_threads = 1;
    options_.function_tolerance = options_.gradient_tolerance = 0;
    options_.parameter_tolerance = step_tolerance;
    options_.logging_type = ceres::SILENT;
  }
  Parameters refined() {
    x_ = start_;
    ceres::Solver::Summary summary;
    ceres::Solve(options_, &problem_, &summary);
    return x_;
  }

 private:
  Parameters start_;
  Parameters x_ = {};
  ceres::Problem problem_;
  ceres::Solver::Options options_;
};

/// Residuals whose squares are the loss, and rows whose product with them is its gradient.
class Reweighted {
 public:
  using Scalar = double;
  enum { NUM_RESIDUALS = Eigen::Dynamic, NUM_PARAMETERS = 6 };

  explicit Reweighted(const Scene& scene) : scene_(scene) {}
  int NumResiduals() const { return 2 * scene_.num_points; }
  bool operator()(const double* x, double* residuals, double* jacobian) const {
    const auto rows = static_cast<std::size_t>(NumResiduals());
    pixel_residuals(scene_, x, residuals, jacobian, 1, rows);
    for (std::size_t i = 0; i < rows; i += 2) {
      const double s = std::hypot(residuals[i], residuals[i + 1]);
      if (s <= scale) continue;
      const double factor = std::sqrt(scale * (2 * s - scale)) / s;
      const double of_row = scale / s / factor;
      for (std::size_t row = i; row < i + 2; ++row) {
        residuals[row] *= factor;
        for (std::size_t c = 0; jacobian != nullptr && c < 6; ++c) jacobian[c * rows + row] *= of_row;
      }
    }
    return true;
  }

 private:
  const Scene& scene_;
};

/// The solver with its storage is made beforehand.
class By_tiny_solver {
 public:
  explicit By_tiny_solver(const Scene& scene) : residuals_(scene), start_(start_of(scene)) {
    solver_.options.max_num_iterations = 200;
    solver_.options.gradient_tolerance = 0;
    solver_.options.function_tolerance = 0;
    solver_.options.parameter_tolerance = step_tolerance;
  }
  Parameters refined() {
    Solver::Parameters x = Eigen::Map<const Solver::Parameters>(start_.data());
    solver_.Solve(residuals_, &x);
    return {x[0], x[1], x[2], x[3], x[4], x[5]};
  }

 private:
  using Solver = ceres::TinySolver<Reweighted>;
  Reweighted residuals_;
  Parameters start_;
  Solver solver_;
};

double distance(const Parameters& a, const Parameters& b) {
  double largest = 0.0;
  for (std::size_t i = 0; i < 6; ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

void race() {
  constexpr int num_repetitions = 50;
  Table table({"N", "kelvane, microseconds", "Ceres", "TinySolver", "part of Ceres", "part of TinySolver"});
  for (const int num_points : {20, 100, 1000, 10000}) {
    const Scene scene = scene_with_outliers(num_points, 1);
    By_ceres ceres(scene);
    By_tiny_solver tiny_solver(scene);
    const Parameters found = by_kelvane(scene);
    constexpr double same = 1e-6;
    if (distance(found, ceres.refined()) > same || distance(found, tiny_solver.refined()) > same) {
      throw std::runtime_error("the optima differ");
    }
    const auto us = [](const auto& call) { return ns_per_call(calls_in_batch(call), call) / 1e3; };
    std::vector<double> times[3];
    std::vector<double> ratios[2];
    for (int i = 0; i < num_repetitions; ++i) {
      times[0].push_back(us([&] { by_kelvane(scene); }));
      times[1].push_back(us([&] { ceres.refined(); }));
      times[2].push_back(us([&] { tiny_solver.refined(); }));
      for (int k = 0; k < 2; ++k) ratios[k].push_back(times[0].back() / times[k + 1].back());
    }
    table.add({std::to_string(num_points), number(median(times[0])), number(median(times[1])), number(median(times[2])),
               number(median(ratios[0])), number(median(ratios[1]))});
  }
  std::cout << "Until the pose is still, Huber's loss, every tenth point an outlier, one thread:\n\n";
  table.print(std::cout);
}

/// The same scene with a weight for each number, or a covariance of each observation.
void covariances() {
  constexpr int num_repetitions = 50;
  Table table({"N", "weights, microseconds", "covariances", "covariances by weights"});
  for (const int num_points : {20, 100, 1000, 10000, 100000}) {
    const Scene scene = random_scene(num_points, 1);
    std::vector<double> weights;
    std::vector<double> matrices;
    for (int i = 0; i < num_points; ++i) {
      const double a = 1.0 + 0.5 * std::sin(i);
      const double b = 1.0 + 0.5 * std::cos(i);
      weights.insert(weights.end(), {1.0 / a, 1.0 / b});
      matrices.insert(matrices.end(), {a, 0.3 * a * b, 0.3 * a * b, b});
    }
    kelvane::Refine_problem weighted = problem_of(scene);
    weighted.weights = weights;
    kelvane::Refine_problem with_covariances = problem_of(scene);
    with_covariances.covariances = matrices;
    kelvane::Refine_options options;
    options.noise_sigma = 1.0;
    const auto us = [&options](const kelvane::Refine_problem& problem) {
      const auto call = [&] { refine(problem, options); };
      return ns_per_call(calls_in_batch(call), call) / 1e3;
    };
    std::vector<double> times[2];
    std::vector<double> ratios;
    for (int i = 0; i < num_repetitions; ++i) {
      times[0].push_back(us(weighted));
      times[1].push_back(us(with_covariances));
      ratios.push_back(times[1].back() / times[0].back());
    }
    table.add({std::to_string(num_points), number(median(times[0])), number(median(times[1])), number(median(ratios))});
  }
  std::cout << "\nCovariances of observations in place of weights, without a loss, one thread:\n\n";
  table.print(std::cout);
}

void many() {
  constexpr int num_problems = 2000;
  constexpr int num_repetitions = 9;
  std::vector<Scene> scenes;
  for (unsigned i = 0; i < num_problems; ++i) scenes.push_back(scene_with_outliers(100, i));
  std::vector<kelvane::Refine_problem> problems;
  std::transform(scenes.begin(), scenes.end(), std::back_inserter(problems), problem_of);
  std::vector<double> times;
  std::vector<double> ratios;
  for (int i = 0; i < num_repetitions; ++i) {
    times.push_back(ns_per_call(1, [&] { refine_many(problems, huber(), 1); }) / num_problems / 1e3);
    ratios.push_back(times.back() / (ns_per_call(1, [&] { refine_many(problems, huber(), 2); }) / num_problems / 1e3));
  }
  std::cout << "\n2,000 problems of 100 points: " << number(median(times))
            << " microseconds each on one thread; on two threads " << number(median(ratios)) << " times as fast.\n\n";
}

}  // namespace

int main() {
  std::cout << "## Robust refinement\n\n";
  race();
  covariances();
  many();
}
