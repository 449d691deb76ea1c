// SPDX-License-Identifier: BSD-3-Clause
// The few best poses of a search.
#pragma once

#include <cstddef>
#include <vector>

#include "pose_refinement/pose.h"

namespace kelvane {

/// A pose in the world of the matches.
struct Candidate {  // NOLINT(bugprone-exception-escape): moving its flags throws nothing
  Pose pose;
  double gain = 0;                   ///< see Agreement
  std::vector<bool> is_inlier = {};  ///< of each match

  std::size_t num_inliers() const;
};

/// Poses of which none has most of its inliers in common with another, best first.
class Candidates {
 public:
  static constexpr std::size_t most = 4;

  void add(Candidate candidate);
  const std::vector<Candidate>& all() const { return all_; }
  /// What a pose must have more than to be worth a look.
  double least_gain() const;

 private:
  std::vector<Candidate> all_;
};

}  // namespace kelvane
