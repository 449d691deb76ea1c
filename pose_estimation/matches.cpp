// SPDX-License-Identifier: BSD-3-Clause
// Observations as directions, and how an observation changes there with the point.
#include "pose_estimation/matches.h"

#include <algorithm>
#include <cmath>

#include "cameras/bad_argument.h"
#include "pose_estimation/mixed.h"

namespace kelvane {
namespace {

constexpr double unit_circle = 3.14159265358979323846;  // its area

/// The lens of any camera that sees pixels.
Lens lens_of(const Camera_model& camera) {
  const double K[3][3] = {{camera.fx, camera.skew, camera.cx}, {0.0, camera.fy, camera.cy}, {0.0, 0.0, 1.0}};
  return camera.lens ? *camera.lens : lens_of_opencv(K, {}, false);
}

/// Two unit vectors across a unit vector and across each other.
void set_across(const double* d, double (&J)[2][3]) {
  const int least = std::abs(d[0]) < std::abs(d[1]) ? (std::abs(d[0]) < std::abs(d[2]) ? 0 : 2)
                                                    : (std::abs(d[1]) < std::abs(d[2]) ? 1 : 2);
  double square = 0.0;
  for (int i = 0; i < 3; ++i) {
    J[0][i] = (i == least ? 1.0 : 0.0) - d[least] * d[i];
    square += J[0][i] * J[0][i];
  }
  for (double& entry : J[0]) entry /= std::sqrt(square);
  for (int i = 0; i < 3; ++i) J[1][i] = d[(i + 1) % 3] * J[0][(i + 2) % 3] - d[(i + 2) % 3] * J[0][(i + 1) % 3];
}

/// Twice the distance of the quartiles: all of an even spread, whatever a few far ones do; and never more than all.
double spread(std::vector<double> values) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  const double all = *most - *least;
  const auto quarter = static_cast<std::ptrdiff_t>(values.size() / 4);
  std::nth_element(values.begin(), values.begin() + quarter, values.end());
  const double low = values[static_cast<std::size_t>(quarter)];
  std::nth_element(values.begin(), values.end() - 1 - quarter, values.end());
  return std::min(all, 2.0 * (values[values.size() - 1 - static_cast<std::size_t>(quarter)] - low));
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

Matches::Matches(const Estimate_problem& problem, const Estimate_options& options)
    : max_error_(options.max_error > 0.0          ? options.max_error
                 : problem.camera.sees_directions ? max_error_in_radians
                                                  : max_error_in_pixels) {
  const std::size_t d = problem.camera.sees_directions ? 3 : 2;
  check(problem.camera);
  check_sizes(problem.points, problem.observations, d);
  for (std::size_t i = 0; i < problem.points.size / 3; ++i) check_entries(problem.points, problem.observations, d, i);
  add_seen(problem);
  for (std::size_t i = index_.size(); i > 1; --i) std::swap(index_[i - 1], index_[mixed(options.seed + i) % i]);
  set_own_world(problem);
  set_groups(problem);
  set_chance(problem);
}

/// Without what has no direction: the pixels that no ray of the lens comes from.
void Matches::add_seen(const Estimate_problem& problem) {
  const std::size_t d = problem.camera.sees_directions ? 3 : 2;
  const std::size_t n = problem.points.size / 3;
  const Lens lens = lens_of(problem.camera);
  directions_.resize(3 * n);
  index_.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double* seen = &problem.observations.data[d * i];
    if (std::any_of(seen, seen + d, [](double value) { return std::isnan(value); })) continue;
    if (d == 3) {
      set_unit_direction(seen, i, &directions_[3 * i]);
    } else if (!unproject(lens, seen, &directions_[3 * i])) {
      continue;
    }
    index_.push_back(i);
  }
}

/// By medians: a point at the end of the world must not take the digits of all others.
void Matches::set_own_world(const Estimate_problem& problem) {
  if (index_.empty()) return;
  std::vector<double> values(size());
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::size_t i = 0; i < size(); ++i) values[i] = problem.points.data[3 * index_[i] + k];
    world_.origin[k] = median(values);
  }
  points_.resize(3 * size());
  for (std::size_t i = 0; i < size(); ++i) {
    values[i] = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
      points_[3 * i + k] = problem.points.data[3 * index_[i] + k] - world_.origin[k];
      values[i] = std::max(values[i], std::abs(points_[3 * i + k]));
    }
  }
  const double largest = *std::max_element(values.begin(), values.end());
  const double usual = median(values);
  world_.unit = usual > 0.0 ? usual : largest > 0.0 ? largest : 1.0;
  for (double& x : points_) x /= world_.unit;
}

void Matches::set_groups(const Estimate_problem& problem) {
  const Lens lens = lens_of(problem.camera);
  const std::vector<double> given = std::move(directions_);
  directions_.resize(3 * size());
  groups_.assign(num_groups() * numbers_of_match * group_size, 0.0);  // no point is in front of d = 0
  for (std::size_t i = 0; i < size(); ++i) {
    double* d = &directions_[3 * i];
    std::copy_n(&given[3 * index_[i]], 3, d);
    double J[2][3], pixel[2];
    problem.camera.sees_directions ? set_across(d, J) : project(lens, d, pixel, J);
    double* at = &groups_[i / group_size * numbers_of_match * group_size + i % group_size];
    for (std::size_t k = 0; k < 3; ++k) {
      at[k * group_size] = point(i)[k];
      at[(3 + k) * group_size] = d[k];
      at[(6 + k) * group_size] = J[0][k] / max_error_;
      at[(9 + k) * group_size] = J[1][k] / max_error_;
    }
  }
}

/// Of the rectangle, or the cap of the sphere, over which the observations are spread.
void Matches::set_chance(const Estimate_problem& problem) {
  if (size() == 0) return;
  if (!problem.camera.sees_directions) {
    std::vector<double> u, v;
    for (const std::size_t i : index_) {
      u.push_back(problem.observations.data[2 * i]);
      v.push_back(problem.observations.data[2 * i + 1]);
    }
    constexpr double least = 1e-100;  // parts of the largest error, where most lie on a line
    chance_ = unit_circle / (std::max(spread(u) / max_error_, least) * std::max(spread(v) / max_error_, least));
    return;
  }
  double middle[3] = {};
  for (std::size_t k = 0; k < directions_.size(); ++k) middle[k % 3] += directions_[k] / static_cast<double>(size());
  const double r = std::sqrt(middle[0] * middle[0] + middle[1] * middle[1] + middle[2] * middle[2]);
  // An even spread over a cap whose height is h has its middle at 1 - h / 2.
  constexpr double rounding = 1e-14;
  chance_ = 0.5 * max_error_ * max_error_ / std::max(2.0 * (1.0 - r), rounding);
}

}  // namespace kelvane
