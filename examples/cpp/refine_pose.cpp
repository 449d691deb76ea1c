// SPDX-License-Identifier: BSD-3-Clause
// Refines a camera pose twice: by the call that the module makes, and with the published classes, set up by hand.
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

#include "contract/refinement.h"
#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_opt_func.h"
#include "fw_opt/linear_taylor_solver.h"

namespace {

constexpr int rotation_vectors = 0;  // the rotation type
constexpr int num_points = 6;
const std::vector<std::vector<double>> points = {{-1, -1, 0},  {1, -1, 0.2}, {1, 1, 0},
                                                 {-1, 1, 0.4}, {0, 0, 1},    {0.5, 0.3, -0.5}};
constexpr double focal_length = 800;
constexpr double cx = 320;
constexpr double cy = 240;

/// A rotation vector in radians, then the camera centre in the units of the points.
const std::vector<double> start = {0.55, 0.65, 0.58, -3.8, 2.1, -4.1};

/// Nothing to set up, all the speed, and what kelvane_mex returns.
std::vector<double> refine_by_call(const std::vector<double>& pixels) {
  std::vector<double> camera = start;
  camera.insert(camera.end(), {focal_length, cx, cy});
  std::vector<double> coordinates;
  for (const auto& point : points) coordinates.insert(coordinates.end(), point.begin(), point.end());
  kelvane::contract::Arguments arguments{};
  arguments.type = kelvane::find_rotation_type(rotation_vectors);
  arguments.num_points = num_points;
  arguments.camera_parameters = camera.data();
  arguments.points = coordinates.data();
  arguments.observations = pixels.data();
  return kelvane::contract::refine(arguments, kelvane::contract::Settings(arguments));
}

/// Stopping rules, weights or functions of your own: the same solver, piece by piece.
std::vector<double> refine_by_solver(const fw::matrix<double>& K, const std::vector<double>& pixels) {
  // The Jacobian owns the prediction that it differentiates, and the solver owns the Jacobian.
  auto prediction = std::make_unique<Camera_position_opt_func>(points, K, rotation_vectors);
  auto jacobian = std::make_unique<Camera_position_grad_func_aau>(points, K, prediction.release());
  fw::Linear_taylor_solver solver;
  solver.set_num_dimensions(static_cast<int>(start.size()));
  solver.set_num_equations(static_cast<int>(pixels.size()));
  solver.set_max_iters(50);
  solver.set_min_x_step(1e-9F);  // until the pose is still
  solver.set_grad_funcs({jacobian.get()});
  static_cast<void>(jacobian.release());
  return solver.optimise(start, pixels);
}

double rms(const fw::Opt_func& prediction, const std::vector<double>& x, const std::vector<double>& pixels) {
  const std::vector<double> predicted = prediction(x);
  double sum = 0.0;
  for (std::size_t i = 0; i < pixels.size(); ++i) sum += std::pow(predicted[i] - pixels[i], 2);
  return std::sqrt(sum / static_cast<double>(pixels.size() / 2));  // of the distances of points
}

}  // namespace

int main() try {
  fw::matrix<double> K(3, 3);
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) K.set(i, j, i == j && i < 2 ? focal_length : i == j ? 1 : 0);
  }
  K.set(0, 2, cx);
  K.set(1, 2, cy);
  const Camera_position_opt_func prediction(points, K, rotation_vectors);

  // What the camera sees from the pose that is to be found: u and v of each point.
  const double r = std::acos(0.5) / std::sqrt(3.0);
  const std::vector<double> pixels = prediction({r, r, r, -4, 2, -4});

  const auto print = [&](const char* how, const std::vector<double>& x) {
    std::printf("%-10s rotation vector (%.4f, %.4f, %.4f), camera centre (%.4f, %.4f, %.4f), RMS %.4f pixels\n", how,
                x[0], x[1], x[2], x[3], x[4], x[5], rms(prediction, x, pixels));
  };
  print("start", start);
  print("by call", refine_by_call(pixels));
  print("by solver", refine_by_solver(K, pixels));
} catch (const std::exception& error) {  // an fw::exception_l with a report, or the standard library's
  std::fputs(error.what(), stderr);
  return 1;
}
