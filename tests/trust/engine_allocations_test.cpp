// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out at any place of a call of kelvane_engine, its own or the host's: an error that says so, of the
// call or of a row, nothing left behind, and the next call as ever.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "trust/engine_calls.h"
#include "trust/engine_outcome.h"
#include "trust/faults.h"

namespace {

using mex_host::Result;
using trust::Fault;
namespace engine = trust::engine;

bool is_short(const mxArray& row) { return engine::text_of(row, "identifier") == "kelvane:memory"; }

/// Of 'descend', which leaves the place of a problem with an error empty.
bool are_states(const Result& result) {
  return result.output && result.output->class_name == "cell" && result.output->elements.size() == 2;
}

testing::AssertionResult tells_shortage(const Result& result) {
  if (result.identifier == "kelvane:memory") return testing::AssertionSuccess();
  if (are_states(result) && (result.output->elements[0].empty() || result.output->elements[1].empty()))
    return testing::AssertionSuccess();
  const bool has_rows = result.output && engine::are_results(*result.output);
  for (std::size_t k = 0; has_rows && k < engine::num_results(*result.output); ++k) {
    if (is_short(engine::row_of(*result.output, k))) return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "no shortage of memory is told";
}

/// Each row as it is with all memory, or an error that tells of it.
testing::AssertionResult has_only_good_rows(const Result& result, const Result& whole) {
  const testing::AssertionResult verdict = engine::ends_well(result);
  for (std::size_t k = 0; are_states(result) && k < 2; ++k) {
    const mxArray::Place& state = result.output->elements[k];
    if (!state.empty() && !trust::is_same(state[0], whole.output->elements[k].at(0)))
      return testing::AssertionFailure() << "state " << k << " is another one";
  }
  if (!verdict || !result.output || !engine::are_results(*result.output)) return verdict;
  if (engine::num_results(*result.output) != engine::num_results(*whole.output))
    return testing::AssertionFailure() << "a row is missing";
  for (std::size_t k = 0; k < engine::num_results(*result.output); ++k) {
    const mxArray row = engine::row_of(*result.output, k);
    if (!trust::is_same(row, engine::row_of(*whole.output, k)) && !is_short(row))
      return testing::AssertionFailure() << "row " << k << " is another one";
  }
  return verdict;
}

class EngineAllocations : public testing::TestWithParam<mex_host::Error_call> {
 protected:
  void fail_everything(const trust::Tested_call& call, const trust::Judge& ends_well, const trust::Judge& tells_it) {
    const trust::Tested_call neutral = engine::good_calls().back();
    neutral.run();
    for (const Fault fault : trust::faults_of(GetParam())) {
      const long count = trust::fail_everything(call, GetParam(), fault, {ends_well, tells_it, [&] { neutral.run(); }});
      EXPECT_GT(count, fault == Fault::host_creating ? -1 : 0) << call.name;
    }
  }
};

TEST_P(EngineAllocations, FailInAGoodCall) {
  const std::vector<trust::Tested_call> calls = engine::good_calls();
#ifdef KELVANE_SANITIZED  // where each takes long, some of every question
  constexpr std::size_t every = 5;
#else
  constexpr std::size_t every = 1;
#endif
  for (std::size_t i = 0; i < calls.size(); i += every) {
    const trust::Tested_call& call = calls[i];
    const Result whole = call.run();
    ASSERT_TRUE(engine::gives_results(whole));
    fail_everything(
        call, [&](const Result& result) { return has_only_good_rows(result, whole); }, tells_shortage);
  }
}

TEST_P(EngineAllocations, FailInARefinementOnThreadsOrInParts) {
  const auto problems = {engine::good_problem(0, 6), engine::good_problem(1, 6), engine::good_problem(2, 6)};
  const trust::Tested_call on_threads{"on threads", engine::refine_inputs(problems, engine::for_ever, 3.0)};
  const Result whole = on_threads.run();
  // A thread that cannot be started is no loss.
  fail_everything(
      on_threads, [&](const Result& result) { return has_only_good_rows(result, whole); },
      [](const Result&) { return testing::AssertionSuccess(); });
  trust::Tested_call in_parts{"in parts", engine::refine_inputs({engine::good_problem(0, 6)}, 0.0)};
  for (int part = 0; part < 3; ++part) {
    const Result left = in_parts.run();
    ASSERT_TRUE(engine::gives_results(left));
    fail_everything(
        in_parts, [&](const Result& result) { return has_only_good_rows(result, left); }, tells_shortage);
    in_parts.inputs[6] = mex_host::cell({engine::state_of(*left.output, 0)});
  }
}

TEST_P(EngineAllocations, FailOnTheWayToAnError) {
  trust::Tested_call call = engine::refine_call(0);
  call.inputs[5] = mex_host::scalar(1);
  fail_everything(call, engine::gives_error, engine::gives_error);
  call = engine::refine_call(0);
  call.inputs[2].elements[0][0] = mex_host::text("none");
  const Result whole = call.run();
  fail_everything(
      call, [&](const Result& result) { return has_only_good_rows(result, whole); }, engine::ends_well);
}

INSTANTIATE_TEST_SUITE_P(Hosts, EngineAllocations, testing::ValuesIn(trust::all_error_calls),
                         [](const auto& host) { return trust::name_of(host.param); });

}  // namespace
