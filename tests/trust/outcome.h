// SPDX-License-Identifier: BSD-3-Clause
// What any call may end in: a pose, or the one report. Nothing else.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "mex_host.h"
#include "trust/tested_call.h"

namespace trust {

inline bool is_report(const mex_host::Result& result) {
  return result.identifier == "Mex:exception" && !result.message.empty() && !result.output;
}

inline bool is_pose(const mex_host::Result& result) {
  if (!result.output || !result.identifier.empty() || !result.message.empty()) return false;
  const mxArray& output = *result.output;
  return output.rows == 1 && (output.columns == 6 || output.columns == 7) && output.values.size() == output.columns;
}

/// One of both, with the inputs as they were and nothing touched that has no data.
inline testing::AssertionResult ends_well(const mex_host::Result& result) {
  const auto refused = [&](const std::string& what) {
    return testing::AssertionFailure() << what << "; message: " << result.message;
  };
  if (const auto order = is_in_order(result); !order) return refused(order.message());
  if (result.has_assigned_other_outputs) return refused("an output was assigned that is none of ours");
  if (is_report(result) == is_pose(result)) return refused("neither a pose nor a report, or both");
  return testing::AssertionSuccess();
}

inline testing::AssertionResult gives_pose(const mex_host::Result& result) {
  const testing::AssertionResult verdict = ends_well(result);
  return !verdict || is_pose(result) ? verdict : testing::AssertionFailure() << result.message;
}

inline testing::AssertionResult gives_report(const mex_host::Result& result) {
  const testing::AssertionResult verdict = ends_well(result);
  return !verdict || is_report(result) ? verdict : testing::AssertionFailure() << "a pose";
}

}  // namespace trust
