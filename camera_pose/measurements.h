// SPDX-License-Identifier: BSD-3-Clause
// Points and what was seen of them, piece by piece.
#pragma once

#include <cstddef>

#include "least_squares/block.h"

namespace kelvane {

/// Some points in whole groups. Behind the last point of all the groups are filled up: with that point again, with
/// observations and weights of zero.
struct Piece {
  const double* points;        ///< 3 doubles each, one behind the other
  const double* observations;  ///< 2 or 3 doubles each
  const double* weights[3];    ///< likewise, for each stack of the equations; null: all are 1
  std::size_t num_points;      ///< without the filling
  std::size_t num_groups() const { return (num_points + group_size - 1) / group_size; }  ///< the last one counted whole
};

/// The data of one refinement, read where the caller has them: nothing is copied but the last piece, where the number
/// of points is no multiple of the group.
class Measurements {
 public:
  /// points: 3 by num_points, world frame and units. observations: observation_size (2 or 3) by num_points. weights:
  /// null, or observation_size by num_points by num_stacks (1 to 3). All column-major; all must outlive this object.
  Measurements(const double* points, const double* observations, std::size_t observation_size, const double* weights,
               std::size_t num_stacks, std::size_t num_points);
  Measurements(const Measurements&) = delete;
  Measurements& operator=(const Measurements&) = delete;

  std::size_t observation_size() const { return observation_size_; }  ///< 2 or 3
  std::size_t num_points() const { return num_points_; }              ///< of all pieces
  bool is_weighted() const { return weights_ != nullptr; }            ///< whether there are weights
  /// None without points.
  std::size_t num_pieces() const { return (num_points_ + points_per_piece_ - 1) / points_per_piece_; }
  /// The rows of a piece fit a block.
  Piece piece(std::size_t index) const;

 private:
  static constexpr std::size_t most_points = Block::max_rows / 2;

  Piece piece_in_place(std::size_t index) const;
  void copy_last_piece();

  const double* points_;
  const double* observations_;
  const double* weights_;
  std::size_t observation_size_, num_stacks_, num_points_, points_per_piece_;
  double last_points_[3 * most_points];
  double last_observations_[Block::max_rows];
  double last_weights_[3][Block::max_rows];
};

}  // namespace kelvane
