// SPDX-License-Identifier: BSD-3-Clause
// What a refinement promises, for every camera and loss.
#include "pose_refinement/refine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "support/matchers.h"
#include "support/refined_problems.h"
#include "support/tolerance.h"

namespace {

using kelvane::Loss;
using kelvane::Refine_exit;
using kelvane::Refine_options;
using kelvane::Refine_result;
using support::numbers_of;
using support::Refined_problem;

constexpr Loss all_losses[] = {Loss::none, Loss::huber, Loss::cauchy, Loss::tukey};

Refine_options with_loss(Loss loss) { return {loss}; }

bool is_converged(const Refine_result& result) { return static_cast<int>(result.exit) > 0; }

class Refine : public testing::TestWithParam<std::tuple<bool, Loss>> {
 protected:
  bool sees_directions() const { return std::get<0>(GetParam()); }
  Loss loss() const { return std::get<1>(GetParam()); }
  double noise() const { return sees_directions() ? 1e-3 : 1.0; }
  Refine_result refined(const Refined_problem& problem) const { return refine(problem.view(), with_loss(loss())); }
};

TEST_P(Refine, FindsTheTruthFromExactData) {
  for (const std::size_t n : {3U, 7U, 8U, 9U, 80U, 81U, 120U, 121U, 500U}) {
    SCOPED_TRACE(n);
    support::Random random(100 + n);
    const Refined_problem problem = support::random_scene(random, n, sees_directions(), 0.0);
    const Refine_result result = refined(problem);
    EXPECT_TRUE(is_converged(result) || (n == 3 && result.exit == Refine_exit::ambiguous)) << result.message;
    if (n > 3) {  // three points have up to four poses
      EXPECT_TRUE(support::is_close(numbers_of(result.pose), numbers_of(support::pose_of_scene), tolerance::solved));
    }
    EXPECT_LT(result.after.plain, 1e-9 * (sees_directions() ? 1.0 : 800.0));
  }
}

TEST_P(Refine, NeverGoesUphill) {
  for (std::uint64_t seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    support::Random random(200 + seed);
    Refined_problem problem = support::random_scene(random, 20, sees_directions(), 5.0 * noise());
    problem.start = support::pose_at({0.9, -0.9, 0.5}, {1.5, -1.0, -3.0});  // so far off that whole steps go too far
    Refine_options options = with_loss(loss());
    // All on one scale, from the first to the last: one so wide that it does not come down.
    options.loss_scale = 1e6 * noise();
    const Refine_result result = refine(problem.view(), options);
    bool may_jump = result.alternative.has_value();  // once, to the other tilt
    for (std::size_t k = 1; k < result.history.size(); ++k) {
      if (result.history[k].turn > support::pi / 2.0) continue;  // to the mirrored pose
      if (may_jump && result.history[k].rms > result.history[k - 1].rms * (1.0 + 1e-13)) {
        may_jump = false;
        EXPECT_LE(result.history.back().rms, result.history[k - 1].rms);
        continue;
      }
      EXPECT_LE(result.history[k].rms, result.history[k - 1].rms * (1.0 + 1e-13)) << "step " << k;
    }
    EXPECT_EQ(result.history.back().rms, result.after.robust);
  }
}

/// Odd problems: starts anywhere, points on a line or all over the place, wild noise, few iterations.
TEST_P(Refine, IsNeverWorseThanTheStart) {
  int num_starts_kept = 0;
  for (std::uint64_t seed = 0; seed < 1500; ++seed) {
    SCOPED_TRACE(seed);
    support::Random random(300 + seed);
    Refined_problem problem =
        support::random_scene(random, 3 + seed % 9, sees_directions(), noise() * random.magnitude(-16, 3));
    const double size = random.magnitude(-12.0, 1.0);
    const std::vector<double> r = random.vector_in_cube(3, size);
    problem.start = support::pose_at({0.3 + r[0], -0.5 + r[1], 0.2 + r[2]}, {0.1 + r[1], -0.2 + r[2], -4.0 + r[0]});
    if (seed % 5 == 0) problem.start = refined(problem).pose;
    if (seed % 7 == 0) {
      for (std::size_t i = 3; i < problem.points.size(); i += 3) problem.points[i] = problem.points[0];
    }
    Refine_options options = with_loss(loss());
    options.max_iterations = static_cast<int>(seed % 4);
    const Refine_result result = refine(problem.view(), options);
    if (result.exit == Refine_exit::no_cost) continue;
    EXPECT_LE(result.after.robust, result.before.robust);
    if (numbers_of(result.pose) != numbers_of(problem.start)) continue;
    ++num_starts_kept;
    EXPECT_EQ(std::tie(result.after.robust, result.after.inliers),
              std::tie(result.before.robust, result.before.inliers));
  }
  EXPECT_GT(num_starts_kept, 100);
}

/// Begun where it ended, it can only find less, and soon finds nothing: then the start comes back to the last bit, also
/// where it is a rotation but for five digits.
TEST_P(Refine, GivesBackAStartThatIsBest) {
  support::Random random(350);
  Refined_problem problem = support::random_scene(random, 25, sees_directions(), noise());
  Refine_options options = with_loss(loss());
  options.loss_scale = 2.0 * noise();
  int num_rounds = 0;
  for (std::vector<double> last; last != numbers_of(problem.start) && num_rounds < 50; ++num_rounds) {
    last = numbers_of(problem.start);
    problem.start = refine(problem.view(), options).pose;
  }
  EXPECT_LT(num_rounds, 50);
  options.max_iterations = 0;
  problem.start.rotation[0][1] += 1e-7;
  EXPECT_EQ(numbers_of(refine(problem.view(), options).pose), numbers_of(problem.start));
}

TEST_P(Refine, IsTheSameInEveryWorld) {
  support::Random random(400);
  Refined_problem problem = support::random_scene(random, 40, sees_directions(), noise());
  const Refine_result here = refined(problem);
  constexpr double unit = 1e6;
  const double origin[] = {3e4, -2e5, 1e5};
  for (std::size_t i = 0; i < problem.points.size(); ++i) problem.points[i] = problem.points[i] * unit + origin[i % 3];
  for (int i = 0; i < 3; ++i) problem.start.centre[i] = problem.start.centre[i] * unit + origin[i];
  const Refine_result there = refined(problem);
  EXPECT_EQ(there.history.size(), here.history.size());
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR((there.pose.centre[i] - origin[i]) / unit, here.pose.centre[i], tolerance::solved);
    EXPECT_NEAR(std::sqrt(there.covariance[i][i] / here.covariance[i][i]), 1.0, 1e-6);
    EXPECT_NEAR(std::sqrt(there.covariance[3 + i][3 + i] / here.covariance[3 + i][3 + i]) / unit, 1.0, 1e-6);
  }
}

