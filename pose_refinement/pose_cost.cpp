// SPDX-License-Identifier: BSD-3-Clause
// Sums over the points.
#include "pose_refinement/pose_cost.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pose_refinement/motion.h"

namespace kelvane {
namespace {

/// Where squares overflow: divided by the largest part first.
double careful_length(const double* weights, const double* residuals, std::size_t d) {
  double parts[3];
  double largest = 0.0;
  for (std::size_t k = 0; k < d; ++k) {
    const double w = weights[k * group_size];
    parts[k] = w == 0.0 ? 0.0 : std::sqrt(w) * std::abs(residuals[k * group_size]);
    if (!(parts[k] <= largest)) largest = parts[k];
  }
  if (!(largest > 0.0) || std::isinf(largest)) return largest;
  double square = 0.0;
  for (std::size_t k = 0; k < d; ++k) square += (parts[k] / largest) * (parts[k] / largest);
  return largest * std::sqrt(square);
}

}  // namespace

bool lengths_of_whitened(const Sights& sights, const Sight_kernels& kernels, const double* residuals, double* lengths) {
  const std::size_t d = sights.d;
  if (kernels.lengths(sights.factors(), residuals, d, sights.num_groups(), lengths)) return true;
  for (std::size_t i = 0; i < sights.num_groups() * group_size; ++i) {
    const std::size_t first = sights.row(i, 0);
    lengths[i] = careful_length(sights.factors() + first, residuals + first, d);
  }
  return false;
}

bool lengths_of_sights(const Sights& sights, const Sight_kernels& kernels, const double* residuals, double* lengths) {
  if (sights.whitening == nullptr) return lengths_of_whitened(sights, kernels, residuals, lengths);
  alignas(cache_line) double white[Block::max_rows];
  std::copy_n(residuals, sights.num_rows(), white);
  kernels.whiten(sights.whitening, sights.d, sights.num_groups(), white);
  return lengths_of_whitened(sights, kernels, white, lengths);
}

double Pose_cost::cost(const Pose& pose, const Robust_loss& loss) {
  const double total = cost_of_points(pose, loss) + prior_.cost(pose);
  return std::isfinite(total) ? total : std::numeric_limits<double>::infinity();
}

double Pose_cost::cost_of_points(const Pose& pose, const Robust_loss& loss) {
  double sums[group_size] = {};  // which do not wait for each other
  const std::vector<double>& lengths = this->lengths(pose);
  rows_.sight_kernels().add_costs(loss, lengths.data(), lengths.size(), sums);
  double total = 0.0;
  for (const double sum : sums) total += sum;
  return std::isfinite(total) ? total : std::numeric_limits<double>::infinity();
}

const std::vector<double>& Pose_cost::lengths(const Pose& pose) {
  if (!lengths_.empty() && are_same(pose, pose_)) return lengths_;
  alignas(cache_line) double residuals[Block::max_rows];
  double some[Sights::most_points];
  lengths_.resize(data_.num_used());
  pose_ = pose;
  double* to = lengths_.data();
  for (const Sights& sights : data_.sights()) {
    rows_.residuals(sights, pose, residuals);
    lengths_of_sights(sights, rows_.sight_kernels(), residuals, some);
    to = std::copy_n(some, sights.num_points, to);
  }
  return lengths_;
}

std::vector<double> Pose_cost::lengths_of_observations() const {
  const double centre[] = {rows_.camera().cx, rows_.camera().cy, 0.0};
  std::vector<double> lengths;
  lengths.reserve(data_.num_used());
  for (const Sights& sights : data_.sights()) {
    double seen[Block::max_rows];
    double some[Sights::most_points];
    for (std::size_t row = 0; row < sights.num_rows(); ++row) {
      const std::size_t k = row / group_size % sights.d;
      seen[row] = sights.observed[row] - (sights.d == 2 ? centre[k] : 0.0);
    }
    lengths_of_sights(sights, rows_.sight_kernels(), seen, some);
    lengths.insert(lengths.end(), some, some + sights.num_points);
  }
  return lengths;
}

double Pose_cost::rounding() const {
  constexpr double of_observations = 1e-9;
  double square = 0.0;
  for (const double length : lengths_of_observations()) square += length * length;
  return of_observations * of_observations * square;
}

bool Pose_cost::is_behind(const Pose& pose) const {
  constexpr double half = 0.5;
  if (rows_.camera().sees_directions) return false;
  double behind = 0.0;
  double all = 0.0;
  double depths[Sights::most_points];
  for (const Sights& sights : data_.sights()) {
    rows_.facing(sights, pose, depths);
    for (std::size_t i = 0; i < sights.num_points; ++i) {
      double weight = 0.0;
      for (std::size_t k = 0; k < sights.d; ++k) weight += sights.weights[sights.row(i, k)];
      all += weight;
      if (depths[i] <= 0.0) behind += weight;
    }
  }
  return behind / all > half;
}

}  // namespace kelvane
