// SPDX-License-Identifier: BSD-3-Clause
// States with which a refinement is taken up again: the right ones lead to the same bits, all others end like any
// input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "mex_host.h"
#include "support/long_round.h"
#include "support/long_run.h"
#include "support/watched_child.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"
#include "trust/hostile_arrays.h"

namespace {

using mex_host::Result;
namespace engine = trust::engine;

/// A problem left after some iterations.
std::vector<double> state_after(std::size_t kind, int num_iterations) {
  std::vector<mxArray> inputs = engine::refine_inputs({engine::good_problem(kind, 6)}, 0.0);
  for (int k = 0; k <= num_iterations; ++k) {
    const Result result = mex_host::call(inputs);
    if (!engine::gives_results(result)) return {};
    inputs[6] = mex_host::cell({engine::state_of(*result.output, 0)});
  }
  return mex_host::element(inputs[6], 0).values;
}

std::vector<mxArray> inputs_with_state(std::size_t kind, std::vector<double> state) {
  std::vector<mxArray> inputs = engine::refine_inputs({engine::good_problem(kind, 6), engine::good_problem(0, 6)});
  inputs[6] = mex_host::cell({mex_host::row(std::move(state)), mex_host::row({})});
  return inputs;
}

/// The same, over.
std::vector<double> state_in_the_end(std::size_t kind) {
  const Result result = mex_host::call(engine::as_descent(engine::refine_inputs({engine::good_problem(kind, 6)})));
  if (!result.output || result.output->elements.size() != 1) return {};
  return mex_host::element(*result.output, 0).values;
}

void stop_first(std::vector<mxArray>& inputs) {
  mxArray& options = inputs[5].elements[0][0];
  const auto& names = options.field_names;
  const auto number = std::find(names.begin(), names.end(), "Stop") - names.begin();
  options.elements.at(static_cast<std::size_t>(number)) = {mex_host::converted(mex_host::scalar(1.0), "logical")};
}

class EngineStates : public testing::TestWithParam<std::size_t> {
 protected:
  std::size_t kind() const { return GetParam(); }
};

TEST_P(EngineStates, LeadToTheSameBits) {
  const std::vector<mxArray> whole = inputs_with_state(kind(), {});
  const Result expected = mex_host::call(whole);
  ASSERT_TRUE(engine::gives_results(expected));
  std::vector<mxArray> inputs = whole;
  inputs[7] = mex_host::scalar(0);
  for (int call = 0; call < 1000; ++call) {
    const Result result = mex_host::call(inputs);
    ASSERT_TRUE(engine::gives_results(result));
    ASSERT_GE(engine::num_results(*result.output), 1U);
    if (engine::end_of(*result.output, 0) == engine::End::over) {
      EXPECT_GT(call, 3);
      EXPECT_TRUE(trust::is_same(engine::row_of(*result.output, 0), engine::row_of(*expected.output, 0)));
      return;
    }
    ASSERT_EQ(engine::end_of(*result.output, 0), engine::End::on_the_way);
    inputs[6] = mex_host::cell({engine::state_of(*result.output, 0), mex_host::row({})});
  }
  FAIL() << "not over after a thousand calls";
}

TEST_P(EngineStates, OfTheEndLeadToTheSameBits) {
  std::vector<mxArray> inputs = inputs_with_state(kind(), {});
  const Result expected = mex_host::call(inputs);
  const Result result = mex_host::call(engine::as_descent(inputs));
  ASSERT_TRUE(engine::ends_well(result));
  ASSERT_TRUE(result.output) << result.message;
  inputs[6] = *result.output;
  ASSERT_EQ(inputs[6].elements.size(), 2U);
  EXPECT_FALSE(inputs[6].elements[0].empty() || inputs[6].elements[1].empty());
  EXPECT_TRUE(trust::is_same(mex_host::call(inputs), expected));
}

/// What OutputFcn asks for: the result of what has been found so far.
TEST_P(EngineStates, EndWhereTheyAreToldToStop) {
  std::vector<mxArray> inputs = inputs_with_state(kind(), state_after(kind(), 2));
  stop_first(inputs);
  const Result result = mex_host::call(inputs);
  ASSERT_TRUE(engine::gives_results(result));
  const mxArray row = engine::row_of(*result.output, 0);
  EXPECT_EQ(engine::end_of(row), engine::End::over);
  EXPECT_EQ(mex_host::field(row, "figures").values.at(0), -1.0);
  EXPECT_EQ(mex_host::field(row, "num_steps").values.at(0), 3.0);
}

/// Every entry with every value, in a child process: what hangs is killed.
TEST_P(EngineStates, WithHostileNumbersEndInTime) {
  for (const int num_iterations : {1, 2, 100}) {
    const bool is_stopped = num_iterations == 2;
    const std::vector<double> state =
        num_iterations == 100 ? state_in_the_end(kind()) : state_after(kind(), num_iterations);
    ASSERT_GT(state.size(), 10U);
    EXPECT_TRUE(support::ends_in_time([&](support::Shared_note& note) {
      for (std::size_t entry = 0; entry < state.size(); ++entry) {
        for (const trust::Named_value& value : trust::values_for_place(entry)) {
          note.write("entry " + std::to_string(entry) + " is " + value.name);
          std::vector<double> spoiled = state;
          spoiled[entry] = value.value;
          std::vector<mxArray> inputs = inputs_with_state(kind(), spoiled);
          if (is_stopped) stop_first(inputs);
          const Result result = mex_host::call(inputs);
          if (!engine::ends_well(result) || !result.output || engine::num_results(*result.output) != 2) return false;
          if (engine::end_of(*result.output, 1) != engine::End::over) return false;
        }
      }
      return true;
    }));
  }
}

TEST_P(EngineStates, OfAnotherLengthProblemOrNobodyAreRefused) {
  const std::vector<double> state = state_after(kind(), 2);
  ASSERT_GT(state.size(), 10U);
  const auto row_from = [&](const std::vector<double>& other) {
    const Result result = mex_host::call(inputs_with_state(kind(), other));
    const bool is_good = engine::ends_well(result) && result.output && engine::num_results(*result.output) == 2 &&
                         engine::end_of(*result.output, 1) == engine::End::over;
    return is_good ? engine::row_of(*result.output, 0) : mxArray();
  };
  const auto is_refused = [&](const std::vector<double>& other) {
    const mxArray row = row_from(other);
    return row.size() > 0 && engine::end_of(row) == engine::End::error;
  };
  const mxArray whole = row_from(state);
  for (std::size_t size = 1; size < state.size() + 40; ++size) {
    std::vector<double> other = state;
    other.resize(size, 1.0);
    // The front of a state may be one from before, which leads to the same end.
    EXPECT_TRUE(is_refused(other) || (size <= state.size() && trust::is_same(row_from(other), whole)))
        << size << " of " << state.size();
  }
  EXPECT_TRUE(is_refused(state_after((kind() + 1) % engine::kinds_of_problem.size(), 2)));
  EXPECT_TRUE(is_refused(state_in_the_end((kind() + 1) % engine::kinds_of_problem.size())));
  EXPECT_TRUE(is_refused(std::vector<double>(state.size(), 0.0)));
  EXPECT_TRUE(is_refused(std::vector<double>(100000, 1.0)));
  support::Random random(11);
  for (std::uint64_t k = 0; k < support::repetitions<std::uint64_t>(support::count_for_round(300), 100000); ++k) {
    EXPECT_TRUE(is_refused(random.vector_in_cube(state.size(), 3.0)));
  }
}

INSTANTIATE_TEST_SUITE_P(Problems, EngineStates, testing::Values(0U, 1U, 2U, 3U),
                         [](const auto& kind) { return "Kind" + std::to_string(kind.param); });

}  // namespace
