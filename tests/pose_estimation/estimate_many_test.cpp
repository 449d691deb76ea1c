// SPDX-License-Identifier: BSD-3-Clause
// Many poses without a start: each as if it were alone, on any number of threads, and wherever it was left.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pose_estimation/estimate.h"
#include "pose_estimation/estimate_tasks.h"
#include "support/estimated_problems.h"
#include "support/matchers.h"

namespace {

using kelvane::Deadline;
using kelvane::Estimate_options;
using kelvane::Estimate_problem;
using kelvane::Estimate_result;
using kelvane::Estimate_task;
using kelvane::Refine_exit;

/// From too few points to many, and every fifth one wrong.
std::vector<support::Refined_problem> mixed_problems() {
  std::vector<support::Refined_problem> problems;
  for (std::size_t i = 0; i < 20; ++i) {
    support::Random random(i);
    problems.push_back(support::scene_with_outliers(random, 3 + (37 * i) % 120, i % 2 == 0, 3 * (i % 4)));
    if (i % 5 == 4) problems.back().points[i % 7] = 1.0 / 0.0;
  }
  return problems;
}

std::vector<Estimate_problem> views_of(const std::vector<support::Refined_problem>& problems) {
  std::vector<Estimate_problem> views;
  for (const auto& problem : problems) views.push_back(support::without_start(problem));
  return views;
}

Estimate_options few_trials() {
  Estimate_options options;
  options.max_num_trials = 2000;
  return options;
}

TEST(EstimateMany, GivesTheBitsOfEstimateOnAnyNumberOfThreads) {
  const auto problems = mixed_problems();
  const auto views = views_of(problems);
  const Estimate_options options = few_trials();
  for (const unsigned num_threads : {0U, 1U, 2U, 3U, 100U}) {
    SCOPED_TRACE(std::to_string(num_threads) + " threads");
    const std::vector<Estimate_result> results = estimate_many(views, options, num_threads);
    ASSERT_EQ(results.size(), views.size());
    for (std::size_t i = 0; i < views.size(); ++i) {
      SCOPED_TRACE(i);
      if (i % 5 == 4) {
        EXPECT_EQ(results[i].exit, Refine_exit::failed);
        EXPECT_EQ(results[i].message, support::caught_by([&] { estimate(views[i], options); }).text);
        EXPECT_NE(results[i].message.find("is Inf. All of it must be finite"), std::string::npos);
        EXPECT_TRUE(std::isnan(results[i].pose.centre[0]) && std::isnan(results[i].pose.rotation[2][2]));
      } else {
        Estimate_options alone = options;
        alone.num_threads = 1 + static_cast<unsigned>(i) % 3;
        EXPECT_TRUE(support::have_same_bits(results[i], estimate(views[i], alone)));
      }
    }
  }
}

TEST(EstimateMany, NeedsNoProblem) { EXPECT_TRUE(kelvane::estimate_many({}).empty()); }

TEST(EstimateMany, RefusesWrongOptionsAsAWhole) {
  Estimate_options options;
  options.confidence = 1.0;
  EXPECT_EQ(support::caught_by([&] { kelvane::estimate_many({}, options); }).text,
            "options.confidence must be a number between 0 and 1.");
  options = {};
  options.watch = [](const kelvane::Estimate_progress&) { return false; };
  EXPECT_EQ(support::caught_by([&] { kelvane::estimate_many({}, options); }).text,
            "options.watch must be empty where many poses are estimated.");
}

std::vector<Estimate_task> tasks_of(const std::vector<Estimate_problem>& views) {
  std::vector<Estimate_task> tasks(views.size());
  for (std::size_t i = 0; i < views.size(); ++i) {
    tasks[i].problem = views[i];
    tasks[i].options = few_trials();
  }
  return tasks;
}

void expect_as_alone(const Estimate_task& task, std::size_t i) {
  SCOPED_TRACE(i);
  EXPECT_TRUE(task.is_over && task.state.empty());
  EXPECT_EQ(task.error.has_value(), i % 5 == 4);
  if (task.error) return;
  const Estimate_result alone = estimate(task.problem, task.options);
  EXPECT_TRUE(support::have_same_bits(task.result, alone)) << task.result.message;
  EXPECT_EQ(task.progress.num_trials, alone.num_trials);
  EXPECT_EQ(task.log10_chance, alone.log10_chance);
}

/// As a door does that comes back after each round of trials.
TEST(EstimateTasks, GoOnWhereTheyWereLeft) {
  const auto problems = mixed_problems();
  const auto tasks = tasks_of(views_of(problems));
  std::size_t most_calls = 0;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    std::vector<Estimate_task> one = {tasks[i]};
    std::size_t num_calls = 0, num_trials = 0;
    do {
      run_tasks(one, 2, Deadline::min());
      EXPECT_TRUE(one[0].is_over || one[0].progress.num_trials > num_trials);
      num_trials = one[0].progress.num_trials;
      ASSERT_LT(++num_calls, 200U);
    } while (!one[0].is_over);
    most_calls = std::max(most_calls, num_calls);
    expect_as_alone(one[0], i);
  }
  EXPECT_GT(most_calls, 4U);
}

/// Here the trials, there the results.
TEST(EstimateTasks, LeaveTheirResultsToOthers) {
  const auto problems = mixed_problems();
  auto tasks = tasks_of(views_of(problems));
  for (Estimate_task& task : tasks) task.only_state = true;
  run_tasks(tasks, 2, Deadline::max());
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    EXPECT_TRUE(tasks[i].is_over && tasks[i].result.residuals.empty());
    EXPECT_EQ(tasks[i].state.empty(), i % 5 == 4);
    tasks[i].only_state = false;
  }
  run_tasks(tasks, 3, Deadline::max());
  for (std::size_t i = 0; i < tasks.size(); ++i) expect_as_alone(tasks[i], i);
}

TEST(EstimateTasks, EndWhereTheyShallStop) {
  support::Random random(7);
  const auto problem = support::scene_with_outliers(random, 200, false, 10);
  std::vector<Estimate_task> tasks = tasks_of({support::without_start(problem)});
  run_tasks(tasks, 1, Deadline::min());
  ASSERT_FALSE(tasks[0].is_over);
  const std::size_t num_trials = tasks[0].progress.num_trials;
  tasks[0].shall_stop = true;
  run_tasks(tasks, 1, Deadline::max());
  EXPECT_TRUE(tasks[0].is_over);
  EXPECT_EQ(tasks[0].progress.num_trials, num_trials);
}

TEST(EstimateTasks, ComeToNothingWithAWrongState) {
  const auto problems = mixed_problems();
  const double nan = std::nan("");
  for (const std::vector<double>& state :
       {std::vector<double>{1.0}, {nan, 0.0}, {-1.0, 0.0}, {1e9, 0.0}, {32.0, 2.0}, std::vector<double>(14, 1.0)}) {
    auto tasks = tasks_of(views_of(problems));
    tasks[1].state = state;
    run_tasks(tasks, 1, Deadline::max());
    ASSERT_TRUE(tasks[1].error.has_value());
    EXPECT_STREQ(tasks[1].error->identifier(), "state");
    expect_as_alone(tasks[0], 0);
    expect_as_alone(tasks[2], 2);
  }
}

}  // namespace
