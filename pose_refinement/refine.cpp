// SPDX-License-Identifier: BSD-3-Clause
// Refinements in one go: one, or many on threads.
#include "pose_refinement/refine.h"

#include <utility>

#include "pose_refinement/options.h"
#include "pose_refinement/refine_tasks.h"

namespace kelvane {
namespace {

Refine_result failed(const Refine_problem& problem, const Bad_argument& error) {
  Refine_result result;
  result.pose = problem.start;
  set_failed(error, result);
  return result;
}

}  // namespace

Refine_result refine(const Refine_problem& problem, const Refine_options& options) {
  Refinement refinement(problem, options);
  refinement.run(Deadline::max());
  return refinement.result();
}

std::vector<Refine_result> refine_many(const std::vector<Refine_problem>& problems, const Refine_options& options,
                                       unsigned num_threads) {
  check(options);
  if (options.watch) throw Bad_argument("option", "options.watch", " must be empty where many problems are refined.");
  std::vector<Refine_task> tasks(problems.size());
  for (std::size_t i = 0; i < problems.size(); ++i) {
    tasks[i].problem = &problems[i];
    tasks[i].options = &options;
  }
  run_tasks(tasks, num_threads, Deadline::max());
  std::vector<Refine_result> results(problems.size());
  for (std::size_t i = 0; i < problems.size(); ++i) {
    results[i] = tasks[i].error ? failed(problems[i], *tasks[i].error) : std::move(tasks[i].result);
  }
  return results;
}

}  // namespace kelvane
