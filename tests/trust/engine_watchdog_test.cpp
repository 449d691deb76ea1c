// SPDX-License-Identifier: BSD-3-Clause
// Problems that hold NaN, infinities, denormals or entries near the ends of the range end like any other, at every
// size, and a refinement that could go on for ever comes back when its time is over.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "support/watched_child.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"
#include "trust/hostile_arrays.h"

namespace {

namespace engine = trust::engine;

std::vector<std::size_t> all_sizes() {
  if (support::is_long_run()) return {3, 4, 5, 6, 7, 8, 9, 12, 16, 40, 100, 1000, 5000};
  return {3, 4, 8, 40, 1000};
}

/// An array with an entry in the middle, all, the first or the last one replaced.
std::vector<mxArray> spoiled(const mxArray& good, double value) {
  std::vector<mxArray> all(4, good);
  if (good.values.empty()) return {};
  all[0].values[good.values.size() / 2] = value;
  all[1].values.assign(good.values.size(), value);
  all[2].values.front() = value;
  all[3].values.back() = value;
  return all;
}

bool all_end_well(std::size_t kind, std::size_t num_points, double value, support::Shared_note& note) {
  for (const char* loss : {"none", "huber", "cauchy", "tukey"}) {
    engine::Problem problem = engine::good_problem(kind, num_points);
    mxArray& weights = problem.options.elements[7][0];
    if (weights.values.empty()) weights = mex_host::row(std::vector<double>(num_points, 1.0));
    problem.options.elements[8][0] = mex_host::text(loss);
    for (mxArray* array : {&problem.start, &problem.points, &problem.observations, &problem.intrinsics, &weights}) {
      mxArray& numbers = array->elements.empty() ? *array : array->elements[0][0];
      const mxArray good = numbers;
      for (const mxArray& bad : spoiled(good, value)) {
        numbers = bad;
        note.write(std::string(engine::kinds_of_problem[kind]) + ", " + loss + ", " + std::to_string(num_points) +
                   " points, an array of " + std::to_string(good.size()));
        if (!engine::ends_well(mex_host::call(engine::refine_inputs({problem})))) return false;
      }
      numbers = good;
    }
  }
  return true;
}

class EngineWatchdog : public testing::TestWithParam<trust::Named_value> {};

TEST_P(EngineWatchdog, IsNeverNeeded) {
  EXPECT_TRUE(support::ends_in_time([&](support::Shared_note& note) {
    for (const std::size_t num_points : all_sizes()) {
      for (std::size_t kind = 0; kind < engine::kinds_of_problem.size(); ++kind) {
        if (!all_end_well(kind, num_points, GetParam().value, note)) return false;
      }
    }
    return true;
  }));
}

INSTANTIATE_TEST_SUITE_P(Values, EngineWatchdog, testing::ValuesIn(trust::hostile_values),
                         [](const auto& value) { return "Value" + std::to_string(value.index); });

/// Iterations without a limit, and steps that are never too small.
TEST(EngineWatchdog, EndsRefinementsWithoutALimit) {
  for (const double seconds : {engine::for_ever, 0.05}) {
    EXPECT_TRUE(support::ends_in_time([&](support::Shared_note& note) {
      for (std::size_t kind = 0; kind < engine::kinds_of_problem.size(); ++kind) {
        for (const double max_iterations : {1e9, 1e300, engine::for_ever}) {
          note.write(engine::kinds_of_problem[kind] + std::string(", iterations: ") + std::to_string(max_iterations));
          engine::Problem problem = engine::good_problem(kind, 50);
          problem.options.elements[4][0] = mex_host::scalar(max_iterations);
          problem.options.elements[5][0] = problem.options.elements[6][0] = mex_host::scalar(0);
          const auto result = mex_host::call(engine::refine_inputs({problem, problem}, seconds, 2.0));
          if (!engine::ends_well(result)) return false;
        }
      }
      return true;
    }));
  }
}

/// A hundred thousand points that take far longer than their time: what is left says how to go on.
TEST(EngineWatchdog, ComesBackInTheMiddle) {
  engine::Problem problem = engine::good_problem(0, 100000);
  problem.options.elements[5][0] = mex_host::scalar(0);
  const auto result = mex_host::call(engine::refine_inputs({problem, problem, problem}, 1e-6));
  ASSERT_TRUE(engine::gives_results(result));
  ASSERT_EQ(engine::num_results(*result.output), 1U);
  EXPECT_EQ(engine::end_of(*result.output, 0), engine::End::on_the_way);
}

}  // namespace
