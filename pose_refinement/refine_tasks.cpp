// SPDX-License-Identifier: BSD-3-Clause
// A queue of tasks, and what one thread does with one of them.
#include "pose_refinement/refine_tasks.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>

#include "pose_refinement/threads.h"

namespace kelvane {
namespace {

void refine(Refine_task& task, Deadline deadline) {
  Refinement refinement(*task.problem, *task.options, *task.words);
  const bool is_resumed = !task.state.empty();
  if (is_resumed) refinement.resume(task.state.data(), task.state.size());
  if (is_resumed && task.shall_stop) refinement.stop();
  task.is_over = refinement.run(deadline);
  if (task.is_over && !task.only_state) {
    task.result = refinement.result();
    task.state.clear();
  } else {
    task.state = refinement.state();
    task.step = refinement.last_step();
    task.num_iterations = refinement.num_iterations();
  }
}

void end_with(const Bad_argument& error, Refine_task& task) {
  task.state.clear();
  task.is_over = true;
  task.error = error;
}

// NOLINTNEXTLINE(bugprone-exception-escape): see below
void refine_or_fail(Refine_task& task, Deadline deadline, const Bad_argument& out_of_memory) noexcept {
  task.has_begun = true;
  try {
    try {
      refine(task, deadline);
    } catch (const Bad_argument& error) {
      end_with(error, task);
    }
  } catch (const std::exception&) {
    end_with(out_of_memory, task);  // its texts are so short that a copy needs none
  }
}

}  // namespace

void run_tasks(std::vector<Refine_task>& tasks, unsigned num_threads, Deadline deadline) {
  const Bad_argument out_of_memory("memory", "", "out of memory");
  for (Refine_task& task : tasks) {
    task.has_begun = task.is_over = task.error.has_value();
  }
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next++; i < tasks.size(); i = next++) {
      if (i > 0 && std::chrono::steady_clock::now() >= deadline) return;
      if (!tasks[i].error) refine_or_fail(tasks[i], deadline, out_of_memory);
    }
  };
  const std::size_t wanted = num_threads == 0 ? num_processors() : num_threads;
  work_on_threads(std::min(wanted, tasks.size()), work);
}

}  // namespace kelvane
