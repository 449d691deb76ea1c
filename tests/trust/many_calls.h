// SPDX-License-Identifier: BSD-3-Clause
// Memory after many calls of a module: as before.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "trust/failing_memory.h"
#include "trust/tested_call.h"

namespace trust {

inline long resident_kilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes;
  }
  return -1;
}

#if defined(KELVANE_SANITIZED)  // it finds a single lost block, and takes long
inline constexpr std::size_t many = 2000;
#else
inline constexpr std::size_t many = 20000;
#endif

/// The calls, one after the other, `count` times over.
inline void call_often(const std::vector<Tested_call>& calls, std::size_t count, mex_host::Error_call error_call,
                       const Judge& ends_well) {
  for (std::size_t k = 0; k < count; ++k) {
    const Tested_call& call = calls[k % calls.size()];
    ASSERT_TRUE(ends_well(call.run(error_call))) << call.name;
  }
}

/// Blocks and pages that `count` calls leave behind: none.
inline void expect_flat_memory(const std::vector<Tested_call>& calls, std::size_t count,
                               mex_host::Error_call error_call, const Judge& ends_well) {
  call_often(calls, 3 * calls.size(), error_call, ends_well);
  const long before = resident_kilobytes();
  const Failing_memory counter(none_fails, Shortage::once);
  call_often(calls, count, error_call, ends_well);
  const long num_blocks_left = counter.num_blocks_left();
  const long after = resident_kilobytes();
  std::cout << count << " calls: " << num_blocks_left << " blocks left, resident " << before << " -> " << after
            << " kB\n";
  EXPECT_EQ(num_blocks_left, 0);
  // Some pages come and go; one block lost by each call would be more. A sanitizer keeps freed blocks aside.
#if !defined(KELVANE_SANITIZED)
  EXPECT_LT(after - before, 1024);
#endif
}

}  // namespace trust
