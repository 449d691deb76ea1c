// SPDX-License-Identifier: BSD-3-Clause
// How a call of mexFunction is compared with the reference refinement, and the inputs that a call may add.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "support/matchers.h"
#include "support/reference_scenes.h"

namespace reference {

// What a departure from the algorithm must change to count as noticed.
inline constexpr double noticeable = 1e-3;
// Worse are a few scenes of qn, whose model is no rotation, and of four points when weights drop two of their
// equations.
inline constexpr Real largest_condition = 1e5;

inline bool is_analytic(const Call& call) { return call.stopping.empty() || call.stopping[3] == 0.0; }

inline bool is_well_conditioned(const Call& call) { return refine(call).worst_condition <= largest_condition; }

/// Relative to max(1, |x|): the rounding of J, of b and of the decomposition, some ten eps, amplified by the condition
/// of J. What one iteration loses the next one corrects, so their number does not count. A forward difference divides
/// the rounding of values near 1000 by a step near 0.01, which costs two digits more.
inline double tolerance_of(const Call& call, const Refined& expected) {
  const double factor = is_analytic(call) ? 30.0 : 3000.0;
  const double condition = static_cast<double>(expected.worst_condition);
  return std::min(1e-9, factor * std::numeric_limits<double>::epsilon() * condition);
}

inline std::vector<double> module_result(const Call& call) {
  const mex_host::Result result = mex_host::call(host_inputs(call));
  EXPECT_EQ(result.message, "");
  EXPECT_TRUE(result.output && result.output->rows == 1);
  return result.output ? result.output->values : std::vector<double>();
}

inline testing::AssertionResult agrees(const Call& call) {
  const Refined expected = refine(call);
  if (expected.worst_condition > largest_condition) {
    return testing::AssertionFailure() << "condition " << static_cast<double>(expected.worst_condition);
  }
  const std::vector<double> actual = module_result(call);
  const double tolerance = tolerance_of(call, expected);
  for (const std::vector<double>& tie : expected.ties) {
    if (support::is_close(actual, tie, tolerance)) return testing::AssertionSuccess();
  }
  return support::is_close(actual, expected.x, tolerance);
}

inline bool notices(const Call& call, const Departures& departures) {
  return !support::is_close(module_result(call), refine(call, departures).x, noticeable);
}

inline constexpr double never_x = 0.0;
inline constexpr double never_y = -1e30;

enum class Weights { absent, positive, some_zero };

inline std::vector<double> random_weights(Weights kind, std::size_t size, support::Random& random) {
  std::vector<double> weights;
  if (kind == Weights::absent) return weights;
  for (std::size_t i = 0; i < size; ++i) {
    weights.push_back(kind == Weights::some_zero && i % 5 == 0 ? 0.0 : random.uniform(0.2, 3.0));
  }
  return weights;
}

enum class Stop { never, by_step, by_error, by_both };

/// Thresholds between what the iterations of this call measure, so that each is passed by some of them. A single
/// iteration measures nothing and must not be stopped by any threshold.
inline void set_thresholds(Call& call, Stop stop, std::size_t scene) {
  const Refined run = refine(call);
  const bool is_single = run.steps.empty();
  if (stop == Stop::by_step || stop == Stop::by_both) {
    const std::size_t k = scene % 3;
    const auto between = [&] { return k == 0 ? 2.0L * run.steps[0] : std::sqrt(run.steps[k - 1] * run.steps[k]); };
    call.stopping[1] = is_single ? 1e6 : static_cast<double>(between());
  }
  if (stop == Stop::by_error || stop == Stop::by_both) {
    const auto between = [&] {
      const Real first = run.decreases[0];
      return scene % 2 == 0 ? first + std::abs(first) : (first + run.decreases[1]) / 2.0L;
    };
    call.stopping[2] = is_single ? 1e6 : static_cast<double>(between());
  }
}

/// The maximum that a caller gives is not used, and everything but zero asks for finite differences.
inline std::vector<double> criteria(bool analytic, std::size_t scene) {
  const std::vector<double> maxima = {50.0, 0.0, -1.0, std::numeric_limits<double>::quiet_NaN()};
  const std::vector<double> zeros = {0.0, -0.0};
  const std::vector<double> others = {1.0, -2.0, std::numeric_limits<double>::quiet_NaN(), 1e-300};
  return {maxima[scene % 4], never_x, never_y, analytic ? zeros[scene % 2] : others[scene % 4]};
}

}  // namespace reference
