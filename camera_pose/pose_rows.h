// SPDX-License-Identifier: BSD-3-Clause
// The equations of a pose at one search vector, piece by piece.
#pragma once

#include <cstddef>

#include "camera_pose/camera.h"
#include "camera_pose/measurements.h"
#include "camera_pose/point_kernels.h"
#include "camera_pose/rotation_type.h"
#include "least_squares/block.h"
#include "rotations/chart.h"

namespace kelvane {

inline constexpr std::size_t max_dimensions = 7;  ///< four rotation entries and the camera centre

/// What the equations of a refinement have in common.
struct Pose_problem {
  const Rotation_type* type;
  Intrinsics intrinsics;
  const Measurements* data;
  const double* difference_steps;  ///< one for each entry of the search vector; null: derivatives in closed form

  std::size_t n() const { return static_cast<std::size_t>(type->num_dimensions()); }
  std::size_t num_stacks() const { return static_cast<std::size_t>(type->num_representations); }
};

/// Rows of [J | b] at a search vector x. Where every block of the type has a chart at x, they are rows by a twist of
/// the camera, six columns; otherwise rows by the entries of x, or differences.
class Pose_rows {
 public:
  explicit Pose_rows(const Pose_problem& problem, Instruction_set set = best_instruction_set());

  /// Goes to x, n entries. See Pose_system::linearise for weighs_predictions.
  void go_to(const double* x, bool weighs_predictions);
  /// From now on until go_to() rows are written one by one, also where pairs would do.
  void part_pairs() { are_pairs_ = false; }

  /// Whether the columns are those of a twist; chart(k) leads from there to x.
  bool are_by_twist() const { return mode_ == Mode::twist; }
  /// Whether rows are pairs, as Triangle::absorb_pairs takes them.
  bool are_pairs() const { return are_pairs_; }
  /// Columns of J.
  std::size_t num_columns() const { return are_by_twist() ? 6 : problem_.n(); }
  /// Blocks of the type's equations.
  std::size_t num_blocks() const { return problem_.num_stacks(); }
  /// How many of them have to be made: all, or one that stands for all.
  std::size_t num_made() const { return is_shared_ ? 1 : num_blocks(); }
  const Chart& chart(std::size_t k) const { return charts_[k]; }

  /// Writes the rows of one block of a piece; returns the sum of squares of observation minus prediction in them.
  double make(const Piece& piece, std::size_t k, Block& block) const;
  /// Rows that make() writes for a piece.
  std::size_t num_rows(const Piece& piece) const;

  /// The sum of squares alone at x, over all pieces and blocks.
  double squared_error(const double* x) const;

 private:
  enum class Mode { twist, parameters, differences };

  /// That of b.
  std::size_t last_column() const { return are_pairs_ ? 5 : num_columns(); }
  Camera camera_at(const double* x) const;
  void make_charts();
  void move_cameras();
  void write_jacobian(const Piece& piece, std::size_t k, Block& block) const;
  void predict(const Piece& piece, const Camera& camera, double* values) const;
  double subtract_from_observations(const Piece& piece, double* values) const;
  double weigh(const Piece& piece, const double* weights, Block& block) const;

  Pose_problem problem_;
  const Point_kernels* kernels_;
  Mode mode_ = Mode::twist;
  bool are_pairs_ = false;
  bool is_shared_ = false;
  bool weighs_predictions_ = false;
  double x_[max_dimensions];
  Camera camera_;               // of the predictions
  Camera cameras_[max_blocks];  // of the blocks
  bool predicts_[max_blocks];   // whether a block's camera is that of the predictions
  Moved_cameras moved_;         // of differences
  Chart charts_[max_blocks];
  Projection projections_[max_blocks];
};

}  // namespace kelvane
