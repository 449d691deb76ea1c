// SPDX-License-Identifier: BSD-3-Clause
// The results of many refinements as one struct of the host.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mex_engine/host_problem.h"
#include "pose_estimation/estimate_tasks.h"

namespace kelvane::mex_engine {

/// One of the problems of a call.
struct Refined {
  std::unique_ptr<Host_problem> problem;    ///< null where it could not be read
  const Task* task = nullptr;               ///< what became of it
  const Estimate_task* estimate = nullptr;  ///< the same, where it is an estimate
  std::string identifier, message;          ///< of an error

  bool has_failed() const { return task->error.has_value(); }
  bool is_found() const { return task->is_over && !has_failed(); }
};

/// The first n of them as a struct, of which each array has a column or an element for each problem: an array of the
/// host costs more than what is in it. matlab/private/refined_rows.m takes it apart. Where a problem has an error
/// numbers are 0 and elements []; of one on the way there are the newest step,
/// or of an estimate its trials, and the state.
///
///   figures           13 x n, by rows: 1 exit, 2 and 3 the robust rms before and after, 4 and 5 the plain one, 6 and 7
///                     that of the inliers, 8 iterations, 9 noise_sigma, 10 number of inliers, 11 loss_scale, 12 points
///                     behind the camera, 13 points left out
///   search            4 x n, of estimates: trials, how many are needed as far as is known, inliers of the best pose of
///                     them, log10 of the chance
///   pose              12 x n: columns of the rotation, centre; also as `written`, in the form that is asked for
///   covariance        36 x n, of [w; dt]
///   alternative       13 x n: rms and pose of the other tilt
///   num_steps, steps  1 x n, and 15 rows: rms, turn, shift and pose of each step, one problem behind the other
///   is_found, has_alternative, is_start, is_struct, is_estimate
///                     1 x n: over without an error; there is another tilt; the caller's own start; written is the
///                     struct of kelvane_pose; without a start
///   message           the exit in words, or the error; [] where it is that of the problem before
///   identifier        of an error
///   residuals, inliers, points, observations, intrinsics
///                     cells of d x N, 1 x N and what was read, [] where that is the caller's own array; K, or the
///                     struct of kelvane_camera where there is a lens
///   state             to go on from, [] where it is over
///
/// Calls the host alone, and owns nothing.
mxArray* written_results(const std::vector<Refined>& refined, std::size_t n);

/// A cell with the state of each, [] where there is none. Likewise.
mxArray* written_states(const std::vector<Refined>& refined);

}  // namespace kelvane::mex_engine
