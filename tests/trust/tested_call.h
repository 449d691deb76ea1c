// SPDX-License-Identifier: BSD-3-Clause
// A call of a module, and what it has to end in.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "mex_host.h"

namespace trust {

inline constexpr std::array<mex_host::Error_call, 2> all_error_calls{mex_host::Error_call::throws,
                                                                     mex_host::Error_call::jumps};

inline std::string name_of(mex_host::Error_call error_call) {
  return error_call == mex_host::Error_call::throws ? "Throws" : "Jumps";
}

struct Tested_call {
  std::string name;
  std::vector<mxArray> inputs;
  int num_outputs = 1;

  mex_host::Result run(mex_host::Error_call error_call = mex_host::Error_call::throws) const {
    return mex_host::call(inputs, num_outputs, error_call);
  }
};

inline std::ostream& operator<<(std::ostream& stream, const Tested_call& call) { return stream << call.name; }

/// Whether a result is what it has to be; it says what is wrong.
using Judge = std::function<testing::AssertionResult(const mex_host::Result&)>;

/// With the inputs as they were and the host's rules kept.
inline testing::AssertionResult is_in_order(const mex_host::Result& result) {
  if (result.has_changed_inputs) return testing::AssertionFailure() << "an input was changed";
  if (!result.forbidden_access.empty()) return testing::AssertionFailure() << result.forbidden_access;
  return testing::AssertionSuccess();
}

using mex_host::is_same;
/// The same outputs and the same error, to the last bit.
inline bool is_same(const mex_host::Result& a, const mex_host::Result& b) {
  if (a.identifier != b.identifier || a.message != b.message || a.output.has_value() != b.output.has_value() ||
      a.other_outputs.size() != b.other_outputs.size()) {
    return false;
  }
  if (a.output && !mex_host::is_same(*a.output, *b.output)) return false;
  for (std::size_t i = 0; i < a.other_outputs.size(); ++i) {
    if (!mex_host::is_same(a.other_outputs[i], b.other_outputs[i])) return false;
  }
  return true;
}

}  // namespace trust
