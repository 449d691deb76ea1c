// SPDX-License-Identifier: BSD-3-Clause
// Calls of a module on several threads at once: each ends as it does alone.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <thread>
#include <vector>

#include "trust/tested_call.h"

namespace trust {

/// All of the calls on each of four threads, in either kind of host. No call is made before: they share the first ones
/// of the libraries, too.
inline void expect_same_on_threads(const std::vector<Tested_call>& calls, std::size_t rounds) {
  constexpr std::size_t num_threads = 4;
  const std::size_t num_calls = calls.size() * all_error_calls.size();
  const auto run = [&calls](std::size_t k) { return calls[k % calls.size()].run(all_error_calls[k / calls.size()]); };
  std::vector<std::vector<mex_host::Result>> results(num_threads);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < num_threads; ++t) {
    threads.emplace_back([&run, &found = results[t], t, num_calls, rounds] {
      for (std::size_t round = 0; round < rounds; ++round) {
        found.assign(num_calls, {});
        for (std::size_t k = 0; k < num_calls; ++k) {
          const std::size_t which = (k + t * num_calls / num_threads) % num_calls;
          found[which] = run(which);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t k = 0; k < num_calls; ++k) {
    const mex_host::Result alone = run(k);
    for (const std::vector<mex_host::Result>& found : results) {
      EXPECT_TRUE(is_same(found[k], alone)) << calls[k % calls.size()].name << ": " << found[k].message;
    }
  }
}

}  // namespace trust
