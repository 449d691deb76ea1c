// SPDX-License-Identifier: BSD-3-Clause
// An estimation has the same bits on any number of threads, and left and taken up again.
#include "pose_estimation/estimation.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/estimated_scenes.h"
#include "support/matchers.h"

namespace {

using kelvane::Deadline, kelvane::Estimate_options, kelvane::Estimate_result, kelvane::Estimation;
using support::Estimated_scene, support::is_right, support::Random, support::Shape;

constexpr std::uint64_t seed = 19007;

bool are_same(const Estimate_result& a, const Estimate_result& b) {
  return support::have_same_bits(a, b) && a.num_trials == b.num_trials && a.log10_chance == b.log10_chance &&
         a.alternative.has_value() == b.alternative.has_value();
}

/// Of pixels and directions in turn, with so many wrong ones that there are many rounds.
Estimated_scene hard_scene(std::uint64_t number) {
  Random random(seed + number);
  const bool sees_directions = number % 2 == 1;
  return random_scene(random, support::camera_of_scene(sees_directions), Shape::volume, 100, 85,
                      sees_directions ? 1e-3 : 1.0);
}

TEST(Estimation, HasTheSameBitsOnAnyNumberOfThreads) {
  for (std::uint64_t number = 0; number < 4; ++number) {
    const Estimated_scene scene = hard_scene(number);
    Estimate_options options;
    options.num_threads = 1;
    const Estimate_result alone = estimate(scene.view(), options);
    EXPECT_GT(alone.num_trials, 1000U);
    for (const unsigned num_threads : {0U, 2U, 5U}) {
      options.num_threads = num_threads;
      EXPECT_TRUE(are_same(estimate(scene.view(), options), alone)) << num_threads << " threads, scene " << number;
    }
  }
}

TEST(Estimation, HasTheSameBitsWhenItIsLeftAfterEveryRound) {
  for (std::uint64_t number = 0; number < 3; ++number) {
    const Estimated_scene scene = hard_scene(number);
    const auto problem = scene.view();
    const Estimate_options options;
    const Estimate_result in_one_go = estimate(problem, options);
    std::vector<double> state;
    std::size_t num_rounds = 0;
    for (;; ++num_rounds) {
      Estimation estimation(problem, options);
      if (!state.empty()) estimation.resume(state.data(), state.size());
      const bool is_over = estimation.run(Deadline::min());
      state = estimation.state();
      if (!is_over) continue;
      EXPECT_TRUE(are_same(estimation.result(), in_one_go)) << "scene " << number;
      break;
    }
    EXPECT_GT(num_rounds, 5U);
    Estimation again(problem, options);
    again.resume(state.data(), state.size());
    EXPECT_TRUE(again.run(Deadline::min()));
    EXPECT_TRUE(are_same(again.result(), in_one_go));
  }
}

TEST(Estimation, TriesOtherTriplesWithAnotherSeed) {
  const Estimated_scene scene = hard_scene(0);
  Estimate_options options;
  const Estimate_result first = estimate(scene.view(), options);
  options.seed = 1;
  const Estimate_result second = estimate(scene.view(), options);
  EXPECT_TRUE(is_right(first, support::pose_of_scene, 1.0));
  EXPECT_TRUE(is_right(second, support::pose_of_scene, 1.0));
  EXPECT_FALSE(are_same(first, second));
}

TEST(Estimation, TriesNoMoreThanItMayAndNoMoreThanThereAre) {
  const Estimated_scene scene = hard_scene(0);
  Estimate_options options;
  for (const std::size_t most : {1U, 31U, 33U, 500U}) {
    options.max_num_trials = most;
    EXPECT_EQ(estimate(scene.view(), options).num_trials, most);
  }
  Random random(seed);
  const auto few = random_scene(random, support::camera_of_scene(false), Shape::volume, 6, 6, 0.0);
  EXPECT_EQ(estimate(few.view()).num_trials, 20U);
}

TEST(Estimation, TriesMoreForAHigherConfidence) {
  const Estimated_scene scene = hard_scene(0);
  Estimate_options options;
  std::size_t last = 0;
  for (const double confidence : {1e-300, 0.5, 0.99, 0.999999}) {
    options.confidence = confidence;
    const std::size_t num_trials = estimate(scene.view(), options).num_trials;
    EXPECT_GE(num_trials, last);
    last = num_trials;
  }
  EXPECT_GT(last, 3000U);  // (85 % wrong: one triple in 355 is right)
}

TEST(Estimation, IsWatchedOnTheCallersThreadAndCanBeStopped) {
  const Estimated_scene scene = hard_scene(0);
  const std::thread::id caller = std::this_thread::get_id();
  for (const unsigned num_threads : {1U, 3U}) {
    Estimate_options options;
    options.num_threads = num_threads;
    std::size_t num_calls = 0, last = 0;
    options.watch = [&](const kelvane::Estimate_progress& progress) {
      EXPECT_EQ(std::this_thread::get_id(), caller);
      EXPECT_GT(progress.num_trials, last);
      EXPECT_LE(progress.num_trials_needed, 100000U);
      EXPECT_LE(progress.num_inliers, 100U);
      last = progress.num_trials;
      return ++num_calls == 4;
    };
    const Estimate_result result = estimate(scene.view(), options);
    EXPECT_EQ(num_calls, 4U);
    EXPECT_EQ(result.num_trials, last);
    options.watch = [](const kelvane::Estimate_progress&) -> bool { throw std::runtime_error("mine"); };
    EXPECT_EQ(support::caught_by([&] { estimate(scene.view(), options); }).text, "mine");
  }
}

TEST(Estimation, RefusesWhatIsNoStateOfIt) {
  const Estimated_scene scene = hard_scene(0);
  const auto problem = scene.view();
  const Estimate_options options;
  Estimation estimation(problem, options);
  estimation.run(Deadline::min());
  const std::vector<double> good = estimation.state();
  ASSERT_GE(good.size(), 2U + 12U);
  const auto told_of = [&](const std::vector<double>& state) {
    return support::caught_by([&] { Estimation(problem, options).resume(state.data(), state.size()); }).text;
  };
  EXPECT_EQ(told_of(good), "nothing thrown");
  const auto changed = [&](std::size_t i, double value) {
    std::vector<double> state = good;
    state[i] = value;
    return state;
  };
  const std::string sentence = "state is not that of an estimation of this problem with these options.";
  for (std::size_t i = 0; i < good.size(); ++i) {
    EXPECT_EQ(told_of(changed(i, std::numeric_limits<double>::quiet_NaN())), sentence) << i;
    EXPECT_EQ(told_of(changed(i, std::numeric_limits<double>::infinity())), sentence) << i;
  }
  for (const double number : {-1.0, 0.5, 100001.0, 1e300}) EXPECT_EQ(told_of(changed(0, number)), sentence) << number;
  for (const double flag : {-1.0, 0.5, 2.0}) EXPECT_EQ(told_of(changed(1, flag)), sentence) << flag;
  EXPECT_EQ(told_of(changed(2, 3.0)), sentence);  // no rotation
  EXPECT_EQ(told_of({}), sentence);
  EXPECT_EQ(told_of({good.begin(), good.end() - 1}), sentence);
  std::vector<double> longer = good;
  for (int k = 0; k < 5; ++k) longer.insert(longer.end(), good.begin() + 2, good.begin() + 14);
  EXPECT_EQ(told_of(longer), sentence);
}

}  // namespace
