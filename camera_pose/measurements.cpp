// SPDX-License-Identifier: BSD-3-Clause
// Pieces in place, and the filling of the last one.
#include "camera_pose/measurements.h"

#include <algorithm>

namespace kelvane {

Measurements::Measurements(const double* points, const double* observations, std::size_t observation_size,
                           const double* weights, std::size_t num_stacks, std::size_t num_points)
    : points_(points),
      observations_(observations),
      weights_(weights),
      observation_size_(observation_size),
      num_stacks_(num_stacks),
      num_points_(num_points),
      points_per_piece_(Block::max_rows / observation_size) {
  if (num_points % group_size != 0) copy_last_piece();
}

Piece Measurements::piece_in_place(std::size_t index) const {
  const std::size_t first = index * points_per_piece_;
  Piece piece{points_ + 3 * first,
              observations_ + observation_size_ * first,
              {nullptr, nullptr, nullptr},
              std::min(points_per_piece_, num_points_ - first)};
  for (std::size_t k = 0; is_weighted() && k < num_stacks_; ++k) {
    piece.weights[k] = weights_ + observation_size_ * (k * num_points_ + first);
  }
  return piece;
}

Piece Measurements::piece(std::size_t index) const {
  Piece piece = piece_in_place(index);
  if (piece.num_points % group_size == 0) return piece;
  piece.points = last_points_;
  piece.observations = last_observations_;
  for (std::size_t k = 0; is_weighted() && k < num_stacks_; ++k) piece.weights[k] = last_weights_[k];
  return piece;
}

void Measurements::copy_last_piece() {
  const Piece piece = piece_in_place(num_pieces() - 1);
  const std::size_t num_filled = piece.num_groups() * group_size;
  const std::size_t num_values = observation_size_ * piece.num_points;
  double* const end_of_points = std::copy_n(piece.points, 3 * piece.num_points, last_points_);
  for (double* p = end_of_points; p < last_points_ + 3 * num_filled; ++p) *p = *(p - 3);
  const auto fill = [&](const double* values, double* to) {
    std::fill(std::copy_n(values, num_values, to), to + observation_size_ * num_filled, 0.0);
  };
  fill(piece.observations, last_observations_);
  for (std::size_t k = 0; is_weighted() && k < num_stacks_; ++k) fill(piece.weights[k], last_weights_[k]);
}

}  // namespace kelvane
