// SPDX-License-Identifier: BSD-3-Clause
// Memory that runs out at any place of a call: the one report, nothing left behind, and the next call as ever.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "mex_host.h"
#include "trust/faults.h"
#include "trust/good_call.h"
#include "trust/outcome.h"

namespace {

using mex_host::Error_call;
using mex_host::Result;

testing::AssertionResult tells_shortage(const Result& result) {
  const testing::AssertionResult verdict = trust::gives_report(result);
  if (!verdict || result.message.find("std::bad_alloc") != std::string::npos) return verdict;
  return testing::AssertionFailure() << result.message;
}

class Allocations : public testing::TestWithParam<std::tuple<int, Error_call>> {
 protected:
  int type() const { return std::get<0>(GetParam()); }
  Error_call error_call() const { return std::get<1>(GetParam()); }

  /// Lets everything in a call fail in turn.
  void expect_reports(const std::vector<mxArray>& inputs, bool is_good) {
    const trust::Tested_call call{"call", inputs};
    const Result whole = call.run(error_call());
    ASSERT_EQ(trust::is_pose(whole), is_good) << whole.message;
    for (const trust::Fault fault : trust::faults_of(error_call())) {
      const long count = trust::fail_everything(call, error_call(), fault,
                                                {trust::ends_well, is_good ? tells_shortage : trust::gives_report});
      // At least the search vectors, or the parts of a report; the one output, or none.
      EXPECT_GT(count, fault == trust::Fault::host_creating ? is_good - 1 : 2);
    }
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

TEST_P(Allocations, FailInARefinementInClosedForm) { expect_reports(trust::good_inputs(type(), 4, true), true); }

TEST_P(Allocations, FailInARefinementByDifferences) { expect_reports(trust::good_inputs(type(), 4, false), true); }

TEST_P(Allocations, FailWhereTheRankIsLost) {
  for (const bool is_analytic : {true, false}) {
    SCOPED_TRACE(is_analytic ? "closed form" : "differences");
    expect_reports(inputs_of_one_point(type(), is_analytic), true);
  }
}

TEST_P(Allocations, FailOnTheWayToAReport) {
  expect_reports(trust::good_inputs(type(), 0), false);
  std::vector<mxArray> refused = trust::good_inputs(type(), 4);
  refused[1] = mex_host::other_class("cell");
  expect_reports(refused, false);
}

std::string test_name(const testing::TestParamInfo<std::tuple<int, Error_call>>& info) {
  const int type = std::get<0>(info.param);
  return "Type" + std::string(type < 0 ? "Minus" : "") + std::to_string(type < 0 ? -type : type) + "Host" +
         trust::name_of(std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(Types, Allocations,
                         testing::Combine(testing::ValuesIn(trust::all_types),
                                          testing::ValuesIn(trust::all_error_calls)),
                         test_name);

}  // namespace
