// SPDX-License-Identifier: BSD-3-Clause
// The linear problem of a pose: equal bits of all instruction sets, extreme sizes, and what is not finite.
#include "camera_pose/pose_system.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "support/instruction_sets.h"
#include "support/matchers.h"
#include "support/reference_scenes.h"

namespace {

using kelvane::Instruction_set;
using support::Random;

constexpr std::uint64_t seed = 71633;
constexpr int all_types[] = {0, 1, 2, 3, 10, 11, 12, -1, -2, -3};

/// The data of a call, and steps and errors at its start.
struct Pose {
  reference::Call call;
  std::vector<double> x, differences, target;

  Pose(int type, std::size_t num_points, Random& random) : call(reference::random_call(type, num_points, random)) {
    x.assign(call.parameters.begin(), call.parameters.end() - 3);
    differences.assign(x.size(), 0.01);
    target = call.observations;
  }

  std::size_t num_points() const { return call.points.size() / 3; }

  /// Error at x, the step there, the error behind the step, the step there.
  std::vector<double> course(bool is_analytic, Instruction_set set = kelvane::best_instruction_set()) const {
    const kelvane::Rotation_type& type = *kelvane::find_rotation_type(*call.type);
    const kelvane::Measurements data(call.points.data(), target.data(), static_cast<std::size_t>(type.observation_size),
                                     call.weights.empty() ? nullptr : call.weights.data(),
                                     static_cast<std::size_t>(type.num_representations), num_points());
    const double* k = &call.parameters[x.size()];
    kelvane::Pose_system system({&type, {k[0], k[1], k[2]}, &data, is_analytic ? nullptr : differences.data()}, set);
    std::vector<double> result;
    std::vector<double> place = x;
    for (const bool is_first : {true, false}) {
      result.push_back(system.linearise(place.data(), is_first));
      std::vector<double> dx(x.size());
      system.step(dx.data());
      for (std::size_t d = 0; d < dx.size(); ++d) place[d] += dx[d];
      result.insert(result.end(), dx.begin(), dx.end());
    }
    result.push_back(system.squared_error(place.data()));
    return result;
  }
};

void weigh(Pose& pose, Random& random) {
  pose.call.weights.clear();
  while (pose.call.weights.size() < reference::num_equations(pose.call)) {
    pose.call.weights.push_back(random.uniform(0.2, 2.0));
  }
}

bool are_same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

class PoseSystemBits : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, PoseSystemBits, testing::ValuesIn(kelvane::instruction_sets),
                         support::name_of_instruction_set);

TEST_P(PoseSystemBits, AreThoseOfTheSmallestSet) {
  for (const int type : all_types) {
    for (const std::size_t num_points : {4U, 8U, 13U, 81U, 121U, 500U}) {
      for (const bool is_weighted : {false, true}) {
        for (const bool is_analytic : {true, false}) {
          Random random(seed + num_points);
          Pose pose(type, num_points, random);
          if (is_weighted) weigh(pose, random);
          EXPECT_TRUE(
              are_same_bits(pose.course(is_analytic, GetParam()), pose.course(is_analytic, Instruction_set::sse2)))
              << "type " << type << ", " << num_points << " points";
        }
      }
    }
  }
}

class PoseSystem : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Types, PoseSystem, testing::ValuesIn(all_types));

/// Steps in lengths follow the unit of the world, those in angles do not.
TEST_P(PoseSystem, FollowsTheUnitOfTheWorld) {
  const kelvane::Rotation_type& type = *kelvane::find_rotation_type(GetParam());
  if (type.id == 3 || type.is_bearing()) {
    GTEST_SKIP() << "rows of type 3 are by parameters, and the observations of bearings are lengths as well";
  }
  Random random(seed);
  const Pose pose(GetParam(), 30, random);
  const std::vector<double> expected = pose.course(true);
  const std::size_t n = pose.x.size();
  for (const int power : {-900, -460, -300, -40, 40, 300, 460, 900}) {
    Pose scaled = pose;
    for (double& coordinate : scaled.call.points) coordinate = std::scalbn(coordinate, power);
    for (std::size_t d = n - 3; d < n; ++d) scaled.x[d] = std::scalbn(scaled.x[d], power);
    std::vector<double> course = scaled.course(true);
    for (const std::size_t first : {std::size_t{1}, n + 2}) {
      for (std::size_t d = n - 3; d < n; ++d) course[first + d] = std::scalbn(course[first + d], -power);
    }
    EXPECT_TRUE(support::is_close(course, expected, 1e-10)) << "2^" << power;
  }
}

TEST_P(PoseSystem, HasNoStepWhereSomethingIsNotFinite) {
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    for (const bool is_analytic : {true, false}) {
      for (int what = 0; what < 3; ++what) {
        Random random(seed);
        Pose pose(GetParam(), 30, random);
        if (what == 0) pose.target[2] = bad;
        if (what == 1) pose.call.points[7] = bad;
        if (what == 2) pose.x.back() = bad;
        const std::vector<double> course = pose.course(is_analytic);
        for (std::size_t d = 0; d < pose.x.size(); ++d) {
          EXPECT_TRUE(std::isnan(course[1 + d])) << "kind " << what << (is_analytic ? "" : ", differences");
        }
      }
    }
  }
}

TEST_P(PoseSystem, HasAZeroStepWithoutWeight) {
  Random random(seed);
  Pose pose(GetParam(), 30, random);
  pose.call.weights.assign(reference::num_equations(pose.call), 0.0);
  const std::vector<double> course = pose.course(true);
  for (std::size_t d = 0; d < pose.x.size(); ++d) EXPECT_EQ(course[1 + d], 0.0);
  EXPECT_GT(course[0], 0.0) << "the squared error knows no weights";
}

TEST_P(PoseSystem, GivesTheErrorOfBothWaysToThePrediction) {
  Random random(seed);
  const Pose pose(GetParam(), 37, random);
  const kelvane::Rotation_type& type = *kelvane::find_rotation_type(GetParam());
  const kelvane::Measurements data(pose.call.points.data(), pose.target.data(),
                                   static_cast<std::size_t>(type.observation_size), nullptr, 1, pose.num_points());
  const double* k = &pose.call.parameters[pose.x.size()];
  kelvane::Pose_system system({&type, {k[0], k[1], k[2]}, &data, nullptr});
  const double error = system.linearise(pose.x.data(), true);
  EXPECT_NEAR(system.squared_error(pose.x.data()), error, 1e-12 * error);
}

}  // namespace
