// SPDX-License-Identifier: BSD-3-Clause
// How many inputs, outputs, problems, points and threads a call of kelvane_engine may have: none to many.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/captured_output.h"
#include "support/long_round.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"

namespace {

using mex_host::Result;
using mex_host::scalar;
using mex_host::text;
using trust::Tested_call;
namespace engine = trust::engine;

TEST(EngineCounts, OfInputsAndOutputsThatAreWrongAreRefused) {
  support::Captured_output output;
  for (const auto error_call : trust::all_error_calls) {
    for (const Tested_call& call : engine::good_calls()) {
      std::vector<mxArray> inputs = call.inputs;
      inputs.resize(14, scalar(1));
      for (std::size_t num_inputs = 0; num_inputs <= inputs.size(); ++num_inputs) {
        for (int num_outputs = -1; num_outputs <= 5; ++num_outputs) {
          SCOPED_TRACE(call.name + ", " + std::to_string(num_inputs) + " inputs, " + std::to_string(num_outputs) +
                       " outputs");
          const Tested_call other{
              "", {inputs.begin(), inputs.begin() + static_cast<std::ptrdiff_t>(num_inputs)}, num_outputs};
          const Result result = other.run(error_call);
          EXPECT_TRUE(engine::ends_well(result));
          if (num_inputs == 0 || num_inputs > 9 || num_outputs > call.num_outputs) {
            EXPECT_TRUE(engine::is_error(result));
          }
          if (num_inputs == call.inputs.size() && num_outputs >= 0 && num_outputs <= call.num_outputs) {
            EXPECT_TRUE(engine::gives_results(result));
            EXPECT_EQ(result.other_outputs.size() + 1, static_cast<std::size_t>(num_outputs > 0 ? num_outputs : 1));
          }
        }
      }
    }
  }
  EXPECT_EQ(output.text(), "");
}

TEST(EngineCounts, OtherQuestionsAreRefused) {
  for (const char* name : {"", "Refine", "refine ", "refin", "help", "%s%n"}) {
    std::vector<mxArray> inputs = engine::refine_call(0).inputs;
    inputs[0] = text(name);
    EXPECT_TRUE(engine::is_error(mex_host::call(inputs))) << name;
  }
}

TEST(EngineCounts, AHostThatThrowsWhatIsNoExceptionIsTold) {
  for (const auto error_call : trust::all_error_calls) {
    for (Tested_call call : engine::good_calls()) {
      for (mxArray& input : call.inputs) {
        input.throws_int = true;
        EXPECT_TRUE(engine::gives_error(call.run(error_call))) << call.name;
        input.throws_int = false;
      }
    }
  }
}

TEST(EngineCounts, NoProblemsAndManyAreAnswered) {
  const std::vector<engine::Problem> problems(support::count_for_round(1000), engine::good_problem(0, 5));
  for (const double num_threads : {0.0, 1.0, 2.0, 1e9}) {
    SCOPED_TRACE(num_threads);
    std::vector<mxArray> none = engine::refine_inputs({}, engine::for_ever, num_threads);
    none[5] = problems[0].options;
    const Result empty = mex_host::call(none);
    ASSERT_TRUE(engine::gives_results(empty));
    EXPECT_EQ(engine::num_results(*empty.output), 0U);
    const Result many = mex_host::call(engine::refine_inputs(problems, engine::for_ever, num_threads));
    ASSERT_TRUE(engine::gives_results(many));
    ASSERT_EQ(engine::num_results(*many.output), problems.size());
    for (std::size_t k = 1; k < problems.size(); ++k) {
      EXPECT_TRUE(trust::is_same(engine::row_of(*many.output, k), engine::row_of(*many.output, 0))) << k;
    }
  }
}

TEST(EngineCounts, TooFewPointsAreTheErrorOfTheirRow) {
  for (std::size_t kind = 0; kind < engine::kinds_of_problem.size(); ++kind) {
    for (std::size_t num_points = 0; num_points <= 3; ++num_points) {
      SCOPED_TRACE(engine::kinds_of_problem[kind] + std::string(", points ") + std::to_string(num_points));
      const Result result = mex_host::call(
          engine::refine_inputs({engine::good_problem(kind, num_points), engine::good_problem(kind, 5)}));
      ASSERT_TRUE(engine::ends_well(result));
      ASSERT_TRUE(result.output) << result.message;
      ASSERT_EQ(engine::num_results(*result.output), 2U);
      const bool is_too_few = num_points < (kind == 3 ? 1U : 3U);  // with a prior one is enough
      EXPECT_EQ(engine::end_of(*result.output, 0) == engine::End::error, is_too_few);
      EXPECT_EQ(engine::end_of(*result.output, 1), engine::End::over);
    }
  }
}

TEST(EngineCounts, ManyPointsAreRefined) {
  support::Captured_output output;
  const Result result =
      mex_host::call(engine::refine_inputs({engine::good_problem(0, support::count_for_round(1000000))}));
  ASSERT_TRUE(engine::gives_results(result));
  EXPECT_EQ(engine::end_of(*result.output, 0), engine::End::over);
  EXPECT_EQ(output.text(), "");
}

}  // namespace
