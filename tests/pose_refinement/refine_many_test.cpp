// SPDX-License-Identifier: BSD-3-Clause
// Many problems at once: each as if it were alone, whatever happens to the others.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "pose_refinement/refine.h"
#include "support/matchers.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Loss;
using kelvane::Refine_exit;
using kelvane::Refine_options;
using kelvane::Refine_problem;
using kelvane::Refine_result;

/// Of all sizes, so that threads are through with them at different times; every fifth one is wrong.
std::vector<support::Refined_problem> mixed_problems() {
  std::vector<support::Refined_problem> problems;
  for (std::size_t i = 0; i < 60; ++i) {
    support::Random random(i);
    problems.push_back(support::random_scene(random, 5 + (37 * i) % 300, i % 2 == 0, i % 3 == 0 ? 0.0 : 1e-3));
    if (i % 5 == 4) problems.back().points[i % 7] = 1.0 / 0.0;
  }
  return problems;
}

std::vector<Refine_problem> views_of(const std::vector<support::Refined_problem>& problems) {
  std::vector<Refine_problem> views;
  for (const auto& problem : problems) views.push_back(problem.view());
  return views;
}

TEST(RefineMany, GivesTheBitsOfRefineOnAnyNumberOfThreads) {
  const auto problems = mixed_problems();
  const auto views = views_of(problems);
  for (const Loss loss : {Loss::none, Loss::huber, Loss::cauchy, Loss::tukey}) {
    Refine_options options;
    options.loss = loss;
    for (const unsigned num_threads : {0U, 1U, 2U, 3U, 100U}) {
      SCOPED_TRACE(std::to_string(num_threads) + " threads");
      const std::vector<Refine_result> results = refine_many(views, options, num_threads);
      ASSERT_EQ(results.size(), views.size());
      for (std::size_t i = 0; i < views.size(); ++i) {
        SCOPED_TRACE(i);
        if (i % 5 == 4) {
          const std::string told = support::caught_by([&] { refine(views[i], options); }).text;
          EXPECT_EQ(results[i].exit, Refine_exit::failed);
          EXPECT_EQ(results[i].message, told);
          EXPECT_NE(told.find("is Inf. All of it must be finite"), std::string::npos);
        } else {
          EXPECT_TRUE(support::have_same_bits(results[i], refine(views[i], options)));
        }
      }
    }
  }
}

TEST(RefineMany, NeedsNoProblem) { EXPECT_TRUE(kelvane::refine_many({}).empty()); }

TEST(RefineMany, RefusesWrongOptionsAsAWhole) {
  const auto problems = mixed_problems();
  Refine_options options;
  options.max_iterations = -1;
  EXPECT_EQ(support::caught_by([&] { refine_many(views_of(problems), options); }).text,
            "options.max_iterations must be a number of 0 or more.");
  options = {};
  options.watch = [](const kelvane::Refine_step&, std::size_t) { return false; };
  EXPECT_EQ(support::caught_by([&] { refine_many(views_of(problems), options); }).text,
            "options.watch must be empty where many problems are refined.");
}

}  // namespace
