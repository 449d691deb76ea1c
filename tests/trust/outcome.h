// SPDX-License-Identifier: BSD-3-Clause
// What any call may end in: a pose, or the one report. Nothing else.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "mex_host.h"

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
  if (result.has_changed_inputs) return refused("an input was changed");
  if (result.has_assigned_other_outputs) return refused("an output was assigned that is none of ours");
  if (!result.forbidden_access.empty()) return refused(result.forbidden_access + " of an array without data");
  if (is_report(result) == is_pose(result)) return refused("neither a pose nor a report, or both");
  return testing::AssertionSuccess();
}

}  // namespace trust
