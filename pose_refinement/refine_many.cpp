// SPDX-License-Identifier: BSD-3-Clause
// Problems one after the other, on several threads.
#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <new>
#include <stdexcept>
#include <thread>

#include "pose_refinement/options.h"

namespace kelvane {
namespace {

Refine_result failed(const Refine_problem& problem, const char* message) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  Refine_result result;
  result.pose = problem.start;
  for (auto& row : result.covariance) std::fill_n(row, 6, nan);
  result.noise_sigma = result.loss_scale = nan;
  result.before = result.after = {nan, nan, nan};
  result.message = message;
  return result;
}

Refine_result refine_or_fail(const Refine_problem& problem, const Refine_options& options) noexcept {
  try {
    try {
      return refine(problem, options);
    } catch (const std::invalid_argument& error) {
      return failed(problem, error.what());
    }
  } catch (const std::exception&) {
    return failed(problem, "out of memory");  // so short that it needs none
  }
}

}  // namespace

std::vector<Refine_result> refine_many(const std::vector<Refine_problem>& problems, const Refine_options& options,
                                       unsigned num_threads) {
  check(options);
  if (options.watch) throw std::invalid_argument("options.watch must be empty where many problems are refined.");
  std::vector<Refine_result> results(problems.size());
  std::atomic<std::size_t> next{0};
  const auto work = [&] {  // throws nothing
    for (std::size_t i = next++; i < problems.size(); i = next++) results[i] = refine_or_fail(problems[i], options);
  };
  const std::size_t wanted = num_threads == 0 ? std::thread::hardware_concurrency() : num_threads;
  std::vector<std::thread> others;
  try {
    others.reserve(std::min(wanted, problems.size()));
    while (others.size() + 1 < std::min(wanted, problems.size())) others.emplace_back(work);
  } catch (const std::exception&) {  // no more threads than these: they do the work as well
  }
  work();
  for (std::thread& thread : others) thread.join();
  return results;
}

}  // namespace kelvane
