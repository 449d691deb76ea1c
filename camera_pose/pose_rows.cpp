// SPDX-License-Identifier: BSD-3-Clause
// Which camera and which kernel makes which rows.
#include "camera_pose/pose_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "rotations/conversions.h"

namespace kelvane {
namespace {

/// Whether a model replaces a zero vector, or the conversion of the prediction an axis without a direction: only there
/// do the two give different rotations of one representation.
bool is_guarded(const double* r) { return r[0] * r[0] + r[1] * r[1] + r[2] * r[2] <= rotations::axis_tolerance; }

/// Whether R differs by nothing but rounding from the camera's. Two representations of one rotation are further apart
/// where a conversion between them loses digits: at no rotation and at half a turn.
bool are_same(const double (&R)[3][3], const Camera& camera) {
  constexpr double some_roundings = 8.0 * std::numeric_limits<double>::epsilon();
  double largest = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) largest = std::max(largest, std::abs(R[i][j] - camera.rotation[j][i]));
  }
  return largest <= some_roundings;
}

/// From items of m doubles to the order of a block's rows.
void arrange(const double* items, std::size_t m, std::size_t num_groups, double* rows) {
  for (std::size_t g = 0; g < num_groups; ++g, items += m * group_size, rows += m * group_size) {
    for (std::size_t lane = 0; lane < group_size; ++lane) {
      for (std::size_t k = 0; k < m; ++k) rows[k * group_size + lane] = items[m * lane + k];
    }
  }
}

}  // namespace

Pose_rows::Pose_rows(const Pose_problem& problem, Instruction_set set)
    : problem_(problem), kernels_(&point_kernels(set)) {}

void Pose_rows::go_to(const double* x, bool weighs_predictions) {
  weighs_predictions_ = weighs_predictions;
  std::copy_n(x, problem_.n(), x_);
  is_shared_ = are_pairs_ = false;
  if (problem_.difference_steps == nullptr) {
    make_charts();
  } else {
    mode_ = Mode::differences;
    move_cameras();
  }
}

Camera Pose_rows::camera_at(const double* x) const {
  double R[3][3];
  predicted_rotation(problem_.type->representation, x, R);
  return make_camera(problem_.intrinsics, R, x + problem_.type->rotation_size());
}

void Pose_rows::make_charts() {
  problem_.type->models(x_, charts_);
  const double* t = x_ + problem_.type->rotation_size();
  mode_ = Mode::twist;
  for (std::size_t k = 0; k < num_blocks() && mode_ == Mode::twist; ++k) {
    if (!charts_[k].make()) mode_ = Mode::parameters;
  }
  if (mode_ == Mode::parameters) {
    camera_ = camera_at(x_);
    for (std::size_t k = 0; k < num_blocks(); ++k) {
      projections_[k] = make_projection(problem_.intrinsics, charts_[k].model, t);
    }
    return;
  }
  predicts_[0] = !is_guarded(x_);
  camera_ = predicts_[0] ? make_camera(problem_.intrinsics, charts_[0].model.R, t) : camera_at(x_);
  is_shared_ = !problem_.data->is_weighted();
  for (std::size_t k = 0; k < num_blocks(); ++k) {
    const auto& R = charts_[k].model.R;
    predicts_[k] = (k == 0 && predicts_[0]) || are_same(R, camera_);
    if (!predicts_[k]) cameras_[k] = make_camera(problem_.intrinsics, R, t);
    is_shared_ = is_shared_ && predicts_[k];
  }
  are_pairs_ = !problem_.type->is_bearing() && !problem_.data->is_weighted();
}

void Pose_rows::move_cameras() {
  double x[max_dimensions];
  std::copy_n(x_, problem_.n(), x);
  moved_.n = problem_.n();
  moved_.here = camera_at(x);
  for (std::size_t d = 0; d < problem_.n(); ++d) {
    const double step = problem_.difference_steps[d];
    x[d] += step;
    moved_.moved[d] = camera_at(x);
    x[d] -= step;  // not a copy of x_[d]: the rounding of the round trip stays
    moved_.inverse_step[d] = 1.0 / step;
  }
}

