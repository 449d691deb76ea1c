// SPDX-License-Identifier: BSD-3-Clause
// Estimates among other tasks.
#pragma once

#include "pose_estimation/estimate.h"
#include "pose_refinement/tasks.h"

namespace kelvane {

/// One estimate of many, with a problem and options of its own, in which `watch` must be empty.
struct Estimate_task : Task {
  Estimate_problem problem;
  Estimate_options options;
  Estimate_progress progress = {};  ///< out, when over or left without error
  double log10_chance = 0.0;        ///< out, of the result

  void work(Deadline deadline) override;
};

}  // namespace kelvane
