// SPDX-License-Identifier: BSD-3-Clause
// Some of the matches, for a refinement.
#pragma once

#include <cstddef>
#include <vector>

#include "pose_estimation/matches.h"

namespace kelvane {

/// Copies of the caller's numbers, one match after the other.
class Chosen_matches {
 public:
  /// All must outlive it.
  Chosen_matches(const Estimate_problem& problem, const Matches& matches) : problem_(problem), matches_(matches) {}

  void add(std::size_t match) {
    const std::size_t i = matches_.index(match), d = problem_.camera.sees_directions ? 3 : 2;
    points_.insert(points_.end(), &problem_.points.data[3 * i], &problem_.points.data[3 * i] + 3);
    observations_.insert(observations_.end(), &problem_.observations.data[d * i],
                         &problem_.observations.data[d * i] + d);
  }
  std::size_t size() const { return points_.size() / 3; }
  /// Which must not outlive this, nor what is added later.
  Refine_problem problem(const Pose& start) const {
    Refine_problem problem;
    problem.start = start;
    problem.points = points_;
    problem.observations = observations_;
    problem.camera = problem_.camera;
    return problem;
  }

 private:
  const Estimate_problem& problem_;
  const Matches& matches_;
  std::vector<double> points_, observations_;
};

}  // namespace kelvane
