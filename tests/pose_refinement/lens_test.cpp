// SPDX-License-Identifier: BSD-3-Clause
// Refinements in the pixels that a lens made.
#include <gtest/gtest.h>

#include <cmath>

#include "pose_refinement/refine.h"
#include "support/long_run.h"
#include "support/reference_lens.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Lens;
using kelvane::Lens_model;
using kelvane::Refine_result;
using support::Random;
using support::Refined_problem;

constexpr std::uint64_t seed = 18010;

/// Points that the lens sees at the pose of the scene and at its start, as far off the axis as it does.
Refined_problem scene_through(const Lens& lens, Random& random, std::size_t n, double noise, double part = 0.6) {
  Refined_problem problem;
  problem.camera = lens_camera(lens);
  problem.start = support::pose_at({0.33, -0.47, 0.19}, {0.2, -0.25, -3.9});
  const kelvane::Pose& truth = support::pose_of_scene;
  while (problem.points.size() < 3 * n) {
    const auto direction = support::seen_direction(lens, random, part);
    const double distance = random.uniform(3.0, 6.0);
    double X[3];
    for (int i = 0; i < 3; ++i) {
      X[i] = truth.centre[i];
      for (std::size_t j = 0; j < 3; ++j) X[i] += truth.rotation[i][j] * distance * direction[j];
    }
    double at_start[2];
    double p[3] = {};
    for (int j = 0; j < 3; ++j) {
      for (int i = 0; i < 3; ++i) p[j] += problem.start.rotation[i][j] * (X[i] - problem.start.centre[i]);
    }
    project(lens, p, at_start);
    double pixel[2];
    project(lens, direction.data(), pixel);
    if (!std::isfinite(at_start[0]) || std::hypot(pixel[0], pixel[1]) > 1e4) continue;
    problem.points.insert(problem.points.end(), X, X + 3);
    for (const double coordinate : pixel) problem.observations.push_back(coordinate + noise * support::normal(random));
  }
  return problem;
}

double distance_of(const kelvane::Pose& a, const kelvane::Pose& b) {
  double most = 0.0;
  for (int i = 0; i < 3; ++i) {
    most = std::max(most, std::abs(a.centre[i] - b.centre[i]));
    for (int j = 0; j < 3; ++j) most = std::max(most, std::abs(a.rotation[i][j] - b.rotation[i][j]));
  }
  return most;
}

class RefineThroughLens : public testing::TestWithParam<Lens_model> {};

std::string name_of_model(const testing::TestParamInfo<Lens_model>& info) {
  std::string name = info.param.name;
  name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, RefineThroughLens, testing::ValuesIn(kelvane::lens_models()), name_of_model);

TEST_P(RefineThroughLens, FindsThePoseOfRandomScenes) {
  Random random(seed);
  const int num_scenes = support::repetitions(100, 1000);
  for (int i = 0; i < num_scenes; ++i) {
    const Lens lens = make_lens(GetParam(), support::random_parameters(GetParam(), random));
    if (largest_angle(lens) < 0.3) continue;  // a keyhole
    const Refined_problem problem = scene_through(lens, random, 20, 0.0);
    const Refine_result result = refine(problem.view());
    SCOPED_TRACE(testing::Message() << "scene " << i << ": " << result.message);
    EXPECT_GT(static_cast<int>(result.exit), 0);
    EXPECT_LT(distance_of(result.pose, support::pose_of_scene), 1e-9);
    EXPECT_EQ(result.num_left_out, 0U);
    EXPECT_EQ(result.num_behind, 0U);
    EXPECT_EQ(result.num_inliers, 20U);
  }
}

/// A lens that moves nothing, next to none.
TEST(RefineThroughLensOfZeros, IsThatOfThePinhole) {
  Random random(seed);
  Refined_problem problem = support::random_scene(random, 300, false, 1.0);
  problem.camera = kelvane::pixel_camera(800, 650, 320, 240);
  const Refine_result expected = refine(problem.view());
  Lens lens = make_lens(kelvane::lens_model("OPENCV"), {800, 650, 320, 240, 0, 0, 0, 0});
  problem.camera = lens_camera(lens);
  EXPECT_FALSE(problem.camera.lens.has_value());
  problem.camera.lens = lens;
  const Refine_result result = refine(problem.view());
  EXPECT_LT(distance_of(result.pose, expected.pose), 1e-10);
  EXPECT_NEAR(result.after.plain, expected.after.plain, 1e-10);
  for (int i = 0; i < 6; ++i)
    EXPECT_NEAR(result.covariance[i][i], expected.covariance[i][i], 1e-6 * expected.covariance[i][i]);
}

