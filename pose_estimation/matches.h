// SPDX-License-Identifier: BSD-3-Clause
// Points and what was seen of them, as a search for the pose needs them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pose_estimation/consensus_kernels.h"
#include "pose_estimation/estimate.h"
#include "pose_refinement/observed_points.h"

namespace kelvane {

/// Where an observation is wrong when nobody says so.
inline constexpr double max_error_in_pixels = 8.0;
inline constexpr double max_error_in_radians = 0.0174532925199432958;  ///< a degree

/// The points that were seen, in an order drawn by lot, so that any of them in a row are a sample; in a world of their
/// own whose origin is in their middle, and whose unit their usual distance from there.
class Matches {
 public:
  /// Checks everything and throws Bad_argument.
  Matches(const Estimate_problem& problem, const Estimate_options& options);

  std::size_t size() const { return index_.size(); }
  std::size_t num_groups() const { return (size() + group_size - 1) / group_size; }
  std::size_t index(std::size_t i) const { return index_[i]; }                  ///< the caller's number
  const double* point(std::size_t i) const { return &points_[3 * i]; }          ///< in the own world
  const double* direction(std::size_t i) const { return &directions_[3 * i]; }  ///< unit length, camera frame
  const double* groups() const { return groups_.data(); }                       ///< for Consensus_kernels
  double max_error() const { return max_error_; }  ///< that of the options, or what stands for 0
  /// The part of all places where an observation may lie that is nearer to one than max_error; above 1 where that is
  /// larger than the picture, so that smaller errors have their share of it.
  double chance() const { return chance_; }

  const World& world() const { return world_; }

 private:
  void add_seen(const Estimate_problem& problem);
  void set_own_world(const Estimate_problem& problem);
  void set_groups(const Estimate_problem& problem);
  void set_chance(const Estimate_problem& problem);

  double max_error_;
  std::vector<std::size_t> index_;
  std::vector<double> points_, directions_, groups_;
  World world_;
  double chance_ = 0.0;
};

}  // namespace kelvane
