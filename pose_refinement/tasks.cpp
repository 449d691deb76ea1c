// SPDX-License-Identifier: BSD-3-Clause
// A queue of tasks, and what one thread does with one of them.
#include "pose_refinement/tasks.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <limits>

#include "pose_refinement/threads.h"

namespace kelvane {
namespace {

void end_with(const Bad_argument& error, Task& task) {
  task.state.clear();
  task.is_over = true;
  task.error = error;
}

// NOLINTNEXTLINE(bugprone-exception-escape): see below
void work_or_fail(Task& task, Deadline deadline, const Bad_argument& out_of_memory) noexcept {
  task.has_begun = true;
  try {
    try {
      task.work(deadline);
    } catch (const Bad_argument& error) {
      end_with(error, task);
    }
  } catch (const std::exception&) {
    end_with(out_of_memory, task);  // its texts are so short that a copy needs none
  }
}

}  // namespace

void run_all(const std::vector<Task*>& tasks, unsigned num_threads, Deadline deadline) {
  const Bad_argument out_of_memory("memory", "", "out of memory");
  for (Task* task : tasks) {
    task->has_begun = task->is_over = task->error.has_value();
  }
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next++; i < tasks.size(); i = next++) {
      if (i > 0 && std::chrono::steady_clock::now() >= deadline) return;
      if (!tasks[i]->error) work_or_fail(*tasks[i], deadline, out_of_memory);
    }
  };
  const std::size_t wanted = num_threads == 0 ? num_processors() : num_threads;
  work_on_threads(std::min(wanted, tasks.size()), work);
}

void set_failed(const Bad_argument& error, Refine_result& result) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  for (auto& row : result.covariance) std::fill_n(row, 6, nan);
  result.noise_sigma = result.loss_scale = nan;
  result.before = result.after = {nan, nan, nan};
  result.message = error.what();
}

}  // namespace kelvane
