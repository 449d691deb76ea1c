// SPDX-License-Identifier: BSD-3-Clause
// Wrong input is told by a sentence, and what cannot be found is said to be so.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "pose_refinement/refine.h"
#include "support/flat_scenes.h"
#include "support/matchers.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Loss;
using kelvane::Refine_exit;
using kelvane::Refine_options;
using kelvane::Refine_result;
using support::Refined_problem;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

Refined_problem good_problem(bool sees_directions = false) {
  support::Random random(1);
  return support::random_scene(random, 10, sees_directions, 0.0);
}

/// What refine() says about a good problem after a change.
std::string told_of(const std::function<void(Refined_problem&, Refine_options&)>& change,
                    bool sees_directions = false) {
  Refined_problem problem = good_problem(sees_directions);
  Refine_options options;
  change(problem, options);
  return support::caught_by([&] { refine(problem.view(), options); }).text;
}

TEST(HostileProblems, NumbersThatAreMissingOrTooMany) {
  EXPECT_EQ(told_of([](auto& p, auto&) { p.points.pop_back(); }), "points: 29 numbers are no multiple of 3.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.observations.push_back(1.0); }),
            "observations must be 20 numbers, 2 for each of the 10 points; there are 21.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.observations.pop_back(); }, true),
            "observations must be 30 numbers, 3 for each of the 10 points; there are 29.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.weights.assign(11, 1.0); }),
            "weights must be none, 10 (one for each point) or 20 (one for each observed number); there are 11.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.points.resize(6), p.observations.resize(4); }),
            "Three points are the least that determine a pose; there are 2.");
}

TEST(HostileProblems, NumbersOutOfRange) {
  EXPECT_EQ(told_of([](auto& p, auto&) { p.points[7] = nan; }), "points[7] is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.observations[19] = -infinity; }),
            "observations[19] is -Inf. NaN is for what was not seen.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.weights.assign(10, 1.0), p.weights[3] = -0.5, p.weights[8] = -1.25; }),
            "weights must not be negative; the least is -1.25.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.weights.assign(20, 1.0), p.weights[13] = infinity; }),
            "weights[13] is Inf. All of it must be finite numbers.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.weights.assign(10, 0.0), p.weights[3] = p.weights[5] = 1.0; }),
            "Three points with a weight above 0 and an observation are the least that determine a pose; there are 2.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.observations[6] = p.observations[7] = p.observations[8] = 0.0; }, true),
            "observation of point 2 has the length 0: a bearing needs a direction.");
  EXPECT_EQ(told_of([](auto& p, auto&) {
              p.points.assign(30, 0.0), p.start.centre[0] = 0.0, p.start.centre[1] = 0.0, p.start.centre[2] = 0.0;
            }),
            "All points lie at the camera centre.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.points[0] = 1e200; }),
            "The points are too far from where the camera starts: the squares of their distances are not finite.");
}

