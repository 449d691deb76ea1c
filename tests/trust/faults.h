// SPDX-License-Identifier: BSD-3-Clause
// Calls in which memory runs out, at every place in turn: each tells it and leaves nothing behind, and the next call is
// as ever.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "mex_host.h"
#include "trust/failing_memory.h"
#include "trust/tested_call.h"

namespace trust {

/// Whose memory runs out: that of the module, for one allocation or from there on, or that of the host, while it
/// creates an array or looks at one.
enum class Fault { one_allocation, all_allocations, host_creating, host_reading };
/// Where the error call jumps, looking at an array takes no memory.
inline std::vector<Fault> faults_of(mex_host::Error_call error_call) {
  std::vector<Fault> faults{Fault::one_allocation, Fault::all_allocations, Fault::host_creating};
  if (error_call == mex_host::Error_call::throws) faults.push_back(Fault::host_reading);
  return faults;
}

struct Fault_expectation {
  Judge ends_well;                       // whether or not something has failed
  Judge tells_it;                        // where something has failed
  std::function<void()> settle = [] {};  // a call after which the module holds nothing of those before
};

namespace detail {

constexpr long too_many = 100000;  // no call here makes as many allocations

struct Observation {
  bool has_failed = false;
  bool ends_well = false;
  bool tells_it = false;
  std::string problem;
  long num_blocks_left = 0;
};

inline bool is_of_host(Fault fault) { return fault == Fault::host_creating || fault == Fault::host_reading; }

/// One call during which the allocation, or the work of the host, number `count` fails. Nothing that lives on is
/// allocated between the two countings.
inline Observation call_with_fault(const Tested_call& call, mex_host::Error_call error_call, Fault fault, long count,
                                   const Fault_expectation& expected) {
  Observation seen;
  seen.problem.reserve(4096);
  Failing_memory memory(is_of_host(fault) ? none_fails : count,
                        fault == Fault::all_allocations ? Shortage::lasting : Shortage::once);
  {
    std::optional<mex_host::Failing_host> host;
    if (is_of_host(fault)) {
      host.emplace(fault == Fault::host_creating ? mex_host::Host_work::creating : mex_host::Host_work::reading, count);
    }
    const mex_host::Result result = call.run(error_call);
    memory.end_shortage();
    seen.has_failed = memory.has_failed() || (host && host->has_failed());
    host.reset();
    // A host that does not come back asks for nothing more.
    const auto verdict = result.has_host_failed ? is_in_order(result) : expected.ends_well(result);
    seen.ends_well = static_cast<bool>(verdict);
    seen.problem = verdict.message();
    seen.tells_it = result.has_host_failed ? result.identifier.empty() : static_cast<bool>(expected.tells_it(result));
    if (!seen.tells_it) seen.problem += " " + result.identifier + " " + result.message;
  }
  expected.settle();
  seen.num_blocks_left = memory.num_blocks_left();
  return seen;
}

}  // namespace detail

/// Lets everything in a call fail in turn. Returns how much there is to fail.
inline long fail_everything(const Tested_call& call, mex_host::Error_call error_call, Fault fault,
                            const Fault_expectation& expected) {
  const mex_host::Result whole = call.run(error_call);
  for (long count = 0; count < detail::too_many; ++count) {
    SCOPED_TRACE(call.name + ", fault " + std::to_string(static_cast<int>(fault)) + ", number " +
                 std::to_string(count));
    const auto seen = detail::call_with_fault(call, error_call, fault, count, expected);
    EXPECT_TRUE(seen.ends_well) << seen.problem;
    EXPECT_EQ(seen.num_blocks_left, 0);
    if (!seen.has_failed) return count;
    EXPECT_TRUE(seen.tells_it) << seen.problem;
    EXPECT_TRUE(is_same(call.run(error_call), whole));
  }
  ADD_FAILURE() << "there is no end of allocations";
  return detail::too_many;
}

}  // namespace trust
