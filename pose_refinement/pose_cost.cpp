// SPDX-License-Identifier: BSD-3-Clause
// Sums over the points.
#include "pose_refinement/pose_cost.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kelvane {
namespace {

bool are_same(const Pose& a, const Pose& b) {
  return std::equal(a.centre, a.centre + 3, b.centre) &&
         std::equal(&a.rotation[0][0], &a.rotation[0][0] + 9, &b.rotation[0][0]);
}

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

void lengths_of_group(const double* weights, const double* residuals, std::size_t d, double* lengths) {
  constexpr double safe = 1e150;
  for (std::size_t lane = 0; lane < group_size; ++lane) lengths[lane] = 0.0;
  for (std::size_t i = 0; i < d * group_size; i += group_size) {
    for (std::size_t lane = 0; lane < group_size; ++lane) {
      lengths[lane] += weights[i + lane] * (residuals[i + lane] * residuals[i + lane]);
    }
  }
  for (std::size_t lane = 0; lane < group_size; ++lane) lengths[lane] = std::sqrt(lengths[lane]);
  double sum = 0.0;
  for (std::size_t lane = 0; lane < group_size; ++lane) sum += lengths[lane];
  if (sum <= safe) return;  // not so for NaN
  for (std::size_t lane = 0; lane < group_size; ++lane) {
    lengths[lane] = careful_length(weights + lane, residuals + lane, d);
  }
}

void lengths_of_sights(const Sights& sights, const double* residuals, double* lengths) {
  for (std::size_t g = 0; g < sights.num_groups(); ++g) {
    const std::size_t first = g * sights.d * group_size;
    lengths_of_group(&sights.weights[first], &residuals[first], sights.d, &lengths[g * group_size]);
  }
}

double Pose_cost::cost(const Pose& pose, const Robust_loss& loss) {
  double sums[group_size] = {};  // which do not wait for each other
  const std::vector<double>& lengths = this->lengths(pose);
  for (std::size_t i = 0; i < lengths.size(); ++i) sums[i % group_size] += loss.cost(lengths[i]);
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
    lengths_of_sights(sights, residuals, some);
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
    lengths_of_sights(sights, seen, some);
    lengths.insert(lengths.end(), some, some + sights.num_points);
  }
  return lengths;
}

double Pose_cost::part_behind(const Pose& pose) const {
  double behind = 0.0;
  double all = 0.0;
  double depths[Sights::most_points];
  for (const Sights& sights : data_.sights()) {
    Camera_rows::depths(sights, pose, depths);
    for (std::size_t i = 0; i < sights.num_points; ++i) {
      double weight = 0.0;
      for (std::size_t k = 0; k < sights.d; ++k) weight += sights.weights[sights.row(i, k)];
      all += weight;
      if (depths[i] <= 0.0) behind += weight;
    }
  }
  return behind / all;
}

}  // namespace kelvane
