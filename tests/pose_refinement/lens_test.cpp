// SPDX-License-Identifier: BSD-3-Clause
// Refinements in the pixels that a lens made.
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
using support::Refined_problem, support::scene_through, support::distance_of;

constexpr std::uint64_t seed = 18010;

class RefineThroughLens : public testing::TestWithParam<Lens_model> {};

INSTANTIATE_TEST_SUITE_P(All, RefineThroughLens, testing::ValuesIn(kelvane::lens_models()), support::name_of_model);

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
