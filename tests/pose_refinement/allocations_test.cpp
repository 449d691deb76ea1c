// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out at any place of a refinement: std::bad_alloc, or a result that says so, and nothing left behind.
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "mex_host.h"
#include "pose_refinement/refine_tasks.h"
#include "support/refined_problems.h"
#include "trust/failing_memory.h"

namespace {

using kelvane::Refine_exit;
using kelvane::Refine_problem;
using kelvane::Refine_result;

constexpr long too_many = 10000;

support::Refined_problem problem_of_scene() {
  support::Random random(3);
  return support::random_scene(random, 200, false, 1.0);
}

class Allocations : public testing::TestWithParam<trust::Shortage> {};

/// Calls with the allocation number `count` refused, for every count until none is.
template <typename Call>
long refuse_each(trust::Shortage shortage, const Call& call) {
  long count = 0;
  for (; count < too_many; ++count) {
    const trust::Failing_memory memory(count, shortage);
    mex_host::is_in_module = true;  // so that what is allocated from here on may fail
    call(memory);
    mex_host::is_in_module = false;
    EXPECT_EQ(memory.num_blocks_left(), 0) << "allocation " << count;
    if (!memory.has_failed()) break;
  }
  return count;
}

TEST_P(Allocations, FailInARefinement) {
  const auto problem = problem_of_scene();
  kelvane::Refine_options options;
  options.loss = kelvane::Loss::huber;
  const long count = refuse_each(GetParam(), [&](const trust::Failing_memory& memory) {
    bool is_bad_alloc = false;
    try {
      const Refine_result result = refine(problem.view(), options);
      EXPECT_GT(static_cast<int>(result.exit), 0);
    } catch (const std::bad_alloc&) {
      is_bad_alloc = true;
    }
    EXPECT_EQ(is_bad_alloc, memory.has_failed());
  });
  EXPECT_GT(count, 5);
}

TEST_P(Allocations, FailOnTheWayToASentence) {
  auto problem = problem_of_scene();
  problem.points[3] = 1.0 / 0.0;
  const long count = refuse_each(
      GetParam(), [&](const trust::Failing_memory&) { EXPECT_THROW(refine(problem.view()), std::exception); });
  EXPECT_GT(count, 0);
}

TEST_P(Allocations, FailInOneOfMany) {
  auto wrong = problem_of_scene();
  wrong.points[3] = 1.0 / 0.0;
  const auto problem = problem_of_scene();
  const std::vector<Refine_problem> problems = {problem.view(), wrong.view(), problem.view()};
  const long count = refuse_each(GetParam(), [&](const trust::Failing_memory& memory) {
    try {
      const std::vector<Refine_result> results = refine_many(problems, {}, 1);
      for (std::size_t i : {0U, 2U}) {
        if (results[i].exit == Refine_exit::step || results[i].exit == Refine_exit::rounding) continue;
        EXPECT_TRUE(memory.has_failed());
        EXPECT_EQ(results[i].exit, Refine_exit::failed);
        EXPECT_EQ(results[i].message, "out of memory");
      }
      EXPECT_EQ(results[1].exit, Refine_exit::failed);
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(memory.has_failed());
    }
  });
  EXPECT_GT(count, 5);
}

/// Left after each iteration: the first one fails, or goes on.
TEST_P(Allocations, FailInATaskThatIsLeft) {
  const auto problem = problem_of_scene();
  const Refine_problem view = problem.view();
  const kelvane::Refine_options options;
  const long count = refuse_each(GetParam(), [&](const trust::Failing_memory& memory) {
    try {
      std::vector<kelvane::Refine_task> tasks(1);
      tasks[0].problem = &view;
      tasks[0].options = &options;
      while (!tasks[0].is_over) run_tasks(tasks, 1, kelvane::Deadline::min());
      EXPECT_EQ(tasks[0].error.has_value(), memory.has_failed());
      if (tasks[0].error) {
        EXPECT_STREQ(tasks[0].error->identifier(), "memory");
      }
      EXPECT_TRUE(tasks[0].state.empty());
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(memory.has_failed());
    }
  });
  EXPECT_GT(count, 30);
}

INSTANTIATE_TEST_SUITE_P(All, Allocations, testing::Values(trust::Shortage::once, trust::Shortage::lasting));

}  // namespace
