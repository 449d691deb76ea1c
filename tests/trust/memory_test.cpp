// SPDX-License-Identifier: BSD-3-Clause
// Memory after many calls, good ones and failing ones: as before.
#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "trust/failing_memory.h"
#include "trust/good_call.h"
#include "trust/outcome.h"

namespace {

using mex_host::Error_call;

long resident_kilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes;
  }
  return -1;
}

/// Calls of all types, one after the other, `count` times over.
void call_often(const std::vector<std::vector<mxArray>>& calls, std::size_t count, Error_call error_call,
                bool is_good) {
  for (std::size_t k = 0; k < count; ++k) {
    const mex_host::Result result = mex_host::call(calls[k % calls.size()], 1, error_call);
    ASSERT_EQ(trust::is_pose(result), is_good) << result.message;
    ASSERT_TRUE(trust::ends_well(result));
  }
}

#if defined(__SANITIZE_ADDRESS__)  // it finds a single lost block, and takes long
constexpr std::size_t many = 2000;
#else
constexpr std::size_t many = 20000;
#endif

class FlatMemory : public testing::TestWithParam<Error_call> {
 protected:
  static void expect_flat(const std::vector<std::vector<mxArray>>& calls, std::size_t count, bool is_good) {
    call_often(calls, 3 * calls.size(), GetParam(), is_good);
    const long before = resident_kilobytes();
    const trust::Failing_memory counter(trust::none_fails, trust::Shortage::once);
    call_often(calls, count, GetParam(), is_good);
    const long num_blocks_left = counter.num_blocks_left();
    const long after = resident_kilobytes();
    std::cout << count << " calls: " << num_blocks_left << " blocks left, resident " << before << " -> " << after
              << " kB\n";
    EXPECT_EQ(num_blocks_left, 0);
    // Some pages come and go; one block lost by each call would be more. A sanitizer keeps freed blocks aside.
#if !defined(__SANITIZE_ADDRESS__)
    EXPECT_LT(after - before, 1024);
#endif
  }
};

TEST_P(FlatMemory, AfterCallsThatSucceed) {
  std::vector<std::vector<mxArray>> calls;
  for (const int type : trust::all_types) {
    for (const bool is_analytic : {true, false}) calls.push_back(trust::good_inputs(type, 4, is_analytic));
  }
  expect_flat(calls, support::repetitions<std::size_t>(many, 1000000), true);
}

TEST_P(FlatMemory, AfterTenIterationsEach) {
  std::vector<mxArray> shortest = trust::good_inputs(0, 8);
  shortest.resize(3, shortest.front());
  expect_flat({shortest}, support::repetitions<std::size_t>(many, 1000000), true);
}

TEST_P(FlatMemory, AfterCallsThatFailEarlyAndLate) {
  std::vector<std::vector<mxArray>> calls{{}, {mex_host::scalar(1)}};
  for (const int type : trust::all_types) {
    calls.push_back(trust::good_inputs(type, 0));
    std::vector<mxArray> refused = trust::good_inputs(type, 4);
    refused[5] = mex_host::other_class("function_handle");
    calls.push_back(refused);
    if (type < 10) continue;
    std::vector<mxArray> wrong_intrinsics = trust::good_inputs(type, 4);
    wrong_intrinsics[0].values.back() = 1.0;
    calls.push_back(wrong_intrinsics);
  }
  expect_flat(calls, support::repetitions<std::size_t>(many, 100000), false);
}

INSTANTIATE_TEST_SUITE_P(Hosts, FlatMemory, testing::ValuesIn(trust::all_error_calls),
                         [](const auto& host) { return host.param == Error_call::throws ? "Throws" : "Jumps"; });

}  // namespace
