// SPDX-License-Identifier: BSD-3-Clause
// Refinements through lenses that fold back inside the scene.
#include <gtest/gtest.h>

#include <cmath>

#include "pose_refinement/refine.h"
#include "support/lens_scenes.h"
#include "support/long_run.h"

namespace {

using kelvane::Lens;
using kelvane::Lens_model;
using kelvane::Refine_result;
using support::Random;
using support::Refined_problem, support::scene_through, support::distance_of, support::in_camera;

constexpr std::uint64_t seed = 18010;

/// What the formula mirrors back into the picture is never taken for what was seen there.
TEST(RefineThroughFoldedLens, LeavesOutWhatLiesBeyondTheFold) {
  Random random(seed);
  const Lens lens = make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {600, 320, 240, -1.0 / 3.0});
  for (int i = 0; i < 50; ++i) {
    Refined_problem problem = scene_through(lens, random, 30, 0.5);
    const kelvane::Pose& pose = support::pose_of_scene;
    for (int k = 0; k < 5; ++k) {  // beyond r = 1, with the pixel that the polynomial gives
      const double r = random.uniform(1.3, 1.6);
      const double turn = random.uniform(-3.0, 3.0);
      const double p[3] = {4.0 * r * std::cos(turn), 4.0 * r * std::sin(turn), 4.0};
      for (int row = 0; row < 3; ++row) {
        problem.points.push_back(pose.centre[row] + pose.rotation[row][0] * p[0] + pose.rotation[row][1] * p[1] +
                                 pose.rotation[row][2] * p[2]);
      }
      const double mirrored = r * (1.0 - r * r / 3.0);
      problem.observations.push_back(320 + 600 * mirrored * std::cos(turn));
      problem.observations.push_back(240 + 600 * mirrored * std::sin(turn));
    }
    const Refine_result result = refine(problem.view());
    EXPECT_GT(static_cast<int>(result.exit), 0) << result.message;
    EXPECT_EQ(result.num_left_out, 5U);
    for (std::size_t k = 0; k < 35; ++k) {
      EXPECT_EQ(std::isnan(result.residuals[2 * k]), k >= 30);
      EXPECT_TRUE(k < 30 || result.is_inlier[k] == 0);
    }
    EXPECT_LT(distance_of(result.pose, support::pose_of_scene), 0.05);
  }
}

/// Points seen at the very edge: full steps would lead over it.
TEST(RefineThroughFoldedLens, StaysOnItsSideOfTheFold) {
  Random random(seed);
  const Lens lens = make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {600, 320, 240, -1.0 / 3.0});
  int num_short = 0;
  for (int i = 0; i < 200; ++i) {
    Refined_problem problem = scene_through(lens, random, 30, 0.0, 0.98);
    for (std::size_t k = 0; k < 60; ++k) problem.observations[k] += 25.0 * support::normal(random);
    const Refine_result result = refine(problem.view());
    EXPECT_LE(result.after.plain, result.before.plain);
    for (const double residual : result.residuals) EXPECT_TRUE(std::isfinite(residual));
    double widest = 0.0;
    for (std::size_t k = 0; k < 30; ++k) {
      const auto p = in_camera(result.pose, &problem.points[3 * k]);
      widest = std::max(widest, std::hypot(p[0], p[1]) / p[2]);
    }
    EXPECT_LT(widest, 1.0);
    num_short += widest > 0.999 ? 1 : 0;
  }
  EXPECT_GT(num_short, 5);
}

/// Where the fold cuts steps short the cost falls by little, whatever there is to gain.
TEST(RefineThroughFoldedLens, DoesNotTakeShortStepsForConvergence) {
  Random random(seed);
  const Lens lens = make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {600, 320, 240, -1.0 / 3.0});
  kelvane::Refine_options loose;
  loose.function_tolerance = 1e-6;
  int num_converged = 0;
  for (int i = 0; i < 200; ++i) {
    Refined_problem problem = scene_through(lens, random, 20, 20.0, 0.98);
    problem.start.centre[2] += 0.05 * support::normal(random);
    const Refine_result result = refine(problem.view(), loose);
    if (static_cast<int>(result.exit) <= 0) continue;
    ++num_converged;
    problem.start = result.pose;
    const Refine_result exact = refine(problem.view());
    EXPECT_GT(static_cast<int>(exact.exit), 0) << i << " " << exact.message;
  }
  EXPECT_GT(num_converged, 150);
}

