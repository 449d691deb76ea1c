// SPDX-License-Identifier: BSD-3-Clause
// Estimates on threads.
#include "pose_estimation/estimate_tasks.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "pose_estimation/estimation.h"

namespace kelvane {

void Estimate_task::work(Deadline deadline) {
  Estimation estimation(problem, options, *words);
  const bool is_due = run(estimation, deadline);
  progress = estimation.progress();
  if (!is_due) return;
  Estimate_result found = estimation.result();
  log10_chance = found.log10_chance;
  result = std::move(found);
}

namespace {

Estimate_result result_of(Estimate_task& task) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  Estimate_result result;
  if (task.error) {
    set_failed(*task.error, result);
    for (auto& row : result.pose.rotation) std::fill_n(row, 3, nan);
    std::fill_n(result.pose.centre, 3, nan);
    return result;
  }
  static_cast<Refine_result&>(result) = std::move(task.result);
  result.num_trials = task.progress.num_trials;
  result.log10_chance = task.log10_chance;
  return result;
}

}  // namespace

std::vector<Estimate_result> estimate_many(const std::vector<Estimate_problem>& problems,
                                           const Estimate_options& options, unsigned num_threads) {
  check(options);
  if (options.watch) throw Bad_argument("option", "options.watch", " must be empty where many poses are estimated.");
  std::vector<Estimate_task> tasks(problems.size());
  for (std::size_t i = 0; i < problems.size(); ++i) {
    tasks[i].problem = problems[i];
    tasks[i].options = options;
    tasks[i].options.num_threads = 1;  // they are all busy with others
  }
  run_tasks(tasks, num_threads, Deadline::max());
  std::vector<Estimate_result> results;
  results.reserve(tasks.size());
  for (Estimate_task& task : tasks) results.push_back(result_of(task));
  return results;
}

}  // namespace kelvane
