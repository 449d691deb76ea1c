// SPDX-License-Identifier: BSD-3-Clause
// Clock, batches and medians.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace bench {

inline double seconds_now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The average time of one of num_calls calls, in nanoseconds.
template <typename Function>
double ns_per_call(int num_calls, const Function& function) {
  const double start = seconds_now();
  for (int i = 0; i < num_calls; ++i) function();
  return (seconds_now() - start) * 1e9 / num_calls;
}

/// How many calls fill a batch, which is long enough for the clock and for the first call's cold caches not to count.
template <typename Function>
int calls_in_batch(const Function& function) {
  constexpr double batch_ns = 1e6;
  const double first_ns = ns_per_call(1, function);  // with cold caches
  if (first_ns > batch_ns) return 1;
  return static_cast<int>(std::ceil(batch_ns / ns_per_call(3, function)));
}

/// Of at least one value.
inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  return 0.5 * (*middle + *std::max_element(values.begin(), middle));
}

}  // namespace bench