TEST(HostileProblems, PosesCamerasAndOptions) {
  EXPECT_EQ(told_of([](auto& p, auto&) { p.start.rotation[1][2] = nan; }),
            "pose.rotation[5] is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.start.rotation[0][0] *= 1.1; }),
            "pose.rotation is not a rotation: R' * R differs from the identity by 0.17. A scale must be divided out "
            "first.");
  EXPECT_EQ(told_of([](auto& p, auto&) {
              for (double& entry : p.start.rotation[2]) entry = -entry;
            }),
            "pose.rotation has the determinant -1: it mirrors. Both frames must be right-handed; negate the axis that "
            "points the other way.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.camera.fy = 0.0; }), "A focal length of 0 sees everything in one place.");
  EXPECT_EQ(told_of([](auto& p, auto&) { p.camera.skew = nan; }),
            "camera.skew is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told_of([](auto&, auto& o) { o.max_iterations = -1; }),
            "options.max_iterations must be a number of 0 or more.");
  EXPECT_EQ(told_of([](auto&, auto& o) { o.step_tolerance = nan; }),
            "options.step_tolerance must be a number of 0 or more.");
  EXPECT_EQ(told_of([](auto&, auto& o) { o.loss_scale = infinity; }),
            "options.loss_scale must be a number above 0 and finite.");
}

/// From the other side a flat target looks the same: refine() finds the side in front, and says so where it cannot.
TEST(HostileProblems, APoseBehindTheTargetIsMirrored) {
  Refined_problem problem = good_problem();
  const auto look = [&problem](const kelvane::Pose& pose) {
    problem.observations.clear();
    for (std::size_t i = 0; i < problem.points.size(); i += 3) {
      const auto pixel = support::seen(problem.camera, pose, &problem.points[i]);
      problem.observations.insert(problem.observations.end(), pixel.begin(), pixel.end());
    }
  };
  for (std::size_t i = 2; i < problem.points.size(); i += 3) problem.points[i] = 0.0;
  look(support::pose_of_scene);
  // The mirrored pose, near which an iteration stays: t and R with the sign of z turned, and p with that of all.
  kelvane::Pose behind = support::pose_of_scene;
  behind.centre[2] = -behind.centre[2];
  for (int j = 0; j < 3; ++j) {
    behind.rotation[0][j] = -behind.rotation[0][j];
    behind.rotation[1][j] = -behind.rotation[1][j];
  }
  problem.start = behind;
  problem.start.centre[0] += 0.1;
  const Refine_result result = refine(problem.view());
  EXPECT_GT(static_cast<int>(result.exit), 0) << result.message;
  EXPECT_EQ(result.num_behind, 0U);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(result.pose.centre[i], support::pose_of_scene.centre[i], 1e-9);

  // What was seen from behind by no camera, and is not flat: nothing else explains it.
  problem = good_problem();
  look(behind);
  problem.start = behind;
  problem.start.centre[0] += 0.001;
  const Refine_result other = refine(problem.view());
  EXPECT_EQ(other.exit, Refine_exit::behind);
  EXPECT_EQ(other.num_behind, 10U);
  EXPECT_LT(other.after.plain, 1e-9);  // what the first descent found
  EXPECT_NE(other.message.find("behind the camera"), std::string::npos) << other.message;
}

/// Turned by half a turn, a camera that sees directions does the same with its back to the target.
TEST(HostileProblems, DirectionsHaveNoBack) {
  support::Random random(3);
  Refined_problem problem = support::flat_scene(random, 20, 20.0, 0.6, 1e-3, true);
  const Refine_result expected = refine(problem.view());
  for (std::size_t i = 0; i < problem.observations.size(); ++i) problem.observations[i] *= i % 3 == 0 ? 1.0 : -1.0;
  for (auto& row : problem.start.rotation) row[1] = -row[1], row[2] = -row[2];
  const Refine_result found = refine(problem.view());
  EXPECT_EQ(found.exit, expected.exit);
  EXPECT_NEAR(found.after.robust / expected.after.robust, 1.0, 1e-9);
  ASSERT_TRUE(expected.alternative && found.alternative);
  EXPECT_NEAR(found.alternative->rms / expected.alternative->rms, 1.0, 1e-9);
}

TEST(HostileProblems, AStartWithoutACostIsTold) {
  Refined_problem problem = good_problem();
  problem.points[3 * 6] = problem.start.centre[0] + problem.start.rotation[0][0];
  problem.points[3 * 6 + 1] = problem.start.centre[1] + problem.start.rotation[1][0];
  problem.points[3 * 6 + 2] = problem.start.centre[2] + problem.start.rotation[2][0];
  for (const Loss loss : {Loss::none, Loss::huber, Loss::cauchy, Loss::tukey}) {
    Refine_options options;
    options.loss = loss;
    const Refine_result result = refine(problem.view(), options);
    EXPECT_EQ(result.exit, Refine_exit::no_cost);
    EXPECT_EQ(result.message.find("Not refined: at the start a point lies in the plane of the camera centre, and its "
                                  "prediction is not finite: point 6."),
              0U)
        << result.message;
  }
  problem = good_problem();
  problem.observations[4] = 1e200;
  const Refine_result result = refine(problem.view());
  EXPECT_EQ(result.exit, Refine_exit::no_cost);
  EXPECT_NE(result.message.find("the residual of point 2, 1e+200, is too large"), std::string::npos) << result.message;
}

TEST(HostileProblems, PointsThatDetermineNoPoseAreTold) {
  Refined_problem problem = good_problem();
  for (std::size_t i = 3; i < problem.points.size(); ++i) problem.points[i] = problem.points[i - 3];
  for (std::size_t i = 2; i < problem.observations.size(); ++i) problem.observations[i] = problem.observations[i - 2];
  const Refine_result result = refine(problem.view());
  EXPECT_EQ(result.exit, Refine_exit::undetermined);
  EXPECT_EQ(result.covariance[2][4], infinity);
  EXPECT_NE(result.message.find("some direction of motion leaves all predictions"), std::string::npos);
}

TEST(HostileProblems, AWatchSeesEveryStepAndStopsIt) {
  const Refined_problem problem = good_problem();
  Refine_options options;
  std::vector<std::size_t> numbers;
  options.watch = [&numbers](const kelvane::Refine_step& step, std::size_t number) {
    numbers.push_back(number);
    EXPECT_EQ(step.turn == 0.0, number == 0);
    return number == 2;
  };
  const Refine_result result = refine(problem.view(), options);
  EXPECT_EQ(numbers, (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_EQ(result.exit, Refine_exit::stopped);
  EXPECT_EQ(result.history.size(), 3U);
  options.watch = [](const kelvane::Refine_step&, std::size_t number) -> bool {
    if (number == 1) throw std::runtime_error("mine");
    return false;
  };
  EXPECT_EQ(support::caught_by([&] { refine(problem.view(), options); }).text, "mine");
}

/// Noise as large as the picture bends the cost so much that whole steps would leap over its minimum again and again.
TEST(HostileProblems, NoiseAllOverThePictureHasAMinimum) {
  constexpr int num_problems = 200;
  int num_converged = 0;
  for (int seed = 0; seed < num_problems; ++seed) {
    support::Random random(static_cast<std::uint64_t>(seed));
    Refined_problem problem = support::random_scene(random, 10, false, 1.0);
    for (double& coordinate : problem.observations) coordinate += random.uniform(-800.0, 800.0);
    const Refine_exit exit = refine(problem.view()).exit;
    num_converged += static_cast<int>(exit) > 0 || exit == Refine_exit::ambiguous ? 1 : 0;
  }
  EXPECT_GT(num_converged, num_problems - 5);  // 188 without halves of steps
}

TEST(HostileProblems, EveryReasonToStopIsTold) {
  support::Random random(2);
  const Refined_problem problem = support::random_scene(random, 10, false, 1.0);
  Refine_options options;
  options.max_iterations = 2;
  EXPECT_EQ(refine(problem.view(), options).exit, Refine_exit::max_iterations);
  options = {};
  options.function_tolerance = 0.5;
  EXPECT_EQ(refine(problem.view(), options).exit, Refine_exit::decrease);
  options = {};
  options.step_tolerance = 1e-3;
  const Refine_result coarse = refine(problem.view(), options);
  EXPECT_EQ(coarse.exit, Refine_exit::step);
  EXPECT_EQ(coarse.message, "Converged: the step is below step_tolerance = 0.001.");
  EXPECT_LT(coarse.history.size(), refine(problem.view()).history.size());
}

}  // namespace
