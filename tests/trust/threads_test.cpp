// SPDX-License-Identifier: BSD-3-Clause
// Calls on several threads at once: each ends as it does alone.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "trust/good_call.h"
#include "trust/many_threads.h"

namespace {

/// Calls of every type and kind of Jacobian, each followed by one that fails early and one that fails late.
std::vector<trust::Tested_call> calls_of_every_kind() {
  std::vector<trust::Tested_call> calls;
  for (const int type : trust::all_types) {
    for (const bool is_analytic : {true, false}) {
      const std::string name = "type " + std::to_string(type);
      calls.push_back({name, trust::good_inputs(type, 4, is_analytic)});
      calls.push_back({name + " without points", trust::good_inputs(type, 0, is_analytic)});
      calls.push_back({"a cell", {mex_host::other_class("cell")}});
    }
  }
  return calls;
}

TEST(Threads, AllGetWhatACallAloneGets) {
  trust::expect_same_on_threads(calls_of_every_kind(), support::repetitions<std::size_t>(3, 300));
}

}  // namespace
