// SPDX-License-Identifier: BSD-3-Clause
// Refinements on several threads of kelvane_engine: the same bits as on one, and nothing that two threads share.
#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"

namespace {

using mex_host::Result;
namespace engine = trust::engine;

/// Problems of every kind and many sizes, some of which fail early and some late.
std::vector<engine::Problem> many_problems() {
  std::vector<engine::Problem> problems;
  for (std::size_t k = 0; k < 40; ++k) {
    problems.push_back(engine::good_problem(k % 4, 3 + k % 7 * k));
    if (k % 8 == 3) problems.back().points = mex_host::text("none");
    if (k % 8 == 5) problems.back().observations.values[2] = engine::for_ever;
  }
  return problems;
}

TEST(EngineThreads, GiveTheSameBitsHoweverMany) {
  const auto inputs = [problems = many_problems()](double num_threads) {
    return engine::refine_inputs(problems, engine::for_ever, num_threads);
  };
  // First on several, so that they share the first calls of the libraries, too.
  std::vector<Result> results;
  const int rounds = support::repetitions(3, 300);
  for (int round = 0; round < rounds; ++round) {
    for (const double num_threads : {3.0, 2.0, 0.0, 7.0}) results.push_back(mex_host::call(inputs(num_threads)));
  }
  const Result alone = mex_host::call(inputs(1.0));
  ASSERT_TRUE(engine::ends_well(alone));
  ASSERT_TRUE(alone.output) << alone.message;
  EXPECT_EQ(engine::num_results(*alone.output), many_problems().size());
  for (const Result& result : results) EXPECT_TRUE(trust::is_same(result, alone)) << result.message;
}

/// Left again and again, on several threads; those that are over stay out of the next call.
TEST(EngineThreads, GiveTheSameBitsInParts) {
  std::vector<engine::Problem> problems = many_problems();
  problems.resize(8);
  const Result alone = mex_host::call(engine::refine_inputs(problems));
  std::vector<std::size_t> left(problems.size());
  std::iota(left.begin(), left.end(), 0);
  std::vector<mxArray> states(problems.size(), mex_host::row({}));
  int num_calls = 0;
  for (; !left.empty() && num_calls < 1000; ++num_calls) {
    std::vector<mxArray> inputs = engine::refine_inputs(problems, 0.0, 3.0);
    inputs[6] = mex_host::cell(states);
    const Result result = mex_host::call(inputs);
    ASSERT_TRUE(engine::ends_well(result));
    ASSERT_TRUE(result.output) << result.message;
    for (std::size_t k = engine::num_results(*result.output); k-- > 0;) {
      states[k] = engine::state_of(*result.output, k);
      if (states[k].size() > 0) continue;
      EXPECT_TRUE(trust::is_same(engine::row_of(*result.output, k), engine::row_of(*alone.output, left[k]))) << left[k];
      const auto at = static_cast<std::ptrdiff_t>(k);
      left.erase(left.begin() + at);
      states.erase(states.begin() + at);
      problems.erase(problems.begin() + at);
    }
  }
  EXPECT_TRUE(left.empty());
  EXPECT_GT(num_calls, 10);
}

}  // namespace
