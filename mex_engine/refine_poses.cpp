// SPDX-License-Identifier: BSD-3-Clause
// results = kelvane_engine('refine', starts, points, observations, intrinsics, options, states, seconds, num_threads)
// states = kelvane_engine('descend', the same): the iteration alone, and from where 'refine' makes its results.
// 'estimate' and 'search' are the same without starts.
#include <type_traits>

#include "mex_engine/answer.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/pose_cells.h"
#include "mex_engine/refined.h"
#include "mex_engine/sentence.h"
#include "pose_refinement/refine_tasks.h"

namespace kelvane::mex_engine {
namespace {

void give(const Host_problem& problem, const Given_options& options, unsigned /*num_threads*/, Refine_task& task) {
  task.problem = &problem.problem();
  task.options = &options.refine;
}

void give(const Host_problem& problem, const Given_options& options, unsigned num_threads, Estimate_task& task) {
  const Refine_problem& given = problem.problem();
  task.problem = {given.points, given.observations, given.camera};
  task.options = options.estimate;
  task.options.max_error = given.camera.sees_directions ? options.max_angle : options.max_pixels;
  task.options.num_threads = num_threads;
}

const Estimate_task* as_estimate(const Refine_task& /*task*/) { return nullptr; }
const Estimate_task* as_estimate(const Estimate_task& task) { return &task; }

/// Problems with a start or without, as their tasks are refinements or estimates.
template <typename One_task>
class Poses final : public Answer {
 public:
  Poses(const Inputs& inputs, bool only_states) : only_states_(only_states) {
    const Pose_cells cells(inputs, std::is_same_v<One_task, Refine_task>);
    const std::size_t n = cells.size();
    read_all_options(cells.options(), n);
    cells.check_states();
    refined_ = std::vector<Refined>(n);
    tasks_.resize(n);
    for (std::size_t k = 0; k < n; ++k) read_or_fail(cells, k);
    run_tasks(tasks_, cells.num_threads(), cells.deadline());
    while (num_begun_ < n && (tasks_[num_begun_].has_begun || tasks_[num_begun_].is_over)) ++num_begun_;
    for (std::size_t k = 0; k < n; ++k) take(tasks_[k], refined_[k]);
  }

  void write(int /*num_outputs*/, mxArray* outputs[]) const override {
    outputs[0] = only_states_ ? written_states(refined_) : written_results(refined_, num_begun_);
  }

 private:
  /// A struct for all is read at once, and what is wrong with it is an error of the call.
  void read_all_options(const mxArray* options, std::size_t n) {
    has_own_options_ = mxIsCell(options);
    options_.resize(has_own_options_ ? n : 1);
    if (!has_own_options_) options_[0] = read_options(options);
    if (has_own_options_ && num_elements(options) != n)
      refuse("inputs", "options must be one struct for each problem.");
  }

  void read_or_fail(const Pose_cells& cells, std::size_t k) {
    Given_options& options = options_[has_own_options_ ? k : 0];
    One_task& task = tasks_[k];
    try {
      if (has_own_options_) options = read_options(checked_element(cells.options(), k));
      refined_[k].problem = std::make_unique<Host_problem>(cells.problem(k), options);
      give(*refined_[k].problem, options, cells.size() == 1 ? cells.num_threads() : 1, task);
      task.words = &words;
      task.state = cells.state(k);
      task.only_state = only_states_;
      task.shall_stop = options.is_stopped;
    } catch (const Bad_argument& error) {
      task.error = error;
    } catch (const std::bad_alloc&) {
      task.error = out_of_memory_;
    }
  }

  static void take(const One_task& task, Refined& refined) {
    refined.task = &task;
    refined.estimate = as_estimate(task);
    if (!task.error) return;
    refined.identifier = std::string("kelvane:") + task.error->identifier();
    refined.message = refined.problem != nullptr ? refined.problem->message_of(*task.error) : task.error->what();
  }

  const Bad_argument out_of_memory_{"memory", "", "out of memory"};  // while there is some left to say so
  const bool only_states_;
  bool has_own_options_ = false;
  std::vector<Given_options> options_;
  std::vector<Refined> refined_;
  std::vector<One_task> tasks_;
  std::size_t num_begun_ = 0;
};

}  // namespace

std::unique_ptr<Answer> refine_poses(const Inputs& inputs) {
  return std::make_unique<Poses<Refine_task>>(inputs, false);
}

std::unique_ptr<Answer> descend(const Inputs& inputs) { return std::make_unique<Poses<Refine_task>>(inputs, true); }

std::unique_ptr<Answer> estimate_poses(const Inputs& inputs) {
  return std::make_unique<Poses<Estimate_task>>(inputs, false);
}

std::unique_ptr<Answer> search_poses(const Inputs& inputs) {
  return std::make_unique<Poses<Estimate_task>>(inputs, true);
}

}  // namespace kelvane::mex_engine
