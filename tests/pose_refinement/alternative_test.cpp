// SPDX-License-Identifier: BSD-3-Clause
// The other tilt of a flat target: when it is looked for, and what is told of it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "pose_refinement/motion.h"
#include "support/flat_scenes.h"

namespace {

using kelvane::Pose;
using kelvane::Refine_exit;
using kelvane::Refine_result;
using support::flat_scene;
using support::Refined_problem;

constexpr std::size_t num_points = 20;

/// From the wrong side of a target seen from afar the right one is found, and the doubt is told.
TEST(Alternative, OfATargetFarAwayFitsAsWell) {
  support::Random random(22);
  const Refined_problem problem = flat_scene(random, num_points, 40.0, 0.6, 0.5);
  const Refine_result found = refine(problem.view());
  EXPECT_EQ(found.exit, Refine_exit::ambiguous);
  ASSERT_TRUE(found.alternative.has_value());
  EXPECT_NE(found.message.find("tilted the other way, fits as well: RMS"), std::string::npos) << found.message;
  Refined_problem other = problem;
  other.start = found.alternative->pose;
  const Refine_result again = refine(other.view());
  EXPECT_EQ(again.exit, Refine_exit::ambiguous);
  EXPECT_LT(angle_between(again.pose, found.pose), 1e-7);
  EXPECT_LT(angle_between(again.alternative->pose, found.alternative->pose), 1e-7);
}

/// What stands out of the plane by a few times the noise, and not by more.
TEST(Alternative, IsLookedForWhereNoiseHidesWhatStandsOut) {
  constexpr double noise = 0.3;
  constexpr double distance = 20.0;
  for (const double thickness : {1.0, 20.0}) {  // in units of the noise as the camera sees it
    SCOPED_TRACE(thickness);
    support::Random random(23);
    int num_found = 0;
    for (int scene = 0; scene < 50; ++scene) {
      Refined_problem problem = flat_scene(random, num_points, distance, 0.6, 0.0);
      Pose truth = problem.start;  // near the target's own, and exact for what follows
      const double height = thickness * noise * distance / 800.0 / std::sin(0.6);
      problem.observations.clear();
      for (std::size_t i = 0; i < num_points; ++i) {
        problem.points[3 * i + 2] = height * support::normal(random);
        for (const double seen : support::seen(problem.camera, truth, &problem.points[3 * i])) {
          problem.observations.push_back(seen + noise * support::normal(random));
        }
      }
      num_found += refine(problem.view()).alternative.has_value() ? 1 : 0;
    }
    EXPECT_EQ(num_found, thickness == 1.0 ? 50 : 0);
  }
}

/// A point almost without weight does not decide whether a target is flat, nor does an outlier under a loss.
TEST(Alternative, IsThatOfThePointsThatCount) {
  support::Random random(26);
  const Refined_problem flat = flat_scene(random, num_points, 40.0, 0.6, 0.5);
  Refined_problem problem = flat;
  const double X[] = {0.1, 0.2, 3.0};
  problem.points.insert(problem.points.end(), X, X + 3);
  problem.observations.insert(problem.observations.end(), {400.0, 100.0});
  problem.weights.assign(num_points + 1, 1.0);
  problem.weights.back() = 1e-12;
  EXPECT_EQ(refine(problem.view()).exit, Refine_exit::ambiguous);
  problem.weights.clear();
  kelvane::Refine_options options;
  options.loss = kelvane::Loss::tukey;
  options.loss_scale = 3.0;
  EXPECT_EQ(refine(problem.view(), options).exit, Refine_exit::ambiguous);
  options.loss = kelvane::Loss::none;
  EXPECT_FALSE(refine(problem.view(), options).alternative.has_value());
}

/// Few iterations are those of the pose, not of what is told of it.
TEST(Alternative, IsFoundWhateverTheIterations) {
  support::Random random(27);
  const Refined_problem problem = flat_scene(random, num_points, 40.0, 0.6, 0.5);
  kelvane::Refine_options options;
  options.max_iterations = 8;
  const Refine_result found = refine(problem.view(), options);
  EXPECT_TRUE(found.exit == Refine_exit::ambiguous || found.exit == Refine_exit::max_iterations) << found.message;
  options.max_iterations = 20;
  EXPECT_EQ(refine(problem.view(), options).exit, Refine_exit::ambiguous);
}

/// Points on a line have no other tilt, and three with a loose tolerance no second minimum beside the first.
TEST(Alternative, IsNotTheSameMinimumAgain) {
  support::Random random(28);
  Refined_problem line = flat_scene(random, num_points, 5.0, 0.6, 0.5);
  for (std::size_t i = 0; i < num_points; ++i) line.points[3 * i + 1] = 0.0;
  EXPECT_FALSE(refine(line.view()).alternative.has_value());
  kelvane::Refine_options options;
  options.function_tolerance = 0.1;
  for (int scene = 0; scene < 50; ++scene) {
    const Refined_problem near = flat_scene(random, num_points, 1.5, 0.5, 0.5);
    const Refine_result found = refine(near.view(), options);
    if (!found.alternative) continue;
    EXPECT_GT(angle_between(found.pose, found.alternative->pose), 0.05) << scene;
  }
}

}  // namespace
