// SPDX-License-Identifier: BSD-3-Clause
// Directions in which a pose is known.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "pose_refinement/free_motion.h"
#include "pose_refinement/motion.h"
#include "support/flat_scenes.h"
#include "support/matchers.h"
#include "support/motions.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Pose;
using kelvane::Refine_problem;
using kelvane::Refine_result;
using support::Refined_problem;

class Fixed : public testing::TestWithParam<bool> {
 protected:
  Refined_problem scene(std::size_t n = 30) {
    support::Random random(5);
    return support::random_scene(random, n, GetParam(), GetParam() ? 1e-3 : 1.0);
  }
};

INSTANTIATE_TEST_SUITE_P(Either, Fixed, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "Directions" : "Pixels"; });

TEST_P(Fixed, DirectionsStayAsTheyAre) {
  const Refined_problem problem = scene();
  const std::vector<std::vector<int>> cases = {{5}, {0, 1}, {3, 4, 5}, {0, 1, 2}, {0, 1, 5}, {2}, {0, 1, 2, 3, 4}};
  for (const std::vector<int>& which : cases) {
    SCOPED_TRACE(testing::PrintToString(which));
    const std::vector<double> fixed = support::axes(which);
    Refine_problem some = problem.view();
    some.fixed = fixed;
    const Refine_result found = refine(some);
    ASSERT_GT(static_cast<int>(found.exit), 0) << found.message;
    EXPECT_LT(found.after.robust, found.before.robust);
    for (const int axis : which) {
      if (axis < 3) continue;
      EXPECT_EQ(found.pose.centre[axis - 3], problem.start.centre[axis - 3]);
      for (int j = 0; j < 6; ++j) EXPECT_EQ(found.covariance[axis][j], 0.0);
    }
    if (which[0] == 0 && which.size() == 2) {  // gravity: the world's z seen by the camera
      for (int j = 0; j < 3; ++j) EXPECT_NEAR(found.pose.rotation[2][j], problem.start.rotation[2][j], 1e-15);
    }
    if (which.size() >= 3 && which[2] == 2) {
      EXPECT_LT(angle_between(found.pose, problem.start), 1e-15);  // of the rotation next to the start
    }
  }
}

/// Two directions of six fixed, which are none of the axes: the pose stays on the exponential of what is across, and
/// there the cost is least.
TEST_P(Fixed, WhatIsFreeIsAtItsLeast) {
  const Refined_problem problem = scene();
  const std::vector<double>& fixed = support::oblique;
  Refine_problem some = problem.view();
  some.fixed = fixed;
  const Refine_result found = refine(some);
  ASSERT_GT(static_cast<int>(found.exit), 0) << found.message;
  const std::vector<double> x = support::motion_between(problem.start, found.pose);
  EXPECT_GT(support::product(x.data(), x.data()), 1e-3);
  EXPECT_NEAR(support::product(x.data(), &fixed[0]), 0.0, 1e-14);
  EXPECT_NEAR(support::product(x.data(), &fixed[6]), 0.0, 1e-14);
  kelvane::Refine_options still;
  still.max_iterations = 0;
  const auto cost_at = [&](const std::vector<double>& motion) {
    Refine_problem there = problem.view();
    there.start = support::moved_in_world(problem.start, motion);
    return std::pow(refine(there, still).before.robust, 2);
  };
  support::Random random(10);
  for (int round = 0; round < 8; ++round) {
    std::vector<double> s = random.vector_in_cube(6, 1.0);
    support::remove_parts(fixed, s);
    const double step = 1e-4;
    std::vector<double> sides[2] = {x, x};
    for (std::size_t i = 0; i < 6; ++i) {
      sides[0][i] += step * s[i];
      sides[1][i] -= step * s[i];
    }
    const double first = cost_at(sides[0]);
    const double other = cost_at(sides[1]);
    const double bend = first + other - 2.0 * cost_at(x);
    EXPECT_GT(bend, 0.0);
    EXPECT_LT(std::abs(first - other), 5e-3 * bend) << round;
  }
}

