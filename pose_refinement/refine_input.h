// SPDX-License-Identifier: BSD-3-Clause
// What a refinement works on.
#pragma once

#include "pose_refinement/camera_rows.h"
#include "pose_refinement/observed_points.h"
#include "pose_refinement/words.h"

namespace kelvane {

/// A problem and its options, checked, with what the iteration makes of them.
struct Refine_input {
  /// Throws Bad_argument. All must outlive it.
  Refine_input(const Refine_problem& problem, const Refine_options& options, const Words& words);

  const Refine_problem& problem;
  const Refine_options& options;
  const Words& words;
  Pose start;  ///< with the rotation next to the problem's
  Observed_points data;
  Camera_rows rows;
};

}  // namespace kelvane