TEST_P(Refine, TakesAWeightOfTwoForAPointTwice) {
  if (loss() != Loss::none) return;  // a loss bounds one length of weight 2, or two of weight 1
  support::Random random(500);
  Refined_problem problem = support::random_scene(random, 30, sees_directions(), noise());
  Refined_problem twice = problem;
  problem.weights.assign(30, 1.0);
  problem.weights[4] = 2.0;
  const std::size_t d = problem.d();
  for (std::size_t k = 0; k < 3; ++k) twice.points.push_back(problem.points[12 + k]);
  for (std::size_t k = 0; k < d; ++k) twice.observations.push_back(problem.observations[4 * d + k]);
  EXPECT_TRUE(support::is_close(numbers_of(refined(problem).pose), numbers_of(refined(twice).pose), tolerance::solved));
  problem.weights.clear();
  EXPECT_FALSE(support::is_close(numbers_of(refined(problem).pose), numbers_of(refined(twice).pose), 1e-7));
}

TEST_P(Refine, TakesOneWeightForAllEquationsOfAPoint) {
  support::Random random(600);
  Refined_problem problem = support::random_scene(random, 30, sees_directions(), noise());
  Refined_problem other = problem;
  for (std::size_t i = 0; i < 30; ++i) {
    problem.weights.push_back(random.uniform(0.1, 3.0));
    other.weights.insert(other.weights.end(), problem.d(), problem.weights.back());
  }
  EXPECT_EQ(numbers_of(refined(problem)), numbers_of(refined(other)));
  other.weights[7] *= 4.0;
  EXPECT_NE(numbers_of(refined(problem)), numbers_of(refined(other)));
}