TEST(FixedDirections, ThatCannotBeAreRefused) {
  support::Random random(9);
  const Refined_problem problem = support::random_scene(random, 10, false, 1.0);
  const auto told_of = [&](const std::vector<double>& fixed) {
    Refine_problem some = problem.view();
    some.fixed = fixed;
    return support::caught_by([&] { refine(some); }).text;
  };
  EXPECT_EQ(told_of(support::axes({0, 1, 2, 3, 4, 5})),
            "fixed leaves nothing to refine: all six directions are fixed.");
  EXPECT_EQ(told_of({1, 2, 3}), "fixed must be 6 numbers for each direction; there are 3.");
  EXPECT_EQ(told_of({1, 2, 3, 4, NAN, 6}), "fixed[4] is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told_of({0, 0, 0, 0, 0, 0}), "fixed: a direction of length 0 fixes nothing.");
}

/// The words of C++ are axes.
TEST(FixedDirections, HasNamesForTheUsualDirections) {
  EXPECT_EQ(kelvane::fixed_rotation, support::axes({0, 1, 2}));
  EXPECT_EQ(kelvane::fixed_gravity, support::axes({0, 1}));
  EXPECT_EQ(kelvane::fixed_centre, support::axes({3, 4, 5}));
  EXPECT_EQ(kelvane::fixed_height, support::axes({5}));
}

/// The noise that is told does not depend on how many directions are free.
TEST(FixedDirections, LeavesTheNoiseAsItIs) {
  for (const std::vector<int>& which : {std::vector<int>{}, {3, 4, 5}, {0, 1, 2, 3, 4}}) {
    for (const kelvane::Loss loss : {kelvane::Loss::none, kelvane::Loss::huber}) {
      support::Random random(12);
      kelvane::Refine_options options;
      options.loss = loss;
      double square = 0.0;
      constexpr int num_rounds = 2000;
      for (int round = 0; round < num_rounds; ++round) {
        Refined_problem problem = support::random_scene(random, 12, false, 1.0);
        problem.start = support::pose_of_scene;
        const std::vector<double> fixed = support::axes(which);
        Refine_problem some = problem.view();
        some.fixed = fixed;
        square += std::pow(refine(some, options).noise_sigma, 2) / num_rounds;
      }
      EXPECT_NEAR(std::sqrt(square), 1.0, loss == kelvane::Loss::none ? 0.02 : 0.05) << which.size();
    }
  }
}

/// Those that a flat target is seen from as well, mirrored behind it or tilted the other way, keep what is fixed.
TEST(FixedDirections, StayAsTheyAreAtEveryPoseThatIsTried) {
  const std::vector<double> oblique_shift = {0, 0, 0, 0, 0.6, 0.8};
  for (const bool is_behind : {false, true}) {
    SCOPED_TRACE(is_behind);
    support::Random random(14);
    Refined_problem problem = support::flat_scene(random, 20, 20.0, 0.6, 0.5);
    if (is_behind) problem.start = support::behind_target(problem.start);
    Refine_problem some = problem.view();
    some.fixed = oblique_shift;
    double largest_turn = 0.0;
    kelvane::Refine_options options;
    options.watch = [&](const kelvane::Refine_step& step, std::size_t /*number*/) {
      const support::Motion x = support::motion_between(problem.start, step.pose);
      EXPECT_NEAR(support::product(x.data(), oblique_shift.data()), 0.0, 1e-12);
      largest_turn = std::max(largest_turn, step.turn);
      return false;
    };
    refine(some, options);
    EXPECT_GT(largest_turn, is_behind ? 3.0 : 0.5);  // to the other pose
    some.fixed = kelvane::fixed_height;
    const Refine_result found = refine(some);
    EXPECT_EQ(found.pose.centre[2], problem.start.centre[2]);
    if (is_behind) continue;
    ASSERT_TRUE(found.alternative.has_value()) << found.message;
    EXPECT_EQ(found.alternative->pose.centre[2], problem.start.centre[2]);
  }
}

/// Free_motion for all but some directions, six numbers each.
kelvane::Free_motion motion_along(const support::Motion& free) {
  support::Motion across;
  for (int axis = 0; axis < 6; ++axis) {
    support::Motion x = support::axes({axis});
    support::remove_parts(free, x);
    across.insert(across.end(), x.begin(), x.end());
  }
  return {across, support::pose_of_scene, {}};
}

/// Of so much of each free direction.
std::vector<double> twist_of(const kelvane::Free_motion& motion, const Pose& pose, const std::vector<double>& dy) {
  double T[6][6];
  std::vector<double> twist(6, 0.0);
  motion.twists(pose, T);
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < dy.size(); ++j) twist[i] += T[i][j] * dy[j];
  }
  return twist;
}

Pose moved(const kelvane::Free_motion& motion, const Pose& pose, const std::vector<double>& dy) {
  return motion.moved_by(pose, twist_of(motion, pose, dy).data());
}

/// A turn coupled with a shift, step by step through more than a whole one.
TEST(FixedDirections, AreLeftAloneBeyondAWholeTurn) {
  constexpr double step = 0.1;
  const support::Motion free = {0.2, 1.0, -0.3, 0.1, 0.4, 0.2};
  const kelvane::Free_motion motion = motion_along(free);
  ASSERT_EQ(motion.num_free(), 1U);
  const double length = std::sqrt(support::product(free.data(), free.data()));
  const Pose& start = support::pose_of_scene;
  const auto pose_after = [&](double y) {
    support::Motion x = free;
    for (double& entry : x) entry *= y / length;
    return support::moved_in_world(start, x);
  };
  Pose pose = moved(motion, start, {step});
  const double side = length_between(pose, pose_after(step)) < 1e-3 ? 1.0 : -1.0;  // of the basis
  for (int k = 2; k < 80; ++k) {
    pose = moved(motion, pose, {step});
    ASSERT_LT(angle_between(pose, pose_after(side * k * step)), 1e-12) << k;
    ASSERT_LT(length_between(pose, pose_after(side * k * step)), 1e-12) << k;
  }
}

/// Turns about different axes do not add up, what they are the exponential of does; and a short step is its twist.
TEST(FixedDirections, LeaveStepsThatAddUp) {
  const Pose& start = support::pose_of_scene;
  const kelvane::Free_motion motion(support::oblique, start, {});
  ASSERT_EQ(motion.num_free(), 4U);
  support::Random random(13);
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    const std::vector<double> a = random.vector_in_cube(4, 0.7);
    const std::vector<double> b = random.vector_in_cube(4, 0.7);
    const Pose there = moved(motion, start, a);
    const support::Motion first = support::motion_between(start, there);
    const support::Motion second = support::motion_between(start, moved(motion, start, b));
    const support::Motion both = support::motion_between(start, moved(motion, there, b));
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(both[i], first[i] + second[i], 1e-12);
    constexpr double size = 1e-6;
    const std::vector<double> little = random.vector_in_cube(4, size);
    const Pose next = moved(motion, there, little);
    const Pose expected = moved_by(there, twist_of(motion, there, little).data());
    EXPECT_LT(angle_between(next, expected), 1e-5 * size);
    EXPECT_LT(length_between(next, expected), 1e-5 * size);
  }
}

}  // namespace
