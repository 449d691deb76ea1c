// SPDX-License-Identifier: BSD-3-Clause
// A refinement in parts: it can be left after each iteration and taken up again later.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "pose_refinement/refine_input.h"
#include "pose_refinement/refinement_state.h"
#include "pose_refinement/report.h"

namespace kelvane {

/// When to come back.
using Deadline = std::chrono::steady_clock::time_point;

/// A refinement that can be left and taken up again, with the same bits as in one go.
class Refinement {
 public:
  /// Checks everything and throws Bad_argument. All must outlive it.
  Refinement(const Refine_problem& problem, const Refine_options& options, const Words& words = words_of_cpp);

  /// Takes up where an earlier one of the same problem and options was left. Throws Bad_argument where this is no such
  /// state.
  void resume(const double* state, std::size_t size);
  /// Evaluates the start if that has not been done, else makes an iteration or finds that there may be no more, and
  /// goes on so until it is over or the deadline has passed: at least one of these. True when it is over.
  bool run(Deadline deadline);
  /// Plain numbers, with which another one can go on; after run(). Those of one that is over lead to its result without
  /// another iteration, and are none where the start has no cost, which is as soon found again.
  std::vector<double> state() const;
  /// The newest entry, in the caller's world, with the rms on the way as options.watch sees it; after run().
  Refine_step last_step() const;
  /// Number of the newest entry: 0 for the start; after run().
  std::size_t num_iterations() const { return state_.descent.history.size() - 1; }
  /// As if options.watch had returned true after the newest entry; after run().
  void stop();
  /// What has been found so far; after run().
  Refine_result result() const;

 private:
  void advance();
  std::size_t num_entries_of_descent() const;
  bool is_at_other_tilt() const;
  void begin_next();
  void look_from_other_side();
  void look_at_other_tilt();
  bool is_flat();
  std::vector<double> pulls_at(const Pose& pose, double scale);
  double least_turn_to(double turn_of_start) const;
  Descent_outcome outcome() const;
  bool is_other_side_better() const;
  void compare_tilts(Descent_outcome& outcome) const;

  Refine_input input_;
  Descent descent_;
  Refinement_state state_;
};

}  // namespace kelvane
