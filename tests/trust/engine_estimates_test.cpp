// SPDX-License-Identifier: BSD-3-Clause
// Estimates of kelvane_engine: on any number of threads and in parts the same bits, and states that end like any input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/watched_child.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"
#include "trust/hostile_arrays.h"

namespace {

using mex_host::Result;
namespace engine = trust::engine;

constexpr std::size_t states_place = 5, seconds_place = 6, threads_place = 7;

/// Every observation of another point, so that no trial is the last but by their number.
engine::Problem hopeless_problem(std::size_t kind, std::size_t num_points) {
  engine::Problem problem = engine::good_problem(kind, num_points);
  std::vector<double>& seen = problem.observations.values;
  std::rotate(seen.begin(), seen.begin() + static_cast<std::ptrdiff_t>(seen.size() / 2 / 6 * 6), seen.end());
  return problem;
}

std::vector<mxArray> inputs_of(const std::vector<engine::Problem>& problems, double num_threads = 1.0) {
  std::vector<mxArray> inputs = engine::as_estimate(engine::refine_inputs(problems));
  inputs[threads_place] = mex_host::scalar(num_threads);
  return inputs;
}

std::vector<mxArray> inputs_of(std::size_t kind) {
  return inputs_of({hopeless_problem(kind, 40), engine::good_problem(kind, 40)});
}

class EngineEstimates : public testing::TestWithParam<std::size_t> {
 protected:
  std::size_t kind() const { return GetParam(); }
  /// After some rounds of trials.
  std::vector<double> state_after(int num_rounds) const {
    std::vector<mxArray> inputs = inputs_of({hopeless_problem(kind(), 40)});
    inputs[seconds_place] = mex_host::scalar(0);
    for (int k = 0; k < num_rounds; ++k) {
      const Result result = mex_host::call(inputs);
      if (!engine::gives_results(result)) return {};
      inputs[states_place] = mex_host::cell({engine::state_of(*result.output, 0)});
    }
    return mex_host::element(inputs[states_place], 0).values;
  }
};

TEST_P(EngineEstimates, HaveTheSameBitsOnAnyNumberOfThreads) {
  std::vector<engine::Problem> problems;
  for (std::size_t k = 0; k < 12; ++k) problems.push_back(engine::good_problem(kind(), k * k));
  problems[3].points = mex_host::text("none");
  const Result alone = mex_host::call(inputs_of(problems));
  ASSERT_TRUE(engine::ends_well(alone));
  ASSERT_TRUE(alone.output) << alone.message;
  for (const double num_threads : {0.0, 2.0, 3.0, 7.0}) {
    EXPECT_TRUE(trust::is_same(mex_host::call(inputs_of(problems, num_threads)), alone));
    const Result last = mex_host::call(inputs_of({problems[11], problems[0]}, num_threads));
    ASSERT_TRUE(last.output) << last.message;
    const Result one = mex_host::call(inputs_of({problems[11]}, num_threads));  // whose trials are on threads
    ASSERT_TRUE(one.output) << one.message;
    EXPECT_TRUE(trust::is_same(engine::row_of(*one.output, 0), engine::row_of(*last.output, 0)));
  }
}

TEST_P(EngineEstimates, HaveTheSameBitsInParts) {
  std::vector<mxArray> inputs = inputs_of(kind());
  const Result expected = mex_host::call(inputs);
  ASSERT_TRUE(engine::gives_results(expected));
  inputs[seconds_place] = mex_host::scalar(0);
  for (int call = 0; call < 100; ++call) {
    const Result result = mex_host::call(inputs);
    ASSERT_TRUE(engine::gives_results(result));
    ASSERT_GE(engine::num_results(*result.output), 1U);
    if (engine::end_of(*result.output, 0) == engine::End::over) {
      EXPECT_GT(call, 2);
      EXPECT_TRUE(trust::is_same(engine::row_of(*result.output, 0), engine::row_of(*expected.output, 0)));
      return;
    }
    ASSERT_EQ(engine::end_of(*result.output, 0), engine::End::on_the_way);
    EXPECT_GT(mex_host::field(engine::row_of(*result.output, 0), "search").values.at(0), 0.0);
    inputs[states_place] = mex_host::cell({engine::state_of(*result.output, 0), mex_host::row({})});
  }
  FAIL() << "not over after a hundred calls";
}

TEST_P(EngineEstimates, HaveTheSameBitsWhereOthersSearch) {
  std::vector<mxArray> inputs = inputs_of(kind());
  const Result expected = mex_host::call(inputs);
  inputs[0] = mex_host::text("search");
  const Result result = mex_host::call(inputs);
  ASSERT_TRUE(result.output) << result.message;
  ASSERT_EQ(result.output->elements.size(), 2U);
  EXPECT_FALSE(result.output->elements[0].empty() || result.output->elements[1].empty());
  inputs[0] = mex_host::text("estimate");
  inputs[states_place] = *result.output;
  EXPECT_TRUE(trust::is_same(mex_host::call(inputs), expected));
}

/// Every entry with every value, in a child process: what hangs is killed.
TEST_P(EngineEstimates, WithHostileStatesEndInTime) {
  const std::vector<double> state = state_after(2);
  ASSERT_GT(state.size(), 10U);
  const std::vector<mxArray> good = inputs_of(kind());
  const Result expected = mex_host::call(good);
  ASSERT_TRUE(expected.output) << expected.message;
  const auto ends_well = [&](const std::vector<double>& other) {
    std::vector<mxArray> inputs = good;
    inputs[states_place] = mex_host::cell({mex_host::row(other), mex_host::row({})});
    const Result result = mex_host::call(inputs);
    return engine::ends_well(result) && result.output && engine::num_results(*result.output) == 2 &&
           trust::is_same(engine::row_of(*result.output, 1), engine::row_of(*expected.output, 1));
  };
  EXPECT_TRUE(support::ends_in_time([&](support::Shared_note& note) {
    for (std::size_t entry = 0; entry < state.size(); ++entry) {
      for (const trust::Named_value& value : trust::values_for_place(entry)) {
        note.write("entry " + std::to_string(entry) + " is " + value.name);
        std::vector<double> spoiled = state;
        spoiled[entry] = value.value;
        if (!ends_well(spoiled)) return false;
      }
    }
    for (std::size_t size = 1; size < state.size() + 40; ++size) {
      note.write(std::to_string(size) + " entries");
      std::vector<double> other = state;
      other.resize(size, 1.0);
      if (!ends_well(other)) return false;
    }
    return ends_well(std::vector<double>(state.size(), 0.0)) && ends_well(std::vector<double>(100000, 1.0));
  }));
}

INSTANTIATE_TEST_SUITE_P(Problems, EngineEstimates, testing::Values(0U, 1U, 2U, 3U),
                         [](const auto& kind) { return "Kind" + std::to_string(kind.param); });

}  // namespace