std::size_t Pose_rows::num_rows(const Piece& piece) const {
  return piece.num_groups() * group_size * problem_.data->observation_size();
}

double Pose_rows::make(const Piece& piece, std::size_t k, Block& block) const {
  write_jacobian(piece, k, block);
  if (piece.weights[k] != nullptr) return weigh(piece, piece.weights[k], block);
  const double error = subtract_from_observations(piece, block.column(last_column()));
  return is_shared_ ? error * static_cast<double>(num_blocks()) : error;
}

void Pose_rows::write_jacobian(const Piece& piece, std::size_t k, Block& block) const {
  const bool is_bearing = problem_.type->is_bearing();
  const auto write = [&](auto* rows, const auto& camera) {
    rows(piece.points, piece.num_points, camera, block.column(0), block.stride());
  };
  double* const values = block.column(last_column());
  if (mode_ == Mode::twist) {
    const auto rows = is_bearing ? kernels_->bearing_rows : are_pairs_ ? kernels_->pixel_pairs : kernels_->pixel_rows;
    write(rows, predicts_[k] ? camera_ : cameras_[k]);
    if (predicts_[k]) return;
  } else if (mode_ == Mode::parameters) {
    write(is_bearing ? kernels_->bearing_rows_by_parameters : kernels_->pixel_rows_by_parameters, projections_[k]);
  } else {
    return write(is_bearing ? kernels_->bearing_differences : kernels_->pixel_differences, moved_);
  }
  predict(piece, camera_, values);
}

void Pose_rows::predict(const Piece& piece, const Camera& camera, double* values) const {
  const auto kernel = problem_.type->is_bearing() ? kernels_->predict_bearings : kernels_->predict_pixels;
  kernel(piece.points, piece.num_points, camera, values);
}

double Pose_rows::subtract_from_observations(const Piece& piece, double* values) const {
  const auto kernel = problem_.type->is_bearing() ? kernels_->subtract_bearings : kernels_->subtract_pixels;
  return kernel(piece.observations, piece.num_groups(), values);
}

double Pose_rows::weigh(const Piece& piece, const double* weights, Block& block) const {
  const std::size_t m = problem_.data->observation_size();
  const std::size_t count = num_rows(piece);
  double y[Block::max_rows];
  double w[Block::max_rows];
  double unweighted[Block::max_rows];  // W f(x) - v
  arrange(piece.observations, m, piece.num_groups(), y);
  arrange(weights, m, piece.num_groups(), w);
  double* const b = block.column(num_columns());
  double error = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double left = y[i] - b[i];
    error += left * left;
    // From the second iteration of a run on, what is predicted at the current point counts unweighted.
    const double v = weighs_predictions_ ? b[i] * w[i] : b[i];
    unweighted[i] = b[i] * w[i] - v;
    b[i] = y[i] * w[i] - v;
  }
  for (std::size_t c = 0; c < num_columns(); ++c) {
    double* const column = block.column(c);
    for (std::size_t i = 0; i < count; ++i) column[i] *= w[i];
    if (mode_ != Mode::differences || weighs_predictions_) continue;
    for (std::size_t i = 0; i < count; ++i) column[i] += unweighted[i] * moved_.inverse_step[c];  // W f(x + step) - v
  }
  return error;
}

double Pose_rows::squared_error(const double* x) const {
  const Camera camera = camera_at(x);
  alignas(cache_line) double values[Block::max_rows];
  double error = 0.0;
  for (std::size_t i = 0; i < problem_.data->num_pieces(); ++i) {
    const Piece piece = problem_.data->piece(i);
    predict(piece, camera, values);
    error += subtract_from_observations(piece, values);
  }
  return error * static_cast<double>(num_blocks());
}

}  // namespace kelvane
