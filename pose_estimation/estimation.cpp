// SPDX-License-Identifier: BSD-3-Clause
// What is to be believed of what a search has found.
#include "pose_estimation/estimation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "cameras/bad_argument.h"
#include "pose_refinement/projection.h"

namespace kelvane {
namespace {

constexpr double not_known = std::numeric_limits<double>::quiet_NaN();
constexpr double log10_of_odds = 3.0;  // a thousand to one

[[noreturn, gnu::cold]] void refuse_option(const char* name, const char* wanted) {
  throw Bad_argument("option", std::string("options.") + name, std::string(" must be ") + wanted + ".");
}

const Estimate_options& passed(const Estimate_options& options) {
  check(options);
  return options;
}

/// The number of dimensions that points of the own world spread over: 0 for one place, 1 for a line, 2 for more.
int num_dimensions(const Matches& matches) {
  constexpr double rounding = 1e-12;
  constexpr double least_sine = 1e-9;
  const auto length = [](const double(&x)[3]) { return std::hypot(std::hypot(x[0], x[1]), x[2]); };
  double nearest[3] = {std::numeric_limits<double>::infinity(), 0.0, 0.0};  // to the middle of all
  for (std::size_t i = 0; i < matches.size(); ++i) {
    double x[3];
    std::copy_n(matches.point(i), 3, x);
    if (length(x) < length(nearest)) std::copy_n(x, 3, nearest);
  }
  double far[3] = {};  // from there
  const auto set_offset = [&](std::size_t i, double(&x)[3]) {
    for (std::size_t k = 0; k < 3; ++k) x[k] = matches.point(i)[k] - nearest[k];
  };
  for (std::size_t i = 0; i < matches.size(); ++i) {
    double x[3];
    set_offset(i, x);
    if (length(x) > length(far)) std::copy_n(x, 3, far);
  }
  if (!(length(far) > rounding)) return 0;
  for (std::size_t i = 0; i < matches.size(); ++i) {
    double x[3];
    set_offset(i, x);
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t a = (k + 1) % 3, b = (k + 2) % 3;
      const double across = far[a] / length(far) * x[b] - far[b] / length(far) * x[a];
      if (std::abs(across) > least_sine * std::max(1.0, length(x))) return 2;
    }
  }
  return 1;
}

}  // namespace

void check(const Estimate_options& options) {
  if (!(options.max_error >= 0.0 && std::isfinite(options.max_error)))
    refuse_option("max_error", "a finite number above 0");
  if (!(options.confidence > 0.0 && options.confidence < 1.0)) refuse_option("confidence", "a number between 0 and 1");
  if (options.max_num_trials == 0) refuse_option("max_num_trials", "1 or more");
}

Estimation::Estimation(const Estimate_problem& problem, const Estimate_options& options, const Words& words)
    : problem_(problem),
      options_(passed(options)),
      words_(words),
      matches_(problem, options),
      agreement_(matches_),
      search_(problem, options, matches_, agreement_) {
  if (matches_.size() < 4 || num_dimensions(matches_) < 2) search_.stop();
}

void Estimation::resume(const double* state, std::size_t size) { search_.resume(state, size); }

bool Estimation::run(Deadline deadline) { return search_.run(deadline); }

std::vector<double> Estimation::state() const { return search_.state(); }

namespace {

/// Nothing is known of the pose.
Estimate_result no_result(const Estimate_problem& problem) {
  Estimate_result result;
  for (auto& row : result.pose.rotation) std::fill_n(row, 3, not_known);
  std::fill_n(result.pose.centre, 3, not_known);
  for (auto& row : result.covariance) std::fill_n(row, 6, std::numeric_limits<double>::infinity());
  result.noise_sigma = not_known;
  result.loss_scale = std::numeric_limits<double>::infinity();
  result.before = result.after = {not_known, not_known, not_known};
  result.num_left_out = problem.points.size / 3;
  result.residuals.assign(problem.observations.size, not_known);
  result.is_inlier.assign(problem.points.size / 3, 0);
  return result;
}

/// Of all points of the caller, whether they were chosen or not.
void spread(const Estimate_problem& problem, const Matches& matches, const std::vector<std::size_t>& chosen,
            Refine_result& result) {
  const std::size_t n = problem.points.size / 3;
  result.num_left_out = n - chosen.size();
  result.is_inlier.assign(n, 0);
  for (const std::size_t i : chosen) result.is_inlier[matches.index(i)] = 1;
  result.residuals.resize(problem.observations.size);
  project(result.pose, problem.camera, problem.points.data, n, result.residuals.data(), nullptr, nullptr);
  const std::size_t d = problem.camera.sees_directions ? 3 : 2;
  for (std::size_t i = 0; i < n; ++i) {
    const double* seen = &problem.observations.data[d * i];
    double direction[3];
    const bool is_seen = std::none_of(seen, seen + d, [](double value) { return std::isnan(value); });
    if (d == 3 && is_seen) {
      set_unit_direction(seen, i, direction);
      seen = direction;
    }
    for (std::size_t k = 0; k < d; ++k) {
      result.residuals[d * i + k] = is_seen ? seen[k] - result.residuals[d * i + k] : not_known;
    }
  }
}

void set_doubt(const Refine_alternative& doubt, Estimate_result& result) {
  result.exit = Refine_exit::ambiguous;
  result.alternative = doubt;
  result.message = "Ambiguous: " + std::to_string(result.num_inliers) +
                   " observations agree with the pose, and others that are as likely right with another.";
}

/// A covariance is that of a pose next to which all is straight: a pose that may turn by more has other minima, too.
void doubt_loose(Estimate_result& result) {
  constexpr double most = 0.05;  // radians, three degrees
  const auto& C = result.covariance;
  const double turn = std::sqrt(C[0][0] + C[1][1] + C[2][2]);
  if (!(turn > most)) return;
  result.exit = Refine_exit::ambiguous;
  result.message = "Ambiguous: the rotation is known to " + text_of(turn * 180.0 / 3.14159265358979323846, 2) +
                   " degrees only, so that others further away may be as likely.";
}

void set_decisive(std::size_t point, Estimate_result& result) {
  result.exit = Refine_exit::ambiguous;
  result.message = "Ambiguous: the observation of point " + std::to_string(point) +
                   " alone decides a direction of the pose, and no other says whether it is right.";
}

}  // namespace

