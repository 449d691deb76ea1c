// SPDX-License-Identifier: BSD-3-Clause
// Every class, shape and value at every position of a call: a pose or the one report, in silence.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/captured_output.h"
#include "trust/good_call.h"
#include "trust/hostile_arrays.h"
#include "trust/outcome.h"

namespace {

using mex_host::Error_call;
using mex_host::Result;
using trust::all_types;
using trust::ends_well;
using trust::good_inputs;
using trust::is_pose;
using trust::is_report;

constexpr std::size_t num_points = 4;

std::string which(int type, std::size_t position, const std::string& name) {
  return "type " + std::to_string(type) + ", input " + std::to_string(position + 1) + ": " + name;
}

/// Calls with each of the arrays at each position of each good call; every result goes to `judge`.
void call_with_each(const std::vector<trust::Named_array>& arrays, bool is_analytic,
                    const std::function<void(const Result&)>& judge) {
  support::Captured_output output;
  for (const int type : all_types) {
    const std::vector<mxArray> good = good_inputs(type, num_points, is_analytic);
    for (std::size_t position = 0; position < good.size(); ++position) {
      for (const auto& [name, array] : arrays) {
        SCOPED_TRACE(which(type, position, name));
        std::vector<const mxArray*> inputs;
        for (const mxArray& input : good) inputs.push_back(&input);
        inputs[position] = &array;
        judge(mex_host::call_by_address(inputs, 1, Error_call::throws));
      }
    }
  }
  EXPECT_EQ(output.text(), "");
}

TEST(HostileInputs, EveryOtherClassIsReportedInEveryShapeAndPosition) {
  std::size_t num_calls = 0;
  call_with_each(trust::unreadable_arrays(), true, [&](const Result& result) {
    ++num_calls;
    EXPECT_TRUE(ends_well(result));
    EXPECT_TRUE(is_report(result));
  });
  EXPECT_EQ(num_calls, all_types.size() * 6 * trust::hostile_shapes.size() * (trust::other_classes.size() + 4));
}

class HostileDoubles : public testing::TestWithParam<bool> {};

TEST_P(HostileDoubles, EndInAPoseOrAReportInEveryShapeAndPosition) {
  std::size_t num_poses = 0;
  std::size_t num_reports = 0;
  call_with_each(trust::readable_arrays(), GetParam(), [&](const Result& result) {
    EXPECT_TRUE(ends_well(result));
    ++(is_pose(result) ? num_poses : num_reports);
  });
  EXPECT_GT(num_poses, 500U);
  EXPECT_GT(num_reports, 10000U);
}

TEST_P(HostileDoubles, EndInAPoseOrAReportAsASingleEntry) {
  support::Captured_output output;
  for (const int type : all_types) {
    const std::vector<mxArray> good = good_inputs(type, num_points, GetParam());
    for (std::size_t position = 0; position < good.size(); ++position) {
      for (std::size_t entry = 0; entry < good[position].values.size(); ++entry) {
        for (const trust::Named_value& value : trust::hostile_values) {
          SCOPED_TRACE(which(type, position, std::to_string(entry) + " is " + value.name));
          std::vector<mxArray> inputs = good;
          inputs[position].values[entry] = value.value;
          EXPECT_TRUE(ends_well(mex_host::call(inputs)));
        }
      }
    }
  }
  EXPECT_EQ(output.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Jacobians, HostileDoubles, testing::Bool(),
                         [](const auto& is_analytic) { return is_analytic.param ? "ClosedForm" : "Differences"; });

TEST(HostileInputs, OneArrayMayStandAtEveryPosition) {
  support::Captured_output output;
  for (const auto& arrays : {trust::unreadable_arrays(), trust::readable_arrays()}) {
    for (const auto& [name, array] : arrays) {
      SCOPED_TRACE(name);
      EXPECT_TRUE(ends_well(mex_host::call_by_address({6, &array}, 1, Error_call::throws)));
      EXPECT_TRUE(ends_well(mex_host::call_by_address({3, &array}, 1, Error_call::jumps)));
    }
  }
  EXPECT_EQ(output.text(), "");
}

}  // namespace
