// SPDX-License-Identifier: BSD-3-Clause
// The data of one refinement, checked, in groups and in a world of its own.
#pragma once

#include <cstddef>
#include <vector>

#include "least_squares/block.h"
#include "pose_refinement/observations.h"
#include "pose_refinement/refine.h"

namespace kelvane {

/// Some points that are not left out, in whole groups: behind the last one the groups are filled up with that point
/// again, without weight. Observations and weights lie as the rows of a block do: eight of the first coordinate, eight
/// of the next.
struct Sights {
  static constexpr std::size_t most_points = Block::max_rows / 2;

  std::size_t num_points = 0;      ///< without the filling
  std::size_t d = 2;               ///< coordinates of an observation
  std::size_t index[most_points];  ///< the caller's number of each point
  double points[3 * most_points];
  double observed[Block::max_rows];  ///< directions at unit length
  double weights[Block::max_rows];
  /// Of each point a d by d matrix, or the three entries of a lower triangle of two rows, eight points at a time; or
  /// none.
  const double* whitening = nullptr;
  bool has_ones = false;  ///< all weights are 1, but for the filling, whose whitening is zero

  /// The weights of residuals that are multiplied by the whitening, if there is one; ones are read from one place, as
  /// many points do not stay in the cache.
  const double* factors() const;
  static std::size_t num_of_whitening(std::size_t d) { return d == 2 ? 3 : d * d; }

  std::size_t num_groups() const { return (num_points + group_size - 1) / group_size; }
  std::size_t num_rows() const { return num_groups() * group_size * d; }
  /// Where coordinate k of point i is.
  std::size_t row(std::size_t i, std::size_t k) const { return (i / group_size * d + k) * group_size + i % group_size; }
};

/// The least that may determine a pose: three where nothing is known of it beside the observations.
std::size_t num_needed_points(const Refine_problem& problem);

/// A world of its own: the points are centred at 0, and their mean square distance from the camera's start is 1. There
/// the columns of a twist are of like size, and a step means the same in every unit.
struct World {
  double origin[3] = {0, 0, 0};
  double unit = 1;

  Pose from_users(Pose pose) const;
  Pose to_users(Pose pose) const;
};

/// Points that are neither without observation nor without weight, nor at the start beyond where a lens folds back,
/// with what was seen of them.
class Observed_points {
 public:
  /// start: the problem's, with a rotation. Throws Bad_argument.
  Observed_points(const Refine_problem& problem, const Pose& start);

  std::size_t num_points() const { return n_; }  ///< those left out included
  std::size_t num_used() const { return num_used_; }
  /// Observed numbers with a weight above 0, where a direction counts as two.
  std::size_t num_equations() const { return num_equations_; }
  bool has_weights() const { return weights_ != nullptr; }  ///< or all are 1
  /// Whether residuals are to be multiplied by the roots of what their covariances tell.
  bool has_covariances() const { return covariances_ != nullptr; }
  std::size_t d() const { return d_; }  ///< numbers of an observation: 2, or 3 for directions

  const World& world() const { return world_; }
  /// In that world.
  const std::vector<Sights>& sights() const { return sights_; }
  /// The points of some sights as the caller has them.
  void restore_points(Sights& sights) const;

 private:
  void check_sizes() const;
  void check_point(std::size_t i) const;
  bool is_used(std::size_t i) const;
  bool has_image(std::size_t i, const Pose& start) const;
  double weight(std::size_t i, std::size_t k) const {
    return weights_ == nullptr ? 1.0 : weights_[per_equation_ ? d_ * i + k : i];
  }
  const double* covariance(std::size_t i) const { return covariances_ + (has_one_covariance_ ? 0 : d_ * d_ * i); }
  void add(std::size_t i);
  void add_whitening(std::size_t i, const Sights& sights);
  void set_whitening();
  std::size_t num_whitening() const { return Sights::num_of_whitening(d_) * (Block::max_rows / d_); }
  void move_to_own_world(const Pose& start);

  const Refine_problem& problem_;
  std::size_t d_, n_;
  const double* points_;
  const double* observations_;
  const double* weights_;
  bool per_equation_;
  const double* covariances_;
  bool has_one_covariance_;
  std::size_t num_used_ = 0;
  std::size_t num_equations_ = 0;
  World world_;
  std::vector<Sights> sights_;
  std::vector<double> whitening_;  // as much for each of sights_
};

}  // namespace kelvane
