// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out at any place of a call: the one report, nothing left behind, and the next call as ever.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "mex_host.h"
#include "trust/failing_memory.h"
#include "trust/good_call.h"
#include "trust/outcome.h"

namespace {

using mex_host::Error_call;
using mex_host::Result;
using trust::Shortage;

constexpr long too_many = 100000;  // no call here makes as many allocations

struct Observation {
  bool has_failed = false;
  bool ends_well = false;
  bool is_report = false;
  std::string message;
  long num_blocks_left = 0;
};

/// One call during which the allocation number `count` of the module fails. Nothing that lives on is allocated between
/// the two countings.
Observation call_short_of_memory(const std::vector<mxArray>& inputs, Error_call error_call, long count,
                                 Shortage shortage) {
  Observation seen;
  seen.message.reserve(too_many);
  const trust::Failing_memory memory(count, shortage);
  {
    const Result result = mex_host::call(inputs, 1, error_call);
    seen.has_failed = memory.has_failed();
    seen.ends_well = static_cast<bool>(trust::ends_well(result));
    seen.is_report = trust::is_report(result);
    seen.message = result.message;
  }
  seen.num_blocks_left = memory.num_blocks_left();
  return seen;
}

class Allocations : public testing::TestWithParam<std::tuple<int, Error_call>> {
 protected:
  int type() const { return std::get<0>(GetParam()); }
  Error_call error_call() const { return std::get<1>(GetParam()); }

  /// Lets every allocation of a call fail in turn.
  void expect_reports(const std::vector<mxArray>& inputs, bool is_good, Shortage shortage) {
    const Result whole = mex_host::call(inputs, 1, error_call());
    ASSERT_EQ(trust::is_pose(whole), is_good) << whole.message;
    long count = 0;
    for (;; ++count) {
      SCOPED_TRACE("allocation " + std::to_string(count));
      ASSERT_LT(count, too_many);
      const Observation seen = call_short_of_memory(inputs, error_call(), count, shortage);
      EXPECT_TRUE(seen.ends_well);
      EXPECT_EQ(seen.num_blocks_left, 0);
      if (!seen.has_failed) break;
      EXPECT_TRUE(seen.is_report);
      if (is_good) {
        EXPECT_NE(seen.message.find("std::bad_alloc"), std::string::npos) << seen.message;
      }
      const Result next = mex_host::call(inputs, 1, error_call());
      EXPECT_EQ(next.message, whole.message);
      EXPECT_EQ(next.output ? next.output->values : std::vector<double>(),
                whole.output ? whole.output->values : std::vector<double>());
    }
    EXPECT_GT(count, 2);  // at least the search vectors, or the parts of a report
  }
};

/// All points are one, so that singular values decide.
std::vector<mxArray> inputs_of_one_point(int type, bool is_analytic) {
  constexpr std::size_t num_points = 4;
  std::vector<mxArray> inputs = trust::good_inputs(type, num_points, is_analytic);
  for (const std::size_t position : {1U, 2U}) {
    std::vector<double>& values = inputs[position].values;
    const std::size_t size = values.size() / num_points;
    for (std::size_t i = size; i < values.size(); ++i) values[i] = values[i - size];
  }
  return inputs;
}

TEST_P(Allocations, FailInARefinementInClosedForm) {
  for (const Shortage shortage : {Shortage::once, Shortage::lasting}) {
    expect_reports(trust::good_inputs(type(), 4, true), true, shortage);
  }
}

TEST_P(Allocations, FailInARefinementByDifferences) {
  for (const Shortage shortage : {Shortage::once, Shortage::lasting}) {
    expect_reports(trust::good_inputs(type(), 4, false), true, shortage);
  }
}

TEST_P(Allocations, FailWhereTheRankIsLost) {
  for (const bool is_analytic : {true, false}) {
    SCOPED_TRACE(is_analytic ? "closed form" : "differences");
    for (const Shortage shortage : {Shortage::once, Shortage::lasting}) {
      expect_reports(inputs_of_one_point(type(), is_analytic), true, shortage);
    }
  }
}

TEST_P(Allocations, FailOnTheWayToAReport) {
  for (const Shortage shortage : {Shortage::once, Shortage::lasting}) {
    expect_reports(trust::good_inputs(type(), 0), false, shortage);
    std::vector<mxArray> refused = trust::good_inputs(type(), 4);
    refused[1] = mex_host::other_class("cell");
    expect_reports(refused, false, shortage);
  }
}

std::string test_name(const testing::TestParamInfo<std::tuple<int, Error_call>>& info) {
  const int type = std::get<0>(info.param);
  const std::string host = std::get<1>(info.param) == Error_call::throws ? "HostThrows" : "HostJumps";
  return "Type" + std::string(type < 0 ? "Minus" : "") + std::to_string(type < 0 ? -type : type) + host;
}

INSTANTIATE_TEST_SUITE_P(Types, Allocations,
                         testing::Combine(testing::ValuesIn(trust::all_types),
                                          testing::ValuesIn(trust::all_error_calls)),
                         test_name);

}  // namespace
