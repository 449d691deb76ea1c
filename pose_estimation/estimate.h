// SPDX-License-Identifier: BSD-3-Clause
// A camera pose without a start, from points and observations many of which may be wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "pose_refinement/refine.h"

namespace kelvane {

/// What a pose is estimated from. The numbers must outlive the call.
struct Estimate_problem {
  Numbers points;        ///< X, Y, Z of each of N points, finite, world frame and units
  Numbers observations;  ///< as of Refine_problem: of the same point as far as they are right, NaN where not seen
  Camera_model camera;   ///< what the camera sees
};

/// Where a search stands, for Estimate_options::watch.
struct Estimate_progress {
  std::size_t num_trials;         ///< made
  std::size_t num_trials_needed;  ///< for the confidence, as far as is known
  std::size_t num_inliers;        ///< of the best pose
};

/// How to search. The defaults serve.
struct Estimate_options {
  double max_error = 0; /**< observations nearer than this to where the pose sees their points are right, the others
                             wrong: pixels, or radians of directions. 0: the search takes 8 pixels or 1 degree, and the
                             noise that it finds then decides, as far as twice of that. */
  double confidence = 0.9999;           ///< probability that some trial was made of right observations only
  std::size_t max_num_trials = 100000;  ///< triples of points that are tried
  std::uint64_t seed = 0;               ///< of the order in which they are; the same seed gives the same bits
  unsigned num_threads = 0;  ///< of this process; 0: as many as the machine runs at once; never changes a bit
  /// Called on the caller's thread from time to time; true stops, and the best pose so far is what is refined.
  std::function<bool(const Estimate_progress&)> watch = {};
};

/// What a search found, and the last refinement from there, of which `before` and the history are. The exit
/// `no_consensus` or `undetermined` tells that the pose is not to be used. Observations that are wrong are not in the
/// refinement: num_left_out counts them, and their residuals are there nevertheless.
struct Estimate_result : Refine_result {
  std::size_t num_trials = 0;  ///< triples that were tried
  double log10_chance = 0;     ///< of as good a consensus among observations that are all wrong, at most (Eq. 75)
};

/// Finds the pose that most observations agree with, by poses of three points each that are tried on all, and refines
/// it with kelvane::refine. Throws std::invalid_argument, with a sentence that names the argument, and std::bad_alloc.
Estimate_result estimate(const Estimate_problem& problem, const Estimate_options& options = {});

/// Estimates problems on threads of this process, as many as the machine runs at once unless said otherwise, whatever
/// options.num_threads is. Each result has the same bits as that of estimate() alone. A problem of which estimate()
/// would throw leaves the others alone: its pose is NaN, its exit `failed`, its message says why. Throws
/// std::invalid_argument for wrong options, of which `watch` must be empty, and std::bad_alloc.
std::vector<Estimate_result> estimate_many(const std::vector<Estimate_problem>& problems,
                                           const Estimate_options& options = {}, unsigned num_threads = 0);

}  // namespace kelvane
