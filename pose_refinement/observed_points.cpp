// SPDX-License-Identifier: BSD-3-Clause
// What is wrong with a problem's numbers, and which of them count.
#include "pose_refinement/observed_points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/observation_root.h"

namespace kelvane {
namespace {

using Where = Bad_argument::Where;

std::string text(std::size_t number) { return std::to_string(number); }

[[noreturn, gnu::cold]] void refuse_size(const char* name, const std::string& sentence) {
  throw Bad_argument("size", name, sentence);
}

[[noreturn, gnu::cold]] void refuse_negative_weights(const Numbers& weights) {
  const double least = *std::min_element(weights.data, weights.data + weights.size);
  throw Bad_argument("negativeWeight", "weights", " must not be negative; the least is " + text_of(least) + ".");
}

[[noreturn, gnu::cold]] void refuse_number_of_points(std::size_t num_points, std::size_t num_used, std::size_t least,
                                                     bool has_lens) {
  const char* which = num_points < least ? ""
                      : has_lens ? " with a weight above 0, an observation and an image in the lens at the start"
                                 : " with a weight above 0 and an observation";
  if (least == 1) throw Bad_argument("tooFewPoints", "", std::string("There is no point") + which + ".");
  throw Bad_argument("tooFewPoints", "",
                     std::string("Three points") + which + " are the least that determine a pose; there " +
                         (num_used == 1 ? "is " : "are ") + text(num_used) + ".");
}

[[noreturn, gnu::cold]] void refuse_covariance(std::size_t point, bool is_of_all, Root reason) {
  const bool is_symmetric = reason == Root::not_positive;
  throw Bad_argument(is_symmetric ? "notPositive" : "notSymmetric", "covariances",
                     is_of_all ? Where::whole : Where::point, point,
                     is_symmetric ? " is not positive definite." : " is not symmetric.");
}

}  // namespace

const double* Sights::factors() const {
  static constexpr std::array<double, Block::max_rows> ones = [] {
    std::array<double, Block::max_rows> all{};
    for (double& one : all) one = 1.0;
    return all;
  }();
  return has_ones ? ones.data() : weights;
}

std::size_t num_needed_points(const Refine_problem& problem) {
  return problem.prior.covariance.size + problem.prior.information.size + problem.fixed.size > 0 ? 1 : 3;
}

Pose World::from_users(Pose pose) const {
  for (int i = 0; i < 3; ++i) pose.centre[i] = (pose.centre[i] - origin[i]) / unit;
  return pose;
}

Pose World::to_users(Pose pose) const {
  for (int i = 0; i < 3; ++i) pose.centre[i] = pose.centre[i] * unit + origin[i];
  return pose;
}

Observed_points::Observed_points(const Refine_problem& problem, const Pose& start)
    : problem_(problem),
      d_(problem.camera.sees_directions ? 3 : 2),
      n_(problem.points.size / 3),
      points_(problem.points.data),
      observations_(problem.observations.data),
      weights_(problem.weights.size == 0 ? nullptr : problem.weights.data),
      per_equation_(problem.weights.size != n_),
      covariances_(problem.covariances.size == 0 ? nullptr : problem.covariances.data),
      has_one_covariance_(problem.covariances.size == d_ * d_) {
  check_sizes();
  const std::size_t room = Block::max_rows / d_;
  const std::size_t least = num_needed_points(problem);
  sights_.reserve((n_ + room - 1) / room);
  if (has_covariances()) whitening_.reserve((n_ + room - 1) / room * num_whitening());
  for (std::size_t i = 0; i < n_; ++i) {
    check_point(i);
    if (is_used(i) && has_image(i, start)) add(i);
  }
  num_equations_ = std::min(num_equations_, 2 * num_used_);
  if (num_used_ < least) refuse_number_of_points(n_, num_used_, least, problem.camera.lens.has_value());
  set_whitening();
  move_to_own_world(start);
}

void Observed_points::check_sizes() const {
  const Refine_problem& p = problem_;
  kelvane::check_sizes(p.points, p.observations, d_);
  if (p.weights.size != 0 && p.weights.size != n_ && p.weights.size != d_ * n_) {
    refuse_size("weights", " must be none, " + text(n_) + " (one for each point) or " + text(d_ * n_) +
                               " (one for each observed number); there are " + text(p.weights.size) + ".");
  }
  const std::size_t of_each = d_ * d_;
  if (p.covariances.size != 0 && p.covariances.size != of_each && p.covariances.size != of_each * n_) {
    refuse_size("covariances", " must be none, " + text(of_each) + " (one for all points) or " + text(of_each * n_) +
                                   " (one for each); there are " + text(p.covariances.size) + ".");
  }
  if (p.covariances.size != 0 && p.weights.size != 0) {
    throw Bad_argument("weights", "covariances", " takes the place of weights: only one of both can be given.");
  }
}

void Observed_points::check_point(std::size_t i) const {
  check_entries(problem_.points, problem_.observations, d_, i);
  for (std::size_t k = 0; k < d_; ++k) {
    const double w = weight(i, k);
    if (!std::isfinite(w)) refuse_not_finite("weights", per_equation_ ? d_ * i + k : i, w);
    if (w < 0.0) refuse_negative_weights(problem_.weights);
  }
  if (!has_covariances() || (i > 0 && has_one_covariance_)) return;
  check_finite("covariances", covariances_, d_ * d_ * i, d_ * d_ * (i + 1));
}

bool Observed_points::is_used(std::size_t i) const {
  bool has_weight = false;
  for (std::size_t k = 0; k < d_; ++k) {
    if (std::isnan(observations_[d_ * i + k])) return false;
    has_weight = has_weight || weight(i, k) > 0.0;
  }
  return has_weight;
}

/// Of a lens: a point beyond where it folds back could only be seen where something else is.
bool Observed_points::has_image(std::size_t i, const Pose& start) const {
  if (!problem_.camera.lens) return true;
  double p[3] = {};
  for (int k = 0; k < 3; ++k) {
    for (int j = 0; j < 3; ++j)
      p[k] += start.rotation[j][k] * (points_[3 * i + static_cast<std::size_t>(j)] - start.centre[j]);
  }
  double pixel[2];
  project(*problem_.camera.lens, p, pixel);
  return std::isfinite(pixel[0]) && std::isfinite(pixel[1]);
}

void Observed_points::add(std::size_t i) {
  const std::size_t at = num_used_++ % (Block::max_rows / d_);
  if (at == 0) sights_.emplace_back();
  Sights& sights = sights_.back();
  sights.num_points = at + 1;
  sights.d = d_;
  sights.index[at] = i;
  double seen[3];
  if (d_ == 3) {
    set_unit_direction(&observations_[3 * i], i, seen);
  } else {
    std::copy_n(&observations_[2 * i], 2, seen);
  }
  for (std::size_t k = 0; k < d_; ++k) {
    sights.observed[sights.row(at, k)] = seen[k];
    sights.weights[sights.row(at, k)] = weight(i, k);
    num_equations_ += weight(i, k) > 0.0 ? 1U : 0U;
  }
  if (has_covariances()) add_whitening(i, sights);
}

void Observed_points::add_whitening(std::size_t i, const Sights& sights) {
  const std::size_t at = sights.num_points - 1;
  if (at == 0) whitening_.resize(sights_.size() * num_whitening());
  double W[9];
  double direction[3] = {};
  for (std::size_t k = 0; k < d_; ++k) direction[k % 3] = sights.observed[sights.row(at, k)];
  const Root found = d_ == 2 ? root_of_pixel(covariance(i), W) : root_of_direction(covariance(i), direction, W);
  if (found != Root::found) refuse_covariance(i, has_one_covariance_, found);
  if (d_ == 2) std::rotate(W + 1, W + 2, W + 4);  // its lower triangle
  const std::size_t count = Sights::num_of_whitening(d_);
  double* const to = &whitening_[(sights_.size() - 1) * num_whitening()];
  for (std::size_t k = 0; k < count; ++k) to[(at / group_size * count + k) * group_size + at % group_size] = W[k];
}

void Observed_points::set_whitening() {
  if (!has_covariances()) return;
  for (std::size_t k = 0; k < sights_.size(); ++k) {
    sights_[k].whitening = &whitening_[k * num_whitening()];
    sights_[k].has_ones = true;
  }
}

void Observed_points::restore_points(Sights& sights) const {
  for (std::size_t i = 0; i < sights.num_groups() * group_size; ++i) {
    std::copy_n(&points_[3 * sights.index[std::min(i, sights.num_points - 1)]], 3, &sights.points[3 * i]);
  }
}

void Observed_points::move_to_own_world(const Pose& start) {
  const auto n = static_cast<double>(num_used_);
  double square = 0.0;
  for (Sights& sights : sights_) {
    restore_points(sights);
    for (std::size_t i = 0; i < 3 * sights.num_points; ++i) {
      const double from_start = sights.points[i] - start.centre[i % 3];
      world_.origin[i % 3] += sights.points[i] / n;
      square += from_start * from_start / n;
    }
  }
  world_.unit = std::sqrt(square);
  if (world_.unit == 0.0) throw Bad_argument("allAtCentre", "", "All points lie at the camera centre.");
  if (!std::isfinite(world_.unit))
    throw Bad_argument(
        "notFinite", "",
        "The points are too far from where the camera starts: the squares of their distances are not finite.");
  for (Sights& sights : sights_) {
    for (std::size_t i = 0; i < 3 * sights.num_groups() * group_size; ++i) {
      sights.points[i] = (sights.points[i] - world_.origin[i % 3]) / world_.unit;
    }
  }
}

}  // namespace kelvane
