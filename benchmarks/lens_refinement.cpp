// SPDX-License-Identifier: BSD-3-Clause
// lens_refinement: prints what an iteration through a lens costs next to that of a pinhole camera.
#include <algorithm>
#include <iostream>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/markdown.h"
#include "benchmarks/timing.h"
#include "pose_refinement/refine.h"

namespace {

using namespace bench;

constexpr unsigned seed = 1;
constexpr int num_iterations = 5;
constexpr int num_rounds = 300;

struct Camera_in_words {
  const char* model;
  std::vector<double> parameters;
};

/// Points up to 25 degrees off the axis, whose pixels have noise of one pixel.
struct Scene {
  std::vector<double> points, pixels;
  kelvane::Refine_problem problem;

  Scene(const kelvane::Lens& lens, std::size_t num_points) {
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<double> in_cube(-1.0, 1.0);
    std::normal_distribution<double> noise;
    for (std::size_t i = 0; i < num_points; ++i) {
      const double p[3] = {in_cube(engine), in_cube(engine), 4.0 + in_cube(engine)};
      double pixel[2];
      project(lens, p, pixel);
      points.insert(points.end(), p, p + 3);
      for (const double coordinate : pixel) pixels.push_back(coordinate + noise(engine));
    }
    const kelvane::Rotation_vector_pose start{{0.05, -0.03, 0.04}, {0.2, -0.1, 0.3}};
    problem = {pose_of(start, kelvane::Pose_frame::world_from_camera), points, pixels, lens_camera(lens)};
  }
};

/// Nanoseconds per point and iteration, everything of the call included: the least of many rounds, in which all cameras
/// take turns, as a busy machine adds to some.
std::vector<double> costs_of(const std::vector<Camera_in_words>& cameras, std::size_t num_points) {
  std::vector<std::unique_ptr<Scene>> scenes;
  for (const Camera_in_words& camera : cameras) {
    scenes.push_back(
        std::make_unique<Scene>(make_lens(kelvane::lens_model(camera.model), camera.parameters), num_points));
  }
  kelvane::Refine_options options;
  options.step_tolerance = 0.0;
  options.max_iterations = num_iterations;
  std::vector<double> least(cameras.size(), std::numeric_limits<double>::infinity());
  for (int round = 0; round < num_rounds; ++round) {
    for (std::size_t i = 0; i < scenes.size(); ++i) {
      std::size_t num_made = 1;
      const double time = ns_per_call(1, [&] { num_made = refine(scenes[i]->problem, options).history.size() - 1; });
      least[i] = std::min(least[i], time / static_cast<double>(num_points * num_made));
    }
  }
  return least;
}

}  // namespace

int main() {
  const std::vector<Camera_in_words> cameras{
      {"PINHOLE", {800, 800, 320, 240}},
      {"RADIAL", {800, 320, 240, -0.2, 0.05}},
      {"OPENCV", {800, 800, 320, 240, -0.2, 0.05, 1e-3, -1e-3}},
      {"FULL_OPENCV", {800, 800, 320, 240, -0.2, 0.05, 1e-3, -1e-3, 0.01, 0.01, 0.01, 0.01}},
      {"OPENCV_FISHEYE", {400, 400, 320, 240, 0.05, -0.01, 1e-3, -1e-4}},
      {"THIN_PRISM_FISHEYE", {400, 400, 320, 240, 0.05, -0.01, 1e-3, -1e-3, 1e-3, -1e-4, 1e-3, 1e-3}},
      {"FOV", {400, 400, 320, 240, 0.9}}};
  std::cout << "## Through a lens\n\nNanoseconds per point and iteration of `kelvane::refine`, and as a part of the "
               "pinhole camera's:\n\n";
  Table table({"camera", "N = 100", "", "N = 1,000", "", "N = 10,000", ""});
  std::vector<std::vector<std::string>> rows;
  for (const Camera_in_words& camera : cameras) rows.push_back({camera.model});
  for (const std::size_t num_points : {100U, 1000U, 10000U}) {
    const std::vector<double> costs = costs_of(cameras, num_points);
    for (std::size_t i = 0; i < costs.size(); ++i) {
      rows[i].insert(rows[i].end(), {number(costs[i]), number(costs[i] / costs[0])});
    }
  }
  for (const auto& row : rows) table.add(row);
  table.print(std::cout);
}
