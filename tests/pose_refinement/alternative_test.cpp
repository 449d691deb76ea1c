// SPDX-License-Identifier: BSD-3-Clause
// The other tilt of a flat target: when it is looked for, and what is told of it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "pose_refinement/motion.h"
#include "pose_refinement/refinement.h"
#include "pose_refinement/robust_loss.h"
#include "support/flat_scenes.h"
#include "support/long_round.h"

namespace {

using kelvane::Pose;
using kelvane::Refine_exit;
using kelvane::Refine_result;
using support::flat_scene;
using support::Refined_problem;

constexpr std::size_t num_points = 20;

std::size_t num_behind(const Refined_problem& problem, const Pose& pose) {
  std::size_t num = 0;
  for (const double* X = problem.points.data(); X != problem.points.data() + problem.points.size(); X += 3) {
    double depth = 0.0;
    for (int i = 0; i < 3; ++i) depth += pose.rotation[i][2] * (X[i] - pose.centre[i]);
    num += depth <= 0.0 ? 1U : 0U;
  }
  return num;
}

/// By the model itself.
double rms_of(const Refined_problem& problem, const Pose& pose, const kelvane::Robust_loss& loss) {
  const std::size_t n = problem.points.size() / 3;
  double cost = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::vector<double> seen = support::seen(problem.camera, pose, &problem.points[3 * i]);
    cost += loss.cost(std::hypot(problem.observations[2 * i] - seen[0], problem.observations[2 * i + 1] - seen[1]));
  }
  return std::sqrt(cost / static_cast<double>(n));
}

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

/// Near the camera the other tilt may turn most points to its back, where no camera sees them.
TEST(Alternative, IsInFrontOfTheCamera) {
  support::Random random(31);
  int num_found = 0;
  const int num_scenes = static_cast<int>(support::count_for_round(1500));
  for (int scene = 0; scene < num_scenes; ++scene) {
    const double distance = random.magnitude(-0.6, 1.6);
    const double noise = random.magnitude(-2.0, 1.5);
    const Refined_problem problem = flat_scene(random, num_points, distance, random.uniform(0.0, 1.5), noise);
    const Refine_result found = refine(problem.view());
    if (!found.alternative) continue;
    ++num_found;
    EXPECT_LE(2 * num_behind(problem, found.alternative->pose), num_points) << scene;
  }
  EXPECT_GT(num_found, 100 * num_scenes / 1500);
}

/// Held behind the target by a prior it is not tilted: that is no pose to tell a doubt of.
TEST(Alternative, IsNotLookedForBehindTheCamera) {
  support::Random random(32);
  std::vector<double> information(36, 0.0);
  for (std::size_t i = 3; i < 6; ++i) information[7 * i] = 1e8;
  Refined_problem problem = flat_scene(random, num_points, 20.0, 0.6, 0.5);
  problem.start = support::behind_target(refine(problem.view()).pose);  // nothing is better there
  kelvane::Refine_problem view = problem.view();
  view.prior.pose = problem.start;
  view.prior.information = information;
  const kelvane::Refine_options options;
  kelvane::Refinement refinement(view, options);
  while (!refinement.run(kelvane::Deadline::min())) {
    const std::vector<double> state = refinement.state();
    EXPECT_FALSE(state[7] > 0.0 && state[8] == 1.0) << "a descent from the other tilt";
  }
  EXPECT_EQ(refinement.result().exit, Refine_exit::behind);
}

/// Who stops on the way to the other tilt has no second minimum, but the better pose of both.
TEST(Alternative, IsNoneWhereItWasNotReached) {
  support::Random random(33);
  const Refined_problem problem = flat_scene(random, num_points, 40.0, 0.6, 0.5);
  std::size_t num_calls = 0;
  std::size_t last = ~std::size_t{0};
  kelvane::Refine_options options;
  options.watch = [&](const kelvane::Refine_step& /*step*/, std::size_t number) {
    num_calls = number + 1;
    return number == last;
  };
  const Refine_result whole = refine(problem.view(), options);
  ASSERT_TRUE(whole.alternative.has_value());
  const std::size_t num_steps = num_calls;
  double rms = HUGE_VAL;
  for (last = 0; last + 1 < num_steps; ++last) {
    const Refine_result found = refine(problem.view(), options);
    EXPECT_EQ(found.exit, Refine_exit::stopped) << last;
    EXPECT_FALSE(found.alternative.has_value()) << last;
    EXPECT_LE(found.after.robust, rms * (1.0 + 1e-13)) << last;
    rms = found.after.robust;
  }
  EXPECT_NEAR(rms, whole.after.robust, 1e-9);
}

/// Three points leave up to four poses, all of which fit exactly: rounding makes none of them better.
TEST(Alternative, OfAnExactFitIsAsGood) {
  support::Random random(34);
  int num_exact = 0;
  const int num_scenes = static_cast<int>(support::count_for_round(300));
  for (int scene = 0; scene < num_scenes; ++scene) {
    SCOPED_TRACE(scene);
    Refined_problem problem = flat_scene(random, 3, random.uniform(1.0, 5.0), random.uniform(0.1, 1.1), 0.0);
    const Refine_result found = refine(problem.view());
    if (!found.alternative || found.alternative->rms > 1e-9) continue;
    ++num_exact;
    EXPECT_EQ(found.exit, Refine_exit::ambiguous);
    problem.start = found.pose;
    EXPECT_LT(angle_between(refine(problem.view()).pose, found.pose), 1e-6) << "not the other one";
  }
  EXPECT_GT(num_exact, 30 * num_scenes / 300);
}

/// Both poses are told at the same scale of the loss, which may come down on the way to the other tilt.
TEST(Alternative, IsMeasuredAsTheResultIs) {
  support::Random random(35);
  int num_found = 0;
  const int num_scenes = static_cast<int>(support::count_for_round(400));
  for (int scene = 0; scene < num_scenes; ++scene) {
    SCOPED_TRACE(scene);
    const std::size_t n = scene % 2 == 0 ? 5 : num_points;
    const double distance = random.magnitude(0.0, 1.6);
    Refined_problem problem = flat_scene(random, n, distance, random.uniform(0.0, 1.5), random.magnitude(-2.0, 1.5));
    for (std::size_t i = 0; i < n / 5; ++i) problem.observations[2 * i] += random.uniform(-80.0, 80.0);
    kelvane::Refine_options options;
    options.loss = static_cast<kelvane::Loss>(1 + scene % 3);
    const Refine_result found = refine(problem.view(), options);
    if (!found.alternative) continue;
    ++num_found;
    EXPECT_LE(found.after.robust, found.alternative->rms + 1e-6);  // the rounding of pixels
    const kelvane::Robust_loss loss{options.loss, found.loss_scale};
    EXPECT_NEAR(rms_of(problem, found.pose, loss) / found.after.robust, 1.0, 1e-6);
    EXPECT_NEAR(rms_of(problem, found.alternative->pose, loss) / found.alternative->rms, 1.0, 1e-6);
  }
  EXPECT_GT(num_found, 100 * num_scenes / 400);
}

}  // namespace
