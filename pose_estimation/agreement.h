// SPDX-License-Identifier: BSD-3-Clause
// How well matches agree with a pose.
#pragma once

#include <cstddef>
#include <vector>

#include "pose_estimation/matches.h"

namespace kelvane {

/// Squared errors are in units of the largest that an inlier may have, to first order (docs/derivations.md, Eq. 74).
class Agreement {
 public:
  /// Which must outlive it.
  explicit Agreement(const Matches& matches);

  /// The sum over the matches of 1 less the squared error, where this is above 0. It is 0 for no more than `least`, and
  /// as soon as more has become improbable: matches lie in an order drawn by lot, so that the first tell of all.
  double gain(const Pose& pose, double least) const;
  /// Of each match; infinite where the point has no place in front.
  std::vector<double> squares(const Pose& pose) const;
  /// The part of the matches that are seen as near as `square` to where the pose has the point of another, a chosen
  /// one: by so many at the least, with three standard deviations. Of samples.
  double crowd(const Pose& pose, const std::vector<std::size_t>& chosen, double square) const;

 private:
  const Matches& matches_;
  const Consensus_kernels& kernels_;
};

}  // namespace kelvane