/// Points without an observation or a weight might as well not be there.
TEST_P(Refine, LeavesOutWhatWasNotSeen) {
  support::Random random(700);
  Refined_problem problem = support::random_scene(random, 30, sees_directions(), noise());
  const Refine_result without = refined(problem);
  const std::size_t d = problem.d();
  for (const std::size_t place : {0U, 9U, 31U}) {
    problem.points.insert(problem.points.begin() + static_cast<std::ptrdiff_t>(3 * place), 3, 17.0);
    problem.observations.insert(problem.observations.begin() + static_cast<std::ptrdiff_t>(d * place), d, 0.5);
  }
  problem.observations[0] = NAN;
  problem.observations[d * 9 + 1] = NAN;
  problem.weights.assign(33, 1.0);
  problem.weights[31] = 0.0;
  const Refine_result result = refined(problem);
  EXPECT_EQ(result.num_left_out, 3U);
  EXPECT_EQ(numbers_of(result.pose), numbers_of(without.pose));
  EXPECT_EQ(result.after.robust, without.after.robust);
  EXPECT_EQ(result.num_inliers, without.num_inliers);
  ASSERT_EQ(result.residuals.size(), 33 * d);
  for (std::size_t i = 0; i < 33; ++i) {
    const bool is_out = i == 0 || i == 9 || i == 31;
    EXPECT_EQ(std::isnan(result.residuals[d * i]), is_out) << i;
    EXPECT_TRUE(!is_out || result.is_inlier[i] == 0) << i;
  }
  EXPECT_EQ(result.residuals[d], without.residuals[0]);
}

/// An eighth of the points seen anywhere else.
TEST_P(Refine, BoundsThePullOfOutliers) {
  support::Random random(800);
  Refined_problem problem = support::random_scene(random, 80, sees_directions(), noise());
  const std::vector<double> best = numbers_of(refined(problem).pose);
  for (std::size_t i = 0; i < 80; i += 8) {
    for (std::size_t k = 0; k < problem.d(); ++k) {
      problem.observations[problem.d() * i + k] = (sees_directions() ? 1.0 : 600.0) * random.uniform(0.0, 1.0);
    }
  }
  const Refine_result result = refined(problem);
  EXPECT_TRUE(is_converged(result)) << result.message;
  double distance = 0.0;
  for (std::size_t i = 0; i < 12; ++i) distance = std::max(distance, std::abs(numbers_of(result.pose)[i] - best[i]));
  if (loss() == Loss::none) {
    EXPECT_GT(distance, 0.1);
    EXPECT_EQ(result.num_inliers, 80U);
  } else {
    EXPECT_LT(distance, 0.01);
    EXPECT_NEAR(static_cast<double>(result.num_inliers), 70.0, 1.0);
    EXPECT_LT(result.after.inliers, 3.0 * noise());
    EXPECT_GT(result.after.plain, 10.0 * noise());
  }
}

/// One number from another world, however large, is one outlier.
TEST_P(Refine, IsNotBlindedByOneObservation) {
  if (loss() == Loss::none || sees_directions()) return;
  support::Random random(900);
  Refined_problem problem = support::random_scene(random, 40, sees_directions(), noise());
  const std::vector<double> best = numbers_of(refined(problem).pose);
  for (const double size : {1e5, 1e9}) {
    SCOPED_TRACE(size);
    problem.observations[7] = size;
    const Refine_result result = refined(problem);
    EXPECT_TRUE(is_converged(result)) << result.message;
    EXPECT_LT(result.loss_scale, 6.5 * noise());  // Tukey's is 5.1 times the noise
    EXPECT_TRUE(support::is_close(numbers_of(result.pose), best, 0.003));
  }
}

std::string name_of(const testing::TestParamInfo<std::tuple<bool, Loss>>& info) {
  const char* names[] = {"NoLoss", "Huber", "Cauchy", "Tukey"};
  return std::string(std::get<0>(info.param) ? "Directions" : "Pixels") +
         names[static_cast<int>(std::get<1>(info.param))];
}

INSTANTIATE_TEST_SUITE_P(All, Refine, testing::Combine(testing::Bool(), testing::ValuesIn(all_losses)), name_of);

}  // namespace
