// SPDX-License-Identifier: BSD-3-Clause
// Refinements among other tasks.
#pragma once

#include "pose_refinement/tasks.h"

namespace kelvane {

/// One refinement of many, with a problem and options of its own, in which `watch` must be empty.
struct Refine_task : Task {
  const Refine_problem* problem = nullptr;
  const Refine_options* options = nullptr;

  void work(Deadline deadline) override;
};

}  // namespace kelvane
