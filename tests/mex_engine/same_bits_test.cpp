// SPDX-License-Identifier: BSD-3-Clause
// What kelvane_engine hands to a host has the bits of kelvane::refine.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "mex_host.h"
#include "support/refined_problems.h"
#include "trust/engine_calls.h"

namespace {

using kelvane::Loss, kelvane::Pose;

constexpr const char* loss_names[] = {"none", "huber", "cauchy", "tukey"};

/// Columns of the rotation, then the centre.
std::vector<double> numbers_of(const Pose& pose) {
  std::vector<double> numbers;
  for (int i = 0; i < 9; ++i) numbers.push_back(pose.rotation[i % 3][i / 3]);
  numbers.insert(numbers.end(), pose.centre, pose.centre + 3);
  return numbers;
}

/// Of results with one problem.
std::vector<double> numbers_in(const mxArray& results, const char* name) {
  const mxArray& field = mex_host::field(results, name);
  return field.class_name == "cell" ? field.elements.at(0).at(0).values : field.values;
}

void expect_same(const mxArray& results, const kelvane::Refine_result& expected) {
  const std::vector<double> figures = numbers_in(results, "figures");
  EXPECT_EQ(numbers_in(results, "pose"), numbers_of(expected.pose));
  EXPECT_EQ(figures.at(0), static_cast<double>(expected.exit));
  EXPECT_EQ(figures.at(1), expected.before.robust);
  EXPECT_EQ(figures.at(2), expected.after.robust);
  EXPECT_EQ(figures.at(4), expected.after.plain);
  EXPECT_EQ(figures.at(8), expected.noise_sigma);
  EXPECT_EQ(figures.at(10), expected.loss_scale);
  EXPECT_EQ(numbers_in(results, "residuals"), expected.residuals);
  const std::vector<double> covariance = numbers_in(results, "covariance");
  EXPECT_TRUE(std::equal(covariance.begin(), covariance.end(), &expected.covariance[0][0]));
  const std::vector<double> steps = numbers_in(results, "steps");
  ASSERT_EQ(steps.size(), 15 * expected.history.size());
  for (std::size_t k = 0; k < expected.history.size(); ++k) {
    EXPECT_EQ(steps[15 * k], expected.history[k].rms);
    const std::vector<double> pose = numbers_of(expected.history[k].pose);
    EXPECT_TRUE(std::equal(pose.begin(), pose.end(), &steps[15 * k + 3]));
  }
}

TEST(SameBits, AsInCpp) {
  for (unsigned number = 0; number < 40; ++number) {
    SCOPED_TRACE(number);
    support::Random random(number);
    const bool sees_directions = number % 2 == 1;
    const std::size_t n = 6 + 9 * number;
    const support::Refined_problem scene = support::random_scene(random, n, sees_directions, 0.01);
    const char* const loss = loss_names[number % 4];
    const Pose& start = scene.start;
    const mxArray K =
        sees_directions ? mex_host::row({}) : mex_host::real_matrix(3, 3, {800, 0, 0, 12, 650, 0, 320, 240, 1});
    const mex_host::Result result = mex_host::call(trust::engine::refine_inputs(
        {{mex_host::structure({{"rotation", trust::engine::matrix_of(start.rotation)},
                               {"centre", mex_host::column({start.centre[0], start.centre[1], start.centre[2]})}}),
          mex_host::real_matrix(3, n, scene.points), mex_host::real_matrix(scene.d(), n, scene.observations), K,
          trust::engine::options("", "", loss, mex_host::row({}))}}));
    ASSERT_TRUE(result.output) << result.message;
    kelvane::Refine_options options;
    options.loss = static_cast<Loss>(number % 4);
    options.max_iterations = 50;  // as there
    expect_same(*result.output, kelvane::refine(scene.view(), options));
  }
}

}  // namespace