/// The poses that the best ones of the search are refined to, the best first.
std::vector<Final_pose> Estimation::refined_poses() const {
  const auto is_better = [](const Final_pose& a, const Final_pose& b) {
    return a.consensus.log10_chance < b.consensus.log10_chance;
  };
  std::vector<Final_pose> all;
  for (const Candidate& candidate : search_.found()) {
    std::optional<Final_pose> found = Final_refinement(problem_, options_, matches_, agreement_).run(candidate.pose);
    if (found) all.insert(std::upper_bound(all.begin(), all.end(), *found, is_better), std::move(*found));
  }
  return all;
}

Estimate_result Estimation::result() const {
  Estimate_result result = no_result(problem_);
  std::vector<Final_pose> all = refined_poses();
  if (!all.empty()) {
    Final_pose& best = all.front();
    const auto is_as_likely = [&](const Final_pose& other) {
      const double chance = other.consensus.log10_chance;
      const bool are_as_many = chance < -log10_of_odds && 5 * other.chosen.size() >= 4 * best.chosen.size();
      return (are_as_many || chance < best.consensus.log10_chance + log10_of_odds) &&
             is_far(best.refined, matches_.world(), other.refined.pose);
    };
    const auto rival = std::find_if(all.begin() + 1, all.end(), is_as_likely);
    if (rival != all.end()) best.doubt = {rival->refined.pose, rival->refined.after.robust};
    static_cast<Refine_result&>(result) = std::move(best.refined);
    spread(problem_, matches_, best.chosen, result);
    result.log10_chance = best.consensus.log10_chance;
    if (best.doubt && static_cast<int>(result.exit) > 0) set_doubt(*best.doubt, result);
    if (static_cast<int>(result.exit) > 0) doubt_loose(result);
    if (best.decisive && static_cast<int>(result.exit) > 0) {
      set_decisive(words_.first_number + matches_.index(*best.decisive), result);
    }
  }
  result.num_trials = search_.num_trials();
  set_exit(result);
  return result;
}

/// What is missing for an estimate, or to believe it.
void Estimation::set_exit(Estimate_result& result) const {
  const std::string num_matches = std::to_string(matches_.size());
  const int dimensions = num_dimensions(matches_);
  if (matches_.size() < 4) {
    result.exit = Refine_exit::undetermined;
    result.message = "Not estimated: four points are the least, three for a pose and one that agrees; " + num_matches +
                     (matches_.size() == 1 ? " has" : " have") + " an observation.";
  } else if (dimensions < 2) {
    result.exit = Refine_exit::undetermined;
    result.message = dimensions == 0 ? "Not estimated: all points lie in one place."
                                     : "Not estimated: all points lie on a line, and a turn about it changes nothing.";
  } else if (result.log10_chance > -log10_of_odds) {
    result.exit = Refine_exit::no_consensus;
    result.message = "No consensus: " + std::to_string(result.num_inliers) + " of " + num_matches +
                     " observations agree with the best pose, which may be chance.";
  } else if (static_cast<int>(result.exit) > 0) {
    result.message = "Found: " + std::to_string(result.num_inliers) + " of " + num_matches + " observations agree.";
  }
}

Estimate_result estimate(const Estimate_problem& problem, const Estimate_options& options) {
  Estimation estimation(problem, options);
  estimation.run(Deadline::max());
  return estimation.result();
}

}  // namespace kelvane
