// SPDX-License-Identifier: BSD-3-Clause
// What a refinement works on.
#pragma once

#include "pose_refinement/camera_rows.h"
#include "pose_refinement/free_motion.h"
#include "pose_refinement/known_pose.h"
#include "pose_refinement/observed_points.h"
#include "pose_refinement/words.h"

namespace kelvane {

/// A problem and its options, checked, with what the iteration makes of them.
struct Refine_input {
  /// Throws Bad_argument. All must outlive it.
  Refine_input(const Refine_problem& problem, const Refine_options& options, const Words& words);

  /// What fixed directions keep: the problem's start to the last bit where that is a rotation, not only next to one.
  const Pose& fixed_start() const;

  const Refine_problem& problem;
  const Refine_options& options;
  const Words& words;
  Pose start;          ///< with the rotation next to the problem's
  double noise_sigma;  ///< of the options, or 1 where the problem has a unit of its own; 0: from the residuals
  Observed_points data;
  Camera_rows rows;
  Known_pose prior;
  Free_motion motion;
};

}  // namespace kelvane
