// SPDX-License-Identifier: BSD-3-Clause
// How many inputs, outputs and points a call may have: none to many, a million points included.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/captured_output.h"
#include "support/long_round.h"
#include "trust/good_call.h"
#include "trust/outcome.h"

namespace {

using mex_host::Result;
using trust::all_types;
using trust::ends_well;
using trust::good_inputs;
using trust::is_pose;

constexpr std::size_t million = 1000000;

TEST(HostileCounts, ThreeToSixInputsAndOneOutputAreAccepted) {
  support::Captured_output output;
  for (const auto error_call : trust::all_error_calls) {
    std::vector<mxArray> all = good_inputs(0, 4);
    all.resize(12, mex_host::scalar(1));
    for (std::size_t num_inputs = 0; num_inputs <= all.size(); ++num_inputs) {
      for (int num_outputs = -1; num_outputs <= 5; ++num_outputs) {
        SCOPED_TRACE(std::to_string(num_inputs) + " inputs, " + std::to_string(num_outputs) + " outputs");
        const std::vector<mxArray> inputs(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(num_inputs));
        const Result result = mex_host::call(inputs, num_outputs, error_call);
        EXPECT_TRUE(ends_well(result));
        EXPECT_EQ(is_pose(result), num_inputs >= 3 && num_inputs <= 6 && num_outputs == 1);
      }
    }
  }
  EXPECT_EQ(output.text(), "");
}

TEST(HostileCounts, TooFewPointsAreReported) {
  support::Captured_output output;
  for (const int type : all_types) {
    for (const bool is_analytic : {true, false}) {
      for (std::size_t num_points = 0; num_points <= 3; ++num_points) {
        SCOPED_TRACE("type " + std::to_string(type) + ", points " + std::to_string(num_points));
        const Result result = mex_host::call(good_inputs(type, num_points, is_analytic));
        EXPECT_TRUE(ends_well(result));
        EXPECT_EQ(is_pose(result), trust::is_determined(type, num_points));
      }
    }
  }
  EXPECT_EQ(output.text(), "");
}

TEST(HostileCounts, ManyPointsAreRefined) {
  support::Captured_output output;
  for (const int type : {0, 10, -1}) {  // pixels, bearing vectors, every equation three times
    SCOPED_TRACE("type " + std::to_string(type));
    const Result result = mex_host::call(good_inputs(type, support::count_for_round(million), type != 10));
    EXPECT_TRUE(ends_well(result));
    EXPECT_TRUE(is_pose(result));
  }
  EXPECT_EQ(output.text(), "");
}

TEST(HostileCounts, AMillionOfAnythingElseIsReported) {
  support::Captured_output output;
  const std::vector<mxArray> good = good_inputs(0, 4);
  for (const std::size_t rows : {std::size_t{1}, std::size_t{2}, std::size_t{3}, million}) {
    const std::size_t columns = rows == million ? 1 : million;
    const mxArray large = mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns, 0.5));
    for (std::size_t position = 0; position < good.size(); ++position) {
      SCOPED_TRACE(std::to_string(rows) + " by " + std::to_string(columns) + " as input " +
                   std::to_string(position + 1));
      std::vector<const mxArray*> inputs;
      for (const mxArray& input : good) inputs.push_back(&input);
      inputs[position] = &large;
      const Result result = mex_host::call_by_address(inputs, 1, mex_host::Error_call::throws);
      EXPECT_TRUE(ends_well(result));
      // A row counts as a rotation type whatever its length.
      EXPECT_EQ(is_pose(result), position == 4 && rows == 1);
    }
  }
  EXPECT_EQ(output.text(), "");
}

}  // namespace