/// BAL's camera with a pose in its own frame is that of a camera that looks down +z, turned by half a turn about x.
TEST(RefineThroughLensOfBal, IsThatOfTheTurnedFrame) {
  Random random(seed);
  const Lens lens = make_lens(kelvane::lens_model("RADIAL"), {800, 0, 0, -0.1, 0.01});
  Refined_problem problem = scene_through(lens, random, 30, 1.0);
  const Refine_result expected = refine(problem.view());
  Refined_problem turned = problem;
  turned.camera = lens_camera(make_lens(kelvane::lens_model("BAL"), {800, -0.1, 0.01}));
  for (std::size_t i = 1; i < turned.observations.size(); i += 2) turned.observations[i] *= -1.0;
  for (auto& row : turned.start.rotation) {
    row[1] *= -1.0;
    row[2] *= -1.0;
  }
  Refine_result result = refine(turned.view());
  for (auto& row : result.pose.rotation) {
    row[1] *= -1.0;
    row[2] *= -1.0;
  }
  EXPECT_LT(distance_of(result.pose, expected.pose), 1e-9);
  EXPECT_EQ(result.num_behind, 0U);
}

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
      double p[3] = {};
      for (std::size_t j = 0; j < 3; ++j) {
        for (std::size_t m = 0; m < 3; ++m)
          p[j] += result.pose.rotation[m][j] * (problem.points[3 * k + m] - result.pose.centre[m]);
      }
      widest = std::max(widest, std::hypot(p[0], p[1]) / p[2]);
    }
    EXPECT_LT(widest, 1.0);
    num_short += widest > 0.999 ? 1 : 0;
  }
  EXPECT_GT(num_short, 5);
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

/// The scatter of refinements, against the covariance that is told.
class CovarianceThroughLens : public testing::TestWithParam<const char*> {};

TEST_P(CovarianceThroughLens, IsTheScatterOfRefinements) {
  constexpr int num_rounds = 2000;
  constexpr double part = 0.05;  // 3 standard deviations of what so many rounds tell of a standard deviation
  Random random(seed);
  const Lens_model& model = kelvane::lens_model(GetParam());
  const Lens lens = make_lens(model, support::random_parameters(model, random));
  const Refined_problem exact = scene_through(lens, random, 40, 0.0);
  double scatter[6] = {};
  double told[6] = {};
  for (int round = 0; round < num_rounds; ++round) {
    Refined_problem problem = exact;
    for (double& coordinate : problem.observations) coordinate += support::normal(random);
    const Refine_result result = refine(problem.view());
    ASSERT_GT(static_cast<int>(result.exit), 0) << result.message;
    const kelvane::Pose& truth = support::pose_of_scene;
    double turn[3][3] = {};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        for (int k = 0; k < 3; ++k) turn[i][j] += truth.rotation[k][i] * result.pose.rotation[k][j];
      }
    }
    const double error[6] = {(turn[2][1] - turn[1][2]) / 2,           (turn[0][2] - turn[2][0]) / 2,
                             (turn[1][0] - turn[0][1]) / 2,           result.pose.centre[0] - truth.centre[0],
                             result.pose.centre[1] - truth.centre[1], result.pose.centre[2] - truth.centre[2]};
    for (int i = 0; i < 6; ++i) {
      scatter[i] += error[i] * error[i] / num_rounds;
      told[i] += result.covariance[i][i] / num_rounds;
    }
  }
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(std::sqrt(scatter[i] / told[i]), 1.0, part) << i;
}

INSTANTIATE_TEST_SUITE_P(All, CovarianceThroughLens, testing::Values("OPENCV", "OPENCV_FISHEYE", "BAL"),
                         [](const auto& one) {
                           std::string name = one.param;
                           name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
                           return name;
                         });

}  // namespace
