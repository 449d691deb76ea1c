// SPDX-License-Identifier: BSD-3-Clause
// The step of the types whose quaternion or axis has a free length is orthogonal to it at every number of points.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numeric>

#include "camera_pose/rotation_type.h"
#include "contract/problem.h"
#include "contract/refinement.h"
#include "support/camera_model.h"
#include "support/cases.h"
#include "support/fake_input.h"
#include "support/long_round.h"

namespace {

using support::Case;

constexpr std::uint64_t seed = 90909;
constexpr double orthogonality = 1e-9;  // of the lengths of the step and of the null vector

/// A call of one iteration: points in front of a camera turned by any angle, observations with noise, and a start a few
/// degrees and percent off.
support::Fake_call random_call(int type, std::size_t num_points, Case& which) {
  const kelvane::Rotation_type& row = *kelvane::find_rotation_type(type);
  const std::vector<double> unit = support::random_angle_axis(support::Regime::ordinary, which.random);
  const auto R = support::rotation_of_angle_axis<double>({unit[0], unit[1], unit[2], unit[3]});
  const std::vector<double> t = which.random.vector_in_cube(3, 2.0);
  const bool is_quaternion = row.representation == kelvane::Representation::quaternion;
  std::vector<double> camera = is_quaternion ? support::quaternion_from(unit) : unit;
  camera = support::scaled(camera, is_quaternion ? 4 : 3, which.random.uniform(0.5, 2.0));
  for (double& entry : camera) entry += which.random.uniform(-0.02, 0.02);
  for (const double coordinate : t) camera.push_back(coordinate + which.random.uniform(-0.1, 0.1));
  const double f = row.is_bearing() ? 1.0 : 800.0;
  camera.insert(camera.end(), {f, row.is_bearing() ? 0.0 : 320.0, row.is_bearing() ? 0.0 : 240.0});

  std::vector<double> points;
  std::vector<double> observations;
  for (std::size_t i = 0; i < num_points; ++i) {
    const std::vector<double> p = {which.random.uniform(-2, 2), which.random.uniform(-2, 2),
                                   which.random.uniform(4, 9)};
    for (std::size_t k = 0; k < 3; ++k) points.push_back(t[k] + R[k][0] * p[0] + R[k][1] * p[1] + R[k][2] * p[2]);
    if (row.is_bearing()) {
      observations.insert(observations.end(), p.begin(), p.end());
    } else {
      observations.push_back(f * p[0] / p[2] + 320.0 + which.random.uniform(-1, 1));
      observations.push_back(f * p[1] / p[2] + 240.0 + which.random.uniform(-1, 1));
    }
  }
  support::Fake_call call(type, num_points);
  call.with(1, support::fake_row(camera)).with(2, {3, num_points, points});
  call.with(3, {static_cast<std::size_t>(row.observation_size), num_points, observations});
  call.with(4, support::fake_row({1, 0, -1e9, 0}));
  return call.keep(5);
}

class MinimumNorm : public testing::TestWithParam<int> {
 protected:
  const kelvane::Rotation_type& row = *kelvane::find_rotation_type(GetParam());
  const std::size_t null_size = row.representation == kelvane::Representation::quaternion ? 4 : 3;

  void expect_orthogonal_step(std::size_t num_points, std::uint64_t number) const {
    Case which(seed + num_points, number);
    SCOPED_TRACE(which);
    const support::Fake_call call = random_call(GetParam(), num_points, which);
    const auto arguments = call.check();
    const kelvane::contract::Problem problem(arguments);
    const std::vector<double> x = kelvane::contract::refine(arguments, kelvane::contract::Settings(arguments));
    double product = 0.0;
    double null_length = 0.0;
    double step_length = 0.0;
    for (std::size_t d = 0; d < x.size(); ++d) {
      const double step = x[d] - problem.x0[d];
      step_length = std::hypot(step_length, step);
      if (d >= null_size) continue;
      product += step * problem.x0[d];
      null_length = std::hypot(null_length, problem.x0[d]);
    }
    ASSERT_GT(step_length, 1e-4) << "no step to look at";
    // What the sum of start and step, rounded to the start's last digit, cannot show.
    const double rounding = 1e-15 * null_length * null_length;
    EXPECT_LE(std::abs(product), orthogonality * null_length * step_length + rounding) << num_points << " points";
  }
};

INSTANTIATE_TEST_SUITE_P(FreeLengths, MinimumNorm, testing::Values(1, 2, 11, 12));

TEST_P(MinimumNorm, IsOrthogonalToTheNullVectorFromFourPointsToAHundredThousand) {
  for (const std::size_t num_points : {4U, 6U, 20U, 100U, 300U, 1000U, 3000U, 10000U, 100000U}) {
    const std::uint64_t num_cases = support::count_for_round(num_points < 1000 ? 40 : num_points < 50000 ? 10 : 2);
    for (std::uint64_t number = 0; number < num_cases; ++number) expect_orthogonal_step(num_points, number);
  }
}

}  // namespace
