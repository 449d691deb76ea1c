// SPDX-License-Identifier: BSD-3-Clause
// Memory after many calls of kelvane_engine, good ones and failing ones: as before.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"
#include "trust/many_calls.h"

namespace {

namespace engine = trust::engine;

class EngineMemory : public testing::TestWithParam<mex_host::Error_call> {
 protected:
  void expect_flat(const std::vector<trust::Tested_call>& calls, std::size_t everyday, const trust::Judge& judge) {
    trust::expect_flat_memory(calls, support::repetitions<std::size_t>(everyday, 100000), GetParam(), judge);
  }
};

TEST_P(EngineMemory, IsFlatAfterCallsThatSucceed) {
  expect_flat(engine::good_calls(), trust::many / 2, engine::gives_results);
}

TEST_P(EngineMemory, IsFlatAfterRefinementsOnThreadsAndInParts) {
  const auto problems = {engine::good_problem(0, 6), engine::good_problem(1, 6), engine::good_problem(2, 6)};
  expect_flat({{"on threads", engine::refine_inputs(problems, engine::for_ever, 3.0)},
               {"left at once", engine::refine_inputs(problems, 0.0)}},
              trust::many / 8, engine::gives_results);
}

TEST_P(EngineMemory, IsFlatAfterCallsThatFailEarlyAndLate) {
  std::vector<trust::Tested_call> calls{{"no input", {}}, {"no question", {mex_host::text("nothing")}}};
  for (trust::Tested_call call : engine::good_calls()) {
    call.inputs.resize(1);
    calls.push_back(call);
  }
  for (std::size_t kind = 0; kind < engine::kinds_of_problem.size(); ++kind) {
    trust::Tested_call call = engine::refine_call(kind);
    call.inputs[7] = mex_host::scalar(-1.0);
    calls.push_back(call);
    call = engine::refine_call(kind);
    call.inputs[5] = mex_host::scalar(-1.0);
    calls.push_back(call);
  }
  expect_flat(calls, trust::many, engine::gives_error);
}

TEST_P(EngineMemory, IsFlatAfterRowsThatFail) {
  std::vector<trust::Tested_call> calls;
  for (const std::size_t position : {1U, 2U, 3U, 4U, 6U}) {
    calls.push_back(engine::refine_call(position % 4));
    calls.back().inputs[position].elements[0][0] = mex_host::other_class("function_handle");
  }
  expect_flat(calls, trust::many / 4, engine::ends_well);
}

INSTANTIATE_TEST_SUITE_P(Hosts, EngineMemory, testing::ValuesIn(trust::all_error_calls),
                         [](const auto& host) { return trust::name_of(host.param); });

}  // namespace
