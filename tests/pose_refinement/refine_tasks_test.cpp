// SPDX-License-Identifier: BSD-3-Clause
// Many refinements for a limited time: who begins, who goes on, and that nobody minds the others.
#include "pose_refinement/refine_tasks.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "support/refined_problems.h"

namespace {

using kelvane::Deadline;
using kelvane::Loss;
using kelvane::Refine_options;
using kelvane::Refine_problem;
using kelvane::Refine_task;

constexpr Deadline long_ago = Deadline::min();

/// Problems with a loss each, every fifth one wrong, and their tasks.
struct Tasks {
  explicit Tasks(std::size_t num_tasks) {
    for (std::size_t i = 0; i < num_tasks; ++i) {
      support::Random random(i);
      problems.push_back(support::random_scene(random, 5 + (37 * i) % 300, i % 2 == 0, i % 3 == 0 ? 0.0 : 1e-3));
      if (i % 5 == 4) problems.back().points[i % 7] = 1.0 / 0.0;
      options.emplace_back().loss = static_cast<Loss>(i / 2 % 4);
    }
    for (const auto& problem : problems) views.push_back(problem.view());
    for (std::size_t i = 0; i < num_tasks; ++i) {
      tasks.emplace_back();
      tasks.back().problem = &views[i];
      tasks.back().options = &options[i];
    }
  }

  std::vector<support::Refined_problem> problems;
  std::vector<Refine_options> options;
  std::vector<Refine_problem> views;
  std::vector<Refine_task> tasks;
};

void expect_as_alone(const Tasks& all, std::size_t i) {
  SCOPED_TRACE(i);
  const Refine_task& task = all.tasks[i];
  EXPECT_TRUE(task.is_over);
  EXPECT_TRUE(task.state.empty());
  EXPECT_EQ(task.error.has_value(), i % 5 == 4);
  if (task.error) {
    EXPECT_STREQ(task.error->identifier(), "notFinite");
    EXPECT_EQ(task.error->name(), "points");
    EXPECT_EQ(task.error->number(), i % 7);
  } else {
    EXPECT_TRUE(support::have_same_bits(task.result, refine(all.views[i], all.options[i]))) << task.result.message;
  }
}

TEST(RefineTasks, AreAllDoneWithoutADeadline) {
  for (const unsigned num_threads : {0U, 1U, 2U, 3U, 100U}) {
    SCOPED_TRACE(std::to_string(num_threads) + " threads");
    Tasks all(60);
    run_tasks(all.tasks, num_threads, Deadline::max());
    for (std::size_t i = 0; i < all.tasks.size(); ++i) expect_as_alone(all, i);
  }
}

TEST(RefineTasks, BeginWithTheFirstAlsoBehindTheDeadline) {
  Tasks all(6);
  run_tasks(all.tasks, 1, long_ago);
  EXPECT_TRUE(all.tasks[0].has_begun);
  EXPECT_FALSE(all.tasks[0].is_over);
  EXPECT_EQ(all.tasks[0].num_iterations, 0U);
  EXPECT_FALSE(all.tasks[0].state.empty());
  EXPECT_EQ(all.tasks[0].step.turn, 0.0);
  EXPECT_GT(all.tasks[0].step.rms, 0.0);
  for (std::size_t i = 1; i < all.tasks.size(); ++i) EXPECT_FALSE(all.tasks[i].has_begun) << i;
  run_tasks(all.tasks, 3, long_ago);
  EXPECT_EQ(all.tasks[0].num_iterations, 1U);
  for (std::size_t i = 1; i < all.tasks.size(); ++i) EXPECT_FALSE(all.tasks[i].has_begun) << i;
}

/// As a door does that comes back after each iteration, and takes the first that is not over once more.
TEST(RefineTasks, GoOnWhereTheyWereLeft) {
  Tasks all(30);
  for (std::size_t i = 0; i < all.tasks.size(); ++i) {
    std::vector<Refine_task> rest(all.tasks.begin() + static_cast<std::ptrdiff_t>(i), all.tasks.end());
    std::size_t num_calls = 0;
    do {
      run_tasks(rest, 2, long_ago);
      ASSERT_TRUE(rest[0].has_begun);
      EXPECT_TRUE(rest[0].is_over || rest[0].num_iterations == num_calls);
      ASSERT_LT(++num_calls, 200U);
    } while (!rest[0].is_over);
    all.tasks[i] = rest[0];
    expect_as_alone(all, i);
    EXPECT_EQ(num_calls, all.tasks[i].error ? 1 : all.tasks[i].result.history.size());
  }
}

/// From the fourth on they take until then.
TEST(RefineTasks, EndAtTheDeadline) {
  for (const unsigned num_threads : {1U, 3U}) {
    Tasks all(20);
    const Deadline soon = std::chrono::steady_clock::now() + std::chrono::milliseconds(30);
    for (std::size_t i = 3; i < all.options.size(); ++i) {
      all.options[i].watch = [soon](const kelvane::Refine_step&, std::size_t) {
        while (std::chrono::steady_clock::now() < soon) {
        }
        return false;
      };
    }
    run_tasks(all.tasks, num_threads, soon);
    EXPECT_TRUE(all.tasks[0].has_begun);
    std::size_t num_left = 0;
    for (std::size_t i = 3; i < all.tasks.size(); ++i) {
      SCOPED_TRACE(i);
      const Refine_task& task = all.tasks[i];
      EXPECT_TRUE(all.tasks[i - 1].has_begun || !task.has_begun);
      EXPECT_EQ(task.state.empty(), !task.has_begun || task.error.has_value());
      EXPECT_EQ(task.is_over, task.error.has_value());
      EXPECT_EQ(task.num_iterations, 0U);
      num_left += task.has_begun && !task.is_over ? 1 : 0;
    }
    EXPECT_LE(num_left, num_threads);
  }
}

/// Here the iterations, there the results.
TEST(RefineTasks, LeaveTheirResultsToOthers) {
  Tasks all(30);
  for (Refine_task& task : all.tasks) task.only_state = true;
  run_tasks(all.tasks, 2, Deadline::max());
  for (std::size_t i = 0; i < all.tasks.size(); ++i) {
    EXPECT_TRUE(all.tasks[i].is_over);
    EXPECT_TRUE(all.tasks[i].result.history.empty());
    EXPECT_EQ(all.tasks[i].state.empty(), i % 5 == 4);
    all.tasks[i].only_state = false;
    all.tasks[i].error.reset();
  }
  run_tasks(all.tasks, 3, Deadline::max());
  for (std::size_t i = 0; i < all.tasks.size(); ++i) expect_as_alone(all, i);
}

TEST(RefineTasks, ComeToNothingWithAWrongState) {
  Tasks all(3);
  all.tasks[1].state = {1.0, 2.0};
  run_tasks(all.tasks, 1, Deadline::max());
  ASSERT_TRUE(all.tasks[1].error.has_value());
  EXPECT_STREQ(all.tasks[1].error->identifier(), "state");
  EXPECT_TRUE(all.tasks[1].state.empty());
  expect_as_alone(all, 0);
  expect_as_alone(all, 2);
  run_tasks(all.tasks, 1, Deadline::max());  // with an error it is over
  EXPECT_STREQ(all.tasks[1].error->identifier(), "state");
  all.tasks[1].error.reset();
  run_tasks(all.tasks, 1, Deadline::max());
  expect_as_alone(all, 1);
}

TEST(RefineTasks, NeedNotBeAny) {
  std::vector<Refine_task> none;
  run_tasks(none, 0, long_ago);
  EXPECT_TRUE(none.empty());
}

}  // namespace
