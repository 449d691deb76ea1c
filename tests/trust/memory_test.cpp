// SPDX-License-Identifier: BSD-3-Clause
// Memory after many calls, good ones and failing ones: as before. What a call allocates: the same for any number of
// points and of iterations.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "contract/refinement.h"
#include "mex_host.h"
#include "support/long_round.h"
#include "support/long_run.h"
#include "trust/failing_memory.h"
#include "trust/good_call.h"
#include "trust/many_calls.h"
#include "trust/outcome.h"

namespace {

using mex_host::Error_call;

class FlatMemory : public testing::TestWithParam<Error_call> {};

TEST_P(FlatMemory, AfterCallsThatSucceed) {
  std::vector<trust::Tested_call> calls;
  for (const int type : trust::all_types) {
    for (const bool is_analytic : {true, false}) {
      calls.push_back({std::to_string(type), trust::good_inputs(type, 4, is_analytic)});
    }
  }
  trust::expect_flat_memory(calls, support::repetitions<std::size_t>(trust::many, 1000000), GetParam(),
                            trust::gives_pose);
}

TEST_P(FlatMemory, AfterTenIterationsEach) {
  std::vector<mxArray> shortest = trust::good_inputs(0, 8);
  shortest.resize(3, shortest.front());
  trust::expect_flat_memory({{"ten iterations", shortest}}, support::repetitions<std::size_t>(trust::many, 1000000),
                            GetParam(), trust::gives_pose);
}

TEST_P(FlatMemory, AfterCallsThatFailEarlyAndLate) {
  std::vector<trust::Tested_call> calls{{"no input", {}}, {"one input", {mex_host::scalar(1)}}};
  for (const int type : trust::all_types) {
    calls.push_back({"no points", trust::good_inputs(type, 0)});
    std::vector<mxArray> refused = trust::good_inputs(type, 4);
    refused[5] = mex_host::other_class("function_handle");
    calls.push_back({"a function", refused});
    if (type < 10) continue;
    std::vector<mxArray> wrong_intrinsics = trust::good_inputs(type, 4);
    wrong_intrinsics[0].values.back() = 1.0;
    calls.push_back({"wrong intrinsics", wrong_intrinsics});
  }
  trust::expect_flat_memory(calls, support::repetitions<std::size_t>(trust::many, 100000), GetParam(),
                            trust::gives_report);
}

INSTANTIATE_TEST_SUITE_P(Hosts, FlatMemory, testing::ValuesIn(trust::all_error_calls),
                         [](const auto& host) { return trust::name_of(host.param); });

constexpr std::size_t few_points = 100;
const std::size_t many_points = support::count_for_round(100000);

struct Demand {
  long num_allocations;
  std::size_t num_bytes;
};

bool operator==(const Demand& a, const Demand& b) {
  return a.num_allocations == b.num_allocations && a.num_bytes == b.num_bytes;
}
std::ostream& operator<<(std::ostream& stream, const Demand& demand) {
  return stream << demand.num_allocations << " allocations of " << demand.num_bytes << " bytes";
}

template <typename Work>
Demand demand_of(const Work& work) {
  work();  // what is made once in a process
  const trust::Failing_memory counter(trust::none_fails, trust::Shortage::once);
  work();
  return {counter.num_allocations(), counter.num_bytes()};
}

/// Of the whole module.
Demand demand_of_call(std::vector<mxArray> inputs) {
  mex_host::Prepared_call call(std::move(inputs));
  return demand_of([&] { call(); });
}

class ConstantMemory : public testing::TestWithParam<std::tuple<int, bool>> {
 protected:
  int type() const { return std::get<0>(GetParam()); }
  bool is_analytic() const { return std::get<1>(GetParam()); }
};

TEST_P(ConstantMemory, IsAllocatedForAnyNumberOfPoints) {
  for (const bool is_weighted : {false, true}) {
    const auto demand = [&](std::size_t num_points) {
      std::vector<mxArray> inputs = trust::good_inputs(type(), num_points, is_analytic());
      if (!is_weighted) inputs.pop_back();
      return demand_of_call(std::move(inputs));
    };
    Demand expected = demand(few_points);
    EXPECT_GT(expected.num_allocations, 0);
    // Bearings are laid out as pairs.
    if (kelvane::find_rotation_type(type())->is_bearing()) expected.num_bytes += 24 * (many_points - few_points);
    EXPECT_EQ(demand(many_points), expected) << (is_weighted ? "weighted" : "without weights");
  }
}

TEST_P(ConstantMemory, IsAllocatedForAnyNumberOfIterations) {
  const std::vector<mxArray> inputs = trust::good_inputs(type(), few_points);
  const kelvane::contract::Arguments arguments{kelvane::find_rotation_type(type()),
                                               static_cast<int>(few_points),
                                               inputs[0].values.data(),
                                               inputs[1].values.data(),
                                               inputs[2].values.data(),
                                               inputs[3].values.data(),
                                               inputs[5].values.data()};
  kelvane::contract::Settings settings(arguments);
  settings.is_analytic = is_analytic();
  settings.min_x_step = -1.0F;
  settings.min_y_step = -3e38F;
  const auto demand = [&](int max_iters) {
    settings.max_iters = max_iters;
    return demand_of([&] { kelvane::contract::refine(arguments, settings); });
  };
  const Demand one = demand(1);
  for (const int max_iters : {2, 3, 10}) EXPECT_EQ(demand(max_iters), one) << max_iters << " iterations";
}

INSTANTIATE_TEST_SUITE_P(Types, ConstantMemory, testing::Combine(testing::ValuesIn(trust::all_types), testing::Bool()),
                         [](const auto& of) {
                           const int type = std::get<0>(of.param);
                           return "Type" + std::string(type < 0 ? "Minus" : "") + std::to_string(std::abs(type)) +
                                  (std::get<1>(of.param) ? "InClosedForm" : "ByDifferences");
                         });

}  // namespace
