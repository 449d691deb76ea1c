// SPDX-License-Identifier: BSD-3-Clause
// What kelvane_engine hands to a host has the bits of kelvane::refine.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

#include "mex_engine/read_options.h"
#include "mex_host.h"
#include "pose_refinement/refinement.h"
#include "support/refined_problems.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"

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

void append(const Pose& pose, std::vector<double>& numbers) {
  const std::vector<double> more = numbers_of(pose);
  numbers.insert(numbers.end(), more.begin(), more.end());
}

std::vector<double> steps_of(const kelvane::Refine_result& result) {
  std::vector<double> numbers;
  for (const kelvane::Refine_step& step : result.history) {
    numbers.insert(numbers.end(), {step.rms, step.turn, step.shift});
    append(step.pose, numbers);
  }
  return numbers;
}

/// In the order that mex_engine/refined.h tells.
std::vector<double> figures_of(const kelvane::Refine_result& result) {
  const auto number = [](auto value) { return static_cast<double>(value); };
  return {
      number(result.exit),        result.before.robust,       result.after.robust,  result.before.plain,
      result.after.plain,         result.before.inliers,      result.after.inliers, number(result.history.size() - 1),
      result.noise_sigma,         number(result.num_inliers), result.loss_scale,    number(result.num_behind),
      number(result.num_left_out)};
}

/// NaN is NaN, and 0 is not -0.
void expect_same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(std::memcmp(&a[i], &b[i], sizeof(double)), 0) << i << ": " << a[i] << " is not " << b[i];
  }
}

void expect_same(const mxArray& results, const kelvane::Refine_result& expected) {
  expect_same_bits(numbers_in(results, "figures"), figures_of(expected));
  expect_same_bits(numbers_in(results, "pose"), numbers_of(expected.pose));
  expect_same_bits(numbers_in(results, "steps"), steps_of(expected));
  expect_same_bits(numbers_in(results, "residuals"), expected.residuals);
  const double* covariance = &expected.covariance[0][0];
  expect_same_bits(numbers_in(results, "covariance"), {covariance, covariance + 36});
  EXPECT_EQ(mex_host::field(results, "inliers").elements.at(0).at(0).bytes, expected.is_inlier);
  EXPECT_EQ(trust::engine::text_of(results, "message"), expected.message);
}

TEST(SameBits, AsInCpp) {
  for (unsigned number = 0; number < 40; ++number) {
    SCOPED_TRACE(number);
    support::Random random(number);
    const bool sees_directions = number % 2 == 1;
    const std::size_t n = 6 + 9 * number;
    support::Refined_problem scene = support::random_scene(random, n, sees_directions, 0.01);
    for (std::size_t i = 0; i < number % 3; ++i) scene.observations[i * scene.d()] = std::nan("");
    for (std::size_t i = 3; i < number / 8; ++i) scene.observations[i * scene.d()] += 0.3;
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
    const kelvane::Refine_problem problem = scene.view();
    kelvane::Refinement refinement(problem, options, kelvane::mex_engine::words);
    refinement.run(kelvane::Deadline::max());
    expect_same(*result.output, refinement.result());
    EXPECT_EQ(refinement.result().num_left_out, number % 3);
    kelvane::Refine_result result_of_cpp = kelvane::refine(problem, options);
    result_of_cpp.message = refinement.result().message;  // in other words
    EXPECT_TRUE(support::have_same_bits(refinement.result(), result_of_cpp));
  }
}

}  // namespace
