// SPDX-License-Identifier: BSD-3-Clause
// Calls on several threads at once: each ends as it does alone.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "trust/good_call.h"

namespace {

constexpr std::size_t num_threads = 4;

struct Prepared_call {
  std::vector<mxArray> inputs;
  mex_host::Error_call error_call;
};

/// Calls of every type and kind of Jacobian, each followed by one that fails early and one that fails late.
std::vector<Prepared_call> prepared_calls() {
  std::vector<Prepared_call> calls;
  for (const auto error_call : trust::all_error_calls) {
    for (const int type : trust::all_types) {
      for (const bool is_analytic : {true, false}) {
        calls.push_back({trust::good_inputs(type, 4, is_analytic), error_call});
        calls.push_back({trust::good_inputs(type, 0, is_analytic), error_call});
        calls.push_back({{mex_host::other_class("cell")}, error_call});
      }
    }
  }
  return calls;
}

std::vector<double> values_or_none(const mex_host::Result& result) {
  return result.output ? result.output->values : std::vector<double>();
}

TEST(Threads, AllGetWhatACallAloneGets) {
  const std::vector<Prepared_call> calls = prepared_calls();
  // No call is made before the threads start: they share the first ones of the libraries, too.
  std::vector<std::vector<mex_host::Result>> results(num_threads);
  std::vector<std::thread> threads;
  const auto rounds = support::repetitions<std::size_t>(3, 300);
  for (std::size_t t = 0; t < num_threads; ++t) {
    threads.emplace_back([&calls, &found = results[t], t, rounds] {
      for (std::size_t round = 0; round < rounds; ++round) {
        found.assign(calls.size(), {});
        for (std::size_t k = 0; k < calls.size(); ++k) {
          const std::size_t which = (k + t * calls.size() / num_threads) % calls.size();
          found[which] = mex_host::call(calls[which].inputs, 1, calls[which].error_call);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t k = 0; k < calls.size(); ++k) {
    const mex_host::Result alone = mex_host::call(calls[k].inputs, 1, calls[k].error_call);
    for (const std::vector<mex_host::Result>& found : results) {
      EXPECT_EQ(values_or_none(found[k]), values_or_none(alone)) << "call " << k;
      EXPECT_EQ(found[k].message, alone.message) << "call " << k;
    }
  }
}

}  // namespace
