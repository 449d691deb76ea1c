// SPDX-License-Identifier: BSD-3-Clause
// Systems that hold NaN, infinities, denormals or entries near the ends of the range end like any other, at every size.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <numeric>
#include <string>
#include <vector>

#include "mex_host.h"
#include "support/long_run.h"
#include "support/watched_child.h"
#include "trust/good_call.h"
#include "trust/hostile_arrays.h"
#include "trust/outcome.h"

namespace {

// Camera, points, observations and weights: what enters the system of equations.
constexpr std::array<std::size_t, 4> spoiled_positions{0, 1, 2, 5};

/// 3 to 40, where solvers change from one method to another, and three large ones.
std::vector<std::size_t> all_sizes() {
  std::vector<std::size_t> sizes(38);
  std::iota(sizes.begin(), sizes.end(), 3);
  sizes.insert(sizes.end(), {100, 1000, 5000});
  return sizes;
}

/// Large systems take long: there a part stands for the whole unless there is time.
bool is_small(std::size_t num_points, std::size_t limit) { return num_points <= limit || support::is_long_run(); }

std::vector<int> types_for(std::size_t num_points) {
  if (!is_small(num_points, 100)) return {0, -1};  // a simple one and a hybrid
  return {trust::all_types.begin(), trust::all_types.end()};
}

/// The entries to spoil, in turn: one in the middle, all, the first, the last. An entry decides where in a matrix the
/// value comes to lie.
std::vector<std::vector<std::size_t>> spoiled_entries(std::size_t size, bool is_whole) {
  std::vector<std::size_t> every(size);
  std::iota(every.begin(), every.end(), 0);
  if (!is_whole) return {{size / 2}, every};
  return {{size / 2}, every, {0}, {size - 1}};
}

bool all_end_well(int type, std::size_t num_points, double value, support::Shared_note& note) {
  for (const bool is_analytic : {true, false}) {
    std::vector<mxArray> inputs = trust::good_inputs(type, num_points, is_analytic);
    for (const std::size_t position : spoiled_positions) {
      const std::vector<double> good = inputs[position].values;
      for (const std::vector<std::size_t>& entries : spoiled_entries(good.size(), is_small(num_points, 12))) {
        for (const std::size_t entry : entries) inputs[position].values[entry] = value;
        note.write("type " + std::to_string(type) + (is_analytic ? ", closed form" : ", differences") + ", input " +
                   std::to_string(position + 1) + ", entry " + std::to_string(entries.front()) + " of " +
                   std::to_string(entries.size()));
        if (!trust::ends_well(mex_host::call(inputs))) return false;
        inputs[position].values = good;
      }
    }
  }
  return true;
}

class Watchdog : public testing::TestWithParam<trust::Named_value> {};

TEST_P(Watchdog, IsNeverNeeded) {
  for (const std::size_t num_points : all_sizes()) {
    SCOPED_TRACE(std::to_string(num_points) + " points");
    EXPECT_TRUE(support::ends_in_time([&](support::Shared_note& note) {
      for (const int type : types_for(num_points)) {
        if (!all_end_well(type, num_points, GetParam().value, note)) return false;
      }
      return true;
    }));
  }
}

std::string test_name(const testing::TestParamInfo<trust::Named_value>& info) {
  return "Value" + std::to_string(info.index);
}

INSTANTIATE_TEST_SUITE_P(Values, Watchdog, testing::ValuesIn(trust::hostile_values), test_name);

}  // namespace
