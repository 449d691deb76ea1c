// SPDX-License-Identifier: BSD-3-Clause
// The covariance that is told, against the scatter of many refinements of simulated noise.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "pose_refinement/refine.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Loss;
using kelvane::Refine_options;
using kelvane::Refine_result;
using support::Refined_problem;

constexpr int num_rounds = 2000;
constexpr double part = 0.05;  // 3 standard deviations of what 2,000 rounds tell of a standard deviation

/// [w; dt] of a pose from the true one: rotation = true rotation * exp [w]x.
std::vector<double> error_of(const kelvane::Pose& pose) {
  const kelvane::Pose& truth = support::pose_of_scene;
  double turn[3][3] = {};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      for (int k = 0; k < 3; ++k) turn[i][j] += truth.rotation[k][i] * pose.rotation[k][j];
    }
  }
  std::vector<double> error = {(turn[2][1] - turn[1][2]) / 2, (turn[0][2] - turn[2][0]) / 2,
                               (turn[1][0] - turn[0][1]) / 2};
  for (int i = 0; i < 3; ++i) error.push_back(pose.centre[i] - truth.centre[i]);
  return error;
}

class Covariance : public testing::TestWithParam<std::tuple<bool, Loss, bool>> {};

TEST_P(Covariance, IsTheScatterOfRefinements) {
  const auto [sees_directions, loss, is_known] = GetParam();
  const double noise = sees_directions ? 1e-3 : 1.0;
  Refine_options options;
  options.loss = loss;
  if (is_known) options.noise_sigma = noise;
  support::Random random(77);
  Refined_problem exact = support::random_scene(random, 40, sees_directions, 0.0);
  double scatter[6][6] = {};
  double told[6][6] = {};
  double sigma = 0.0;
  for (int round = 0; round < num_rounds; ++round) {
    Refined_problem problem = exact;
    for (double& coordinate : problem.observations) coordinate += noise * support::normal(random);
    const Refine_result result = refine(problem.view(), options);
    ASSERT_GT(static_cast<int>(result.exit), 0) << result.message;
    const std::vector<double> error = error_of(result.pose);
    sigma += result.noise_sigma / num_rounds;
    for (std::size_t i = 0; i < 6; ++i) {
      for (std::size_t j = 0; j < 6; ++j) {
        scatter[i][j] += error[i] * error[j] / num_rounds;
        told[i][j] += result.covariance[i][j] / num_rounds;
      }
    }
  }
  EXPECT_NEAR(sigma / noise, 1.0, part);
  for (int i = 0; i < 6; ++i) {
    EXPECT_NEAR(std::sqrt(scatter[i][i] / told[i][i]), 1.0, part) << i;
    for (int j = 0; j < i; ++j) {
      const double size = std::sqrt(told[i][i] * told[j][j]);
      EXPECT_NEAR(scatter[i][j] / size, told[i][j] / size, 2.0 * part) << i << ", " << j;
    }
  }
}

/// With known noise an outlier tells nothing: the covariance is that of the other points.
TEST(CovarianceOfKnownNoise, LeavesOutliersOut) {
  support::Random random(78);
  Refine_options options;
  options.loss = Loss::tukey;
  options.loss_scale = 5.0;
  options.noise_sigma = 1.0;
  Refined_problem problem = support::random_scene(random, 40, false, 0.0);
  Refined_problem others = problem;
  others.points.resize(3 * 25);
  others.observations.resize(2 * 25);
  for (std::size_t i = 2 * 25; i < 2 * 40; ++i) problem.observations[i] += 200.0;
  const Refine_result result = refine(problem.view(), options);
  const Refine_result expected = refine(others.view(), options);
  EXPECT_EQ(result.num_inliers, 25U);
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(result.covariance[i][i] / expected.covariance[i][i], 1.0, 1e-6) << i;
}

std::string name_of(const testing::TestParamInfo<std::tuple<bool, Loss, bool>>& info) {
  const char* names[] = {"NoLoss", "Huber", "Cauchy", "Tukey"};
  return std::string(std::get<0>(info.param) ? "Directions" : "Pixels") +
         names[static_cast<int>(std::get<1>(info.param))] + (std::get<2>(info.param) ? "NoiseKnown" : "");
}

INSTANTIATE_TEST_SUITE_P(All, Covariance,
                         testing::Combine(testing::Bool(),
                                          testing::Values(Loss::none, Loss::huber, Loss::cauchy, Loss::tukey),
                                          testing::Bool()),
                         name_of);

}  // namespace
