// SPDX-License-Identifier: BSD-3-Clause
// Least squares and the choice of matches in turn, and what one match more or less would change.
#include "pose_estimation/final_refinement.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "pose_estimation/chosen_matches.h"
#include "pose_estimation/leverage.h"
#include "pose_refinement/known_pose.h"
#include "pose_refinement/projection.h"

namespace kelvane {
namespace {

constexpr std::size_t least_chosen = 4;  // three for a pose and one that agrees

}  // namespace

bool is_far(const Refine_result& refined, const World& world, const Pose& other) {
  constexpr double least_square = 9.0;
  constexpr double rounding = 1e-18;  // squared: exact data know the pose as far as that
  if (static_cast<int>(refined.exit) <= 0) return false;
  double covariance[6][6];
  std::copy_n(&refined.covariance[0][0], 36, &covariance[0][0]);
  for (int i = 0; i < 6; ++i) covariance[i][i] += rounding * (i < 3 ? 1.0 : world.unit * world.unit);
  Pose_prior around;
  around.pose = refined.pose;
  around.covariance = Numbers(&covariance[0][0], 36);
  return Known_pose(around, world, 1.0).cost(world.from_users(other)) > least_square;
}

Final_refinement::Final_refinement(const Estimate_problem& problem, const Estimate_options& options,
                                   const Matches& matches, const Agreement& agreement)
    : problem_(problem), matches_(matches), agreement_(agreement), is_said_who_belongs_(options.max_error > 0.0) {}

std::optional<Final_pose> Final_refinement::run(const Pose& start) {
  choose(start, consensus(agreement_.squares(start), matches_.chance()).square);
  if (found_.chosen.size() < least_chosen) choose(start, 1.0);
  if (found_.chosen.size() < least_chosen) return {};
  found_.refined = refined(found_.chosen, matches_.world().to_users(start));
  settle();
  if (!is_said_who_belongs_) weigh_each();
  set_consensus();
  set_decisive();
  return std::move(found_);
}

/// Where observations crowd in one place, a pose that sees many points there agrees with them by chance.
void Final_refinement::set_consensus() {
  const std::vector<double> all = squares(found_.refined.pose);
  found_.consensus = consensus(all, matches_.chance());
  const double square = found_.consensus.square;
  if (!(square > 0.0)) return;
  const Pose pose = matches_.world().from_users(found_.refined.pose);
  const double crowd = agreement_.crowd(pose, found_.chosen, square) / square;
  if (crowd > matches_.chance()) found_.consensus = consensus(all, crowd);
}

std::vector<double> Final_refinement::leverages_of_chosen() const {
  Chosen_matches copies(problem_, matches_);
  for (const std::size_t i : found_.chosen) copies.add(i);
  return leverages(copies.problem(found_.refined.pose), found_.refined);
}

/// Without it some direction would be thirty times as uncertain: nothing but this match says whether it is right.
void Final_refinement::set_decisive() {
  constexpr double most = 0.999;
  const std::vector<double> all = leverages_of_chosen();
  const auto which = std::find_if(all.begin(), all.end(), [](double leverage) { return leverage > most; });
  if (which != all.end()) found_.decisive = found_.chosen[static_cast<std::size_t>(which - all.begin())];
}

/// Until the same matches are chosen again.
void Final_refinement::settle() {
  constexpr int most_rounds = 8;
  for (int i = 0; i < most_rounds; ++i) {
    const std::vector<std::size_t> before = found_.chosen;
    const double limit = is_said_who_belongs_ ? 1.0 : std::min(membership(found_.refined).limit(), most_);
    choose(matches_.world().from_users(found_.refined.pose), limit);
    if (found_.chosen.size() < least_chosen) found_.chosen = before;
    if (found_.chosen == before) return;
    found_.refined = refined(found_.chosen, found_.refined.pose);
  }
}

/// Of few matches each one bends the pose, so that the length of its residual says little.
void Final_refinement::weigh_each() {
  constexpr int most_rounds = 4;
  constexpr std::size_t few = 40;
  constexpr double least_odds = 1000.0;
  for (int i = 0; found_.chosen.size() > least_chosen && found_.chosen.size() <= few; ++i) {
    const std::vector<Change> all = changes();
    const auto is_likelier = [](const Change& a, const Change& b) { return a.odds < b.odds; };
    const auto best = std::min_element(all.begin(), all.end(), is_likelier);
    if (best == all.end()) return;
    if (best->odds < 1.0 && i < most_rounds) {
      accept(*best);
      continue;
    }
    const auto leaves_doubt = [&](const Change& a) {
      return a.odds < least_odds && (is_far(found_.refined, matches_.world(), a.result.pose) ||
                                     is_far(a.result, matches_.world(), found_.refined.pose));
    };
    const auto doubt = std::find_if(all.begin(), all.end(), leaves_doubt);
    if (doubt != all.end()) found_.doubt = {doubt->result.pose, doubt->result.after.robust};
    return;
  }
}

/// All that are worth a look: of many, those with long residuals, and those that bend the pose to have short ones.
std::vector<Final_refinement::Change> Final_refinement::changes() const {
  constexpr std::size_t very_few = 12;
  constexpr double long_one = 4.0;  // times the mean square
  constexpr double strong_one = 0.7;
  const auto k = static_cast<double>(found_.chosen.size());
  const double mean = sum_of_squares(found_.refined) / k;
  const std::vector<double> leverage = leverages_of_chosen();
  std::vector<Change> all;
  std::vector<bool> is_chosen(matches_.size());
  for (std::size_t i = 0; i < found_.chosen.size(); ++i) {
    is_chosen[found_.chosen[i]] = true;
    const bool is_long = square(found_.refined, i) > long_one * mean;
    if (found_.chosen.size() <= very_few || is_long || leverage[i] > strong_one) all.push_back(without(i));
  }
  const std::vector<double> near = squares(found_.refined.pose);
  constexpr double reach = 4.0 * most_;  // further away than it will be with the match
  for (std::size_t i = 0; i < near.size(); ++i) {
    if (near[i] < reach && !is_chosen[i]) all.push_back(with(i));
  }
  return all;
}

Final_refinement::Change Final_refinement::without(std::size_t k) const {
  std::vector<std::size_t> chosen = found_.chosen;
  const std::size_t match = chosen[k];
  chosen.erase(chosen.begin() + static_cast<std::ptrdiff_t>(k));
  Change change{match, true, 0.0, refined(chosen, found_.refined.pose)};
  const double lever = std::sqrt(squares(change.result.pose)[match] / square(found_.refined, k));
  const double growth = sum_of_squares(found_.refined) - sum_of_squares(change.result);
  change.odds = membership(change.result).odds(growth, std::max(1.0, lever));
  return change;
}

Final_refinement::Change Final_refinement::with(std::size_t match) const {
  std::vector<std::size_t> chosen = found_.chosen;
  chosen.push_back(match);
  Change change{match, false, 0.0, refined(chosen, found_.refined.pose)};
  const double lever = std::sqrt(squares(found_.refined.pose)[match] / square(change.result, chosen.size() - 1));
  const double growth = sum_of_squares(change.result) - sum_of_squares(found_.refined);
  change.odds = 1.0 / membership(found_.refined).odds(growth, std::max(1.0, lever));
  return change;
}

void Final_refinement::accept(const Change& change) {
  std::vector<std::size_t>& chosen = found_.chosen;
  if (change.is_chosen) {
    chosen.erase(std::find(chosen.begin(), chosen.end(), change.match));
  } else {
    chosen.push_back(change.match);
  }
  found_.refined = change.result;
}

void Final_refinement::choose(const Pose& pose, double most) {
  found_.chosen.clear();
  const std::vector<double> near = agreement_.squares(pose);
  const Pose users_pose = matches_.world().to_users(pose);
  for (std::size_t i = 0; i < near.size(); ++i) {
    if (near[i] <= most && has_image(users_pose, i)) found_.chosen.push_back(i);
  }
}

/// Whether the camera sees it, beyond the first order: neither behind it nor where its lens folds back.
bool Final_refinement::has_image(const Pose& users_pose, std::size_t match) const {
  double seen[3], depth;
  project(users_pose, problem_.camera, &problem_.points.data[3 * matches_.index(match)], 1, seen, nullptr, &depth);
  const bool is_all_round =
      problem_.camera.sees_directions || (problem_.camera.lens && problem_.camera.lens->is_angular);
  return !std::isnan(seen[0]) && (is_all_round || depth > 0.0);
}

Refine_result Final_refinement::refined(const std::vector<std::size_t>& chosen, const Pose& start) const {
  Chosen_matches copies(problem_, matches_);
  for (const std::size_t i : chosen) copies.add(i);
  return refine(copies.problem(start));
}

Membership Final_refinement::membership(const Refine_result& result) const {
  return {static_cast<double>(matches_.size()), matches_.chance(), static_cast<double>(result.is_inlier.size()),
          sum_of_squares(result)};
}

double Final_refinement::sum_of_squares(const Refine_result& result) const {
  double sum = 0.0;
  for (std::size_t k = 0; k < result.is_inlier.size(); ++k) sum += square(result, k);
  return sum;
}

/// In units of the largest error; not 0, so that one can divide by it.
double Final_refinement::square(const Refine_result& result, std::size_t k) const {
  constexpr double least = 1e-30;
  const std::size_t d = result.residuals.size() / result.is_inlier.size();
  double sum = 0.0;
  for (std::size_t i = d * k; i < d * k + d; ++i) sum += result.residuals[i] * result.residuals[i];
  return std::max(least, sum / (matches_.max_error() * matches_.max_error()));
}

std::vector<double> Final_refinement::squares(const Pose& users_pose) const {
  return agreement_.squares(matches_.world().from_users(users_pose));
}

}  // namespace kelvane
