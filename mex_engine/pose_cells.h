// SPDX-License-Identifier: BSD-3-Clause
// The inputs of calls for many poses, beside their options.
#pragma once

#include <cstddef>
#include <vector>

#include "mex_engine/answer.h"
#include "mex_engine/host_problem.h"
#include "pose_refinement/refinement.h"

namespace kelvane::mex_engine {

/// ([starts,] points, observations, intrinsics, options, states, seconds, num_threads), see answer.h. Each throws
/// Bad_argument.
class Pose_cells {
 public:
  Pose_cells(const Inputs& inputs, bool have_starts);

  std::size_t size() const { return num_problems_; }
  Given_inputs problem(std::size_t k) const;
  const mxArray* options() const { return behind_starts_[3]; }
  void check_states() const;
  std::vector<double> state(std::size_t k) const;
  Deadline deadline() const { return deadline_; }
  unsigned num_threads() const { return num_threads_; }

 private:
  const mxArray* starts_ = nullptr;
  Inputs behind_starts_;
  std::size_t num_problems_ = 0;
  Deadline deadline_;
  unsigned num_threads_;
};

/// Throws Bad_argument where there is none.
const mxArray* checked_element(const mxArray* cell, std::size_t k);

}  // namespace kelvane::mex_engine
