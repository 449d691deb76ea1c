// SPDX-License-Identifier: BSD-3-Clause
// Many refinements at once, on threads of this process, for a limited time.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/refinement.h"

namespace kelvane {

/// One refinement of many, with a problem and options of its own, in which `watch` must be empty.
struct Refine_task {
  const Refine_problem* problem = nullptr;
  const Refine_options* options = nullptr;
  const Words* words = &words_of_cpp;
  std::vector<double> state = {};  ///< in: of an earlier call, or empty; out: where it was left, empty with a result
  bool only_state = false;         ///< in: when over, its state in place of the result, see Refinement::state()
  bool shall_stop = false;         ///< in: one with a state ends there, see Refinement::stop()
  bool has_begun = false;          ///< out
  bool is_over = false;            ///< out
  Refine_result result = {};       ///< out, when over without error, unless only_state
  Refine_step step = {};           ///< out, the newest, when left
  std::size_t num_iterations = 0;  ///< out, likewise
  /// In: with one it is over. Out, when over with an error; the identifier is "memory" for bad_alloc.
  std::optional<Bad_argument> error = {};
};

/// Takes tasks in their order, on threads of this process (0: as many as the machine runs at once, the caller's among
/// them), and begins none after the deadline but the first. A task that is not over then stays where its iteration has
/// led. Same bits whatever the number of threads. What is wrong with a task stays
/// in it; throws std::bad_alloc before anything has begun.
void run_tasks(std::vector<Refine_task>& tasks, unsigned num_threads, Deadline deadline);

}  // namespace kelvane
