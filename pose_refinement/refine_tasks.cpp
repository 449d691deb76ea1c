// SPDX-License-Identifier: BSD-3-Clause
// One refinement.
#include "pose_refinement/refine_tasks.h"

namespace kelvane {

void Refine_task::work(Deadline deadline) {
  Refinement refinement(*problem, *options, *words);
  if (run(refinement, deadline)) {
    result = refinement.result();
  } else {
    step = refinement.last_step();
    num_iterations = refinement.num_iterations();
  }
}

}  // namespace kelvane