TEST(RefineThroughFoldedLens, SaysWhereAllPointsLieBeyond) {
  Random random(seed);
  Refined_problem problem = support::random_scene(random, 10, false, 0.0);
  problem.camera = lens_camera(make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {600, 320, 240, -1e4}));
  try {
    refine(problem.view());
    FAIL();
  } catch (const std::invalid_argument& error) {
    EXPECT_EQ(std::string(error.what()).rfind("Three points with a weight above 0, an observation and an image", 0), 0U)
        << error.what();
  }
}

/// Points beyond the fold, observed where the formula mirrors them back into the picture.
void add_mirrored_points(const Lens& lens, Random& random, std::size_t n, Refined_problem& problem) {
  Lens endless = lens;
  endless.fold = 1e13;
  const double fold = largest_angle(lens);
  for (std::size_t k = 0; k < n; ++k) {
    const double angle = fold * random.uniform(1.001, 1.2);
    const double turn = random.uniform(-3.0, 3.0);
    const double distance = random.uniform(3.0, 6.0);
    const double p[3] = {distance * std::sin(angle) * std::cos(turn), distance * std::sin(angle) * std::sin(turn),
                         lens.forward * distance * std::cos(angle)};
    double pixel[2];
    project(endless, p, pixel);
    const kelvane::Pose& pose = support::pose_of_scene;
    for (int i = 0; i < 3; ++i) {
      problem.points.push_back(pose.centre[i] + pose.rotation[i][0] * p[0] + pose.rotation[i][1] * p[1] +
                               pose.rotation[i][2] * p[2]);
    }
    problem.observations.insert(problem.observations.end(), pixel, pixel + 2);
  }
}

std::vector<Lens_model> models_that_fold() {
  std::vector<Lens_model> models;
  for (const Lens_model& model : kelvane::lens_models()) {
    const std::string name = model.name;
    if (name != "SIMPLE_PINHOLE" && name != "PINHOLE" && name != "FOV") models.push_back(model);
  }
  return models;
}

class RefineThroughFoldedLenses : public testing::TestWithParam<Lens_model> {};

INSTANTIATE_TEST_SUITE_P(All, RefineThroughFoldedLenses, testing::ValuesIn(models_that_fold()), support::name_of_model);

TEST_P(RefineThroughFoldedLenses, HaveNoMirroredPointAmongTheInliers) {
  Random random(seed);
  const int num_lenses = support::repetitions(300, 10000);
  std::size_t num_folded = 0;
  std::size_t num_beyond = 0;
  for (int i = 0; i < num_lenses; ++i) {
    const Lens lens = make_lens(GetParam(), support::random_parameters(GetParam(), random));
    const double fold = largest_angle(lens);
    if (fold < 0.3 || fold * 1.2 > (lens.is_angular ? 3.1 : 1.5)) continue;
    ++num_folded;
    Refined_problem problem = scene_through(lens, random, 20, 0.5, 0.9);
    add_mirrored_points(lens, random, 10, problem);
    for (const kelvane::Loss loss : {kelvane::Loss::none, kelvane::Loss::huber, kelvane::Loss::tukey}) {
      kelvane::Refine_options options;
      options.loss = loss;
      const Refine_result result = refine(problem.view(), options);
      SCOPED_TRACE(testing::Message() << "lens " << i << ": " << result.message);
      std::size_t num_without = 0;
      for (std::size_t k = 0; k < 30; ++k) {
        double pixel[2];
        project(lens, in_camera(result.pose, &problem.points[3 * k]).data(), pixel);
        EXPECT_TRUE(result.is_inlier[k] == 0 || std::isfinite(pixel[0]));
        num_without += std::isnan(result.residuals[2 * k]) ? 1U : 0U;
        num_beyond += std::isfinite(pixel[0]) ? 0U : 1U;
      }
      EXPECT_EQ(result.num_left_out, num_without);
    }
  }
  EXPECT_GT(num_folded, 10U);
  EXPECT_GT(num_beyond, 20 * num_folded);
}

}  // namespace
