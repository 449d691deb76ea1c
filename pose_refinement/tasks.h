// SPDX-License-Identifier: BSD-3-Clause
// Many poses at once, on threads of this process, for a limited time.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/refinement.h"

namespace kelvane {

/// Work on one pose of many, which can be left and taken up again.
struct Task {
  const Words* words = &words_of_cpp;
  std::vector<double> state = {};  ///< in: of an earlier call, or empty; out: where it was left, empty with a result
  bool only_state = false;         ///< in: when over, its state in place of the result, see Refinement::state()
  bool shall_stop = false;         ///< in: one with a state ends there, see Refinement::stop()
  bool has_begun = false;          ///< out
  bool is_over = false;            ///< out
  Refine_result result = {};       ///< out, when over without error, unless only_state
  Refine_step step = {};           ///< out, of a refinement the newest, when left
  std::size_t num_iterations = 0;  ///< out, likewise
  /// In: with one it is over. Out, when over with an error; the identifier is "memory" for bad_alloc.
  std::optional<Bad_argument> error = {};

  Task() = default;
  Task(const Task&) = default;
  Task& operator=(const Task&) = default;
  virtual ~Task() = default;

  /// Goes on until it is over or the deadline has passed. Throws Bad_argument and std::bad_alloc.
  virtual void work(Deadline deadline) = 0;

 protected:
  /// By a Refinement, or what else can be left: true where its result is due.
  template <typename Work>
  bool run(Work& work, Deadline deadline) {
    const bool is_resumed = !state.empty();
    if (is_resumed) work.resume(state.data(), state.size());
    if (is_resumed && shall_stop) work.stop();
    is_over = work.run(deadline);
    if (is_over && !only_state) {
      state.clear();
      return true;
    }
    state = work.state();
    return false;
  }
};

/// Takes tasks in their order, on threads of this process (0: as many as the machine runs at once, the caller's among
/// them), and begins none after the deadline but the first. A task that is not over then stays where its work has
/// led. Same bits whatever the number of threads. What is wrong with a task stays
/// in it; throws std::bad_alloc before anything has begun.
void run_all(const std::vector<Task*>& tasks, unsigned num_threads, Deadline deadline);

/// Likewise.
template <typename One_task>
void run_tasks(std::vector<One_task>& tasks, unsigned num_threads, Deadline deadline) {
  std::vector<Task*> all;
  all.reserve(tasks.size());
  for (One_task& task : tasks) all.push_back(&task);
  run_all(all, num_threads, deadline);
}

/// What stands for a result where there is an error: its message, and no number but NaN.
void set_failed(const Bad_argument& error, Refine_result& result);

}  // namespace kelvane
