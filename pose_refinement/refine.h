// SPDX-License-Identifier: BSD-3-Clause
// The refinement of a camera pose from end to end: one call, plain structs, nothing to release.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "pose_refinement/camera_model.h"
#include "pose_refinement/pose.h"

namespace kelvane {

/// Numbers of the caller, which are read where they lie: a pointer, or a vector, and how many.
struct Numbers {
  const double* data = nullptr;  ///< the first
  std::size_t size = 0;          ///< how many

  Numbers() = default;
  /// `count` of them from `first` on.
  Numbers(const double* first, std::size_t count) : data(first), size(count) {}
  /// All of a vector, which must outlive the call.
  // NOLINTNEXTLINE(google-explicit-constructor): an argument
  Numbers(const std::vector<double>& values) : data(values.data()), size(values.size()) {}
};

/// A Gaussian on the pose; give Refine_options::noise_sigma with it, or an observation counts as uncertain by 1 pixel
/// or 1 radian. Of the [w; dt] of Refine_result::covariance, from its pose on. 36 numbers of one of the two, or none.
struct Pose_prior {
  Pose pose;                 ///< the one that is most likely
  Numbers covariance = {};   ///< positive definite
  Numbers information = {};  ///< its inverse, which may leave directions open
};

/// Directions that are often known, for Refine_problem::fixed: all of the rotation, the direction of the world's z as
/// the camera sees it, the centre, or its height along the world's z.
inline const std::vector<double> fixed_rotation = {1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
/// See fixed_rotation.
inline const std::vector<double> fixed_gravity = {1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
/// See fixed_rotation.
inline const std::vector<double> fixed_centre = {0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1};
/// See fixed_rotation.
inline const std::vector<double> fixed_height = {0, 0, 0, 0, 0, 1};

/// What a pose is refined from. The numbers must outlive the call.
struct Refine_problem {
  Pose start;      ///< where to begin
  Numbers points;  ///< X, Y, Z of each of N >= 3 points, or 1 with a prior or fixed directions, finite, world frame and
                   ///< units
  Numbers observations; /**< of each point u, v or, of a camera that sees directions, x, y, z of any length but zero;
                             a point with a NaN in it was not seen and is left out */
  Camera_model camera;  ///< what the camera sees
  Numbers weights = {}; /**< factors of squared residuals, 0 or more: none (all are 1), one for each point or one for
                             each observed number; points with no weight above 0 are left out */
  Numbers covariances = {}; /**< in place of weights, the covariance of each observation, or one for all: 4 numbers, or
                                 9 of a direction at unit length, of which the part across it counts */
  Pose_prior prior = {};    ///< what is known of the pose beside the observations
  Numbers fixed = {};       /**< directions that are known, 6 numbers each: [w; dt], a turn about axes of the world and
                                 a shift. The pose is the start, turned by exp of the cross matrix of w and shifted by
                                 dt, with a [w; dt] across all of them */
};

/// What bounds the pull of outliers.
enum class Loss {
  none,    ///< nothing: s^2
  huber,   ///< linear from the scale on
  cauchy,  ///< logarithmic
  tukey    ///< constant from the scale on
};

/// A step of a refinement; the first of a history is the start.
struct Refine_step {
  Pose pose;     ///< after it
  double rms;    ///< root of the cost of a point on average, at the scale of the loss; see Rms::robust
  double turn;   ///< made by the step, radians
  double shift;  ///< likewise, world units
};

/// How to refine. The defaults serve.
struct Refine_options {
  Loss loss = Loss::none;    ///< none: plain least squares
  double loss_scale = 0;     /**< length of a weighted residual from which it counts less; 0: the one that keeps 95 %
                                  of the information in normal noise, whose size the median residual tells */
  double noise_sigma = 0;    /**< standard deviation of each coordinate of an observation of weight 1, for the
                                  covariance; 0: from the residuals, or 1 where the problem has covariances or a
                                  prior, which have a unit themselves */
  int max_iterations = 100;  ///< 0 or more; those at the other tilt of a flat target do not count
  double step_tolerance = 1e-9;   ///< stop at a step below this, radians and parts of the points' distance
  double function_tolerance = 0;  ///< stop when the cost falls by less than this part of it; 0: never
  /// Called on the caller's thread with the start, number 0, and every step; true stops. Its rms is the one on the way,
  /// while the scale of the loss still comes down. What it throws comes through.
  std::function<bool(const Refine_step&, std::size_t number)> watch = {};
};

/// Why a refinement ended; converged above 0.
enum class Refine_exit {
  step = 1,            ///< the step is below its tolerance
  rounding = 2,        ///< rounding hides any further decrease
  decrease = 3,        ///< the decrease is below its tolerance
  max_iterations = 0,  ///< not converged
  stopped = -1,        ///< by options.watch
  uphill = -2,         ///< no part of the step lowers the cost
  no_cost = -3,        ///< the start has no finite cost
  undetermined = -4,   ///< the points do not determine the pose
  behind = -5,         ///< more than half of the weight lies behind the camera
  ambiguous = -6,      ///< converged, but a flat target leaves another pose that fits as well, see Refine_alternative
  no_consensus = -8,   ///< of estimate: no more points agree than chance lets
  failed = -7          ///< of refine_many: refine would have thrown what the message says
};

/// Root mean square residuals of the points that are not left out, in pixels or radians, with weights.
struct Rms {
  double robust;   ///< the root of the cost of a point on average, at Refine_result::loss_scale
  double plain;    ///< without the loss, and without what a prior adds to the cost
  double inliers;  ///< of Refine_result::is_inlier, without the loss
};

/// Another minimum of the cost. Seen from afar a flat target may be tilted one way or the other.
struct Refine_alternative {
  Pose pose;   ///< at the minimum
  double rms;  ///< as Rms::robust of the result
};

/// What a refinement found.
struct Refine_result {  // NOLINT(bugprone-exception-escape): moving its vectors and text throws nothing
  Pose pose;            ///< never worse than the start, and the start to the last bit where nothing was better
  Refine_exit exit = Refine_exit::failed;  ///< why it ended
  std::string message;                     ///< the same in words
  double covariance[6][6] =
      {};                  /**< of [w; dt]: rotation times exp of the cross matrix of w, radians in the camera frame,
                               and centre + dt; infinite where undetermined, NaN with as many equations as unknowns */
  double noise_sigma = 0;  ///< standard deviation of a coordinate of an observation of weight 1
  double loss_scale = 0;   ///< that was used; infinite without a loss
  Rms before = {};         ///< of the start
  Rms after = {};          ///< of the pose
  /// Where the points are flat to within the noise and the target, tilted the other way, leads to another minimum.
  std::optional<Refine_alternative> alternative = {};
  std::size_t num_left_out = 0;          ///< points without an observation, a weight or an image at the start
  std::size_t num_behind = 0;            ///< pixels' points with the camera's back to them
  std::size_t num_inliers = 0;           ///< see is_inlier
  std::vector<double> residuals;         ///< observed minus seen, in the order of the observations; NaN where left out
  std::vector<unsigned char> is_inlier;  ///< of each point: within 3 sigma of what the loss takes for noise
  std::vector<Refine_step> history;      ///< start, then each step, one to the mirrored pose among them
};

/// Minimises the sum, over the points, of the squared distance between where the camera sees a point and where it was
/// observed, or of a loss of that distance. Throws std::invalid_argument, with a sentence that names the argument and
/// the number of its bad entry, and std::bad_alloc.
Refine_result refine(const Refine_problem& problem, const Refine_options& options = {});

/// Refines problems on threads of this process, as many as the machine runs at once unless said otherwise. Each result
/// has the same bits as that of refine() alone. A problem of which refine() would throw leaves the others alone: its
/// pose is its start, its exit `failed`, its message says why. Throws std::invalid_argument for wrong options, of which
/// `watch` must be empty, and std::bad_alloc.
std::vector<Refine_result> refine_many(const std::vector<Refine_problem>& problems, const Refine_options& options = {},
                                       unsigned num_threads = 0);

}  // namespace kelvane
