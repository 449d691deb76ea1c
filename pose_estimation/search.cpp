// SPDX-License-Identifier: BSD-3-Clause
// Rounds of blocks of triples, and when there have been enough.
#include "pose_estimation/search.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <new>
#include <utility>

#include "cameras/bad_argument.h"
#include "pose_estimation/chosen_matches.h"
#include "pose_estimation/three_points.h"
#include "pose_refinement/threads.h"

namespace kelvane {
namespace {

constexpr std::size_t trials_of_block = 32;
constexpr std::size_t most_blocks_of_round = 32;
constexpr std::size_t blocks_of_thread = 4;  // at least: to start one takes as long as a block
constexpr std::size_t numbers_of_pose = 12;

[[noreturn, gnu::cold]] void refuse_state_of_search() {
  throw Bad_argument("state", "state", " is not that of an estimation of this problem with these options.");
}

bool is_pose(const Pose& pose) {
  try {
    static_cast<void>(checked(pose));
    return true;
  } catch (const Bad_argument&) {
    return false;
  }
}

}  // namespace

Search::Search(const Estimate_problem& problem, const Estimate_options& options, const Matches& matches,
               const Agreement& agreement)
    : problem_(problem),
      options_(options),
      matches_(matches),
      agreement_(agreement),
      triples_(matches.size(), options.seed) {}

bool Search::run(Deadline deadline) {
  while (!is_stopped_ && num_trials_ < num_trials_needed()) {
    run_round(std::clamp<std::size_t>(num_trials_ / trials_of_block, 1, most_blocks_of_round));
    is_stopped_ = options_.watch && options_.watch(progress());
    if (std::chrono::steady_clock::now() >= deadline) break;
  }
  return is_stopped_ || num_trials_ >= num_trials_needed();
}

std::size_t Search::most_trials() const {
  return static_cast<std::size_t>(std::min<std::uint64_t>(triples_.size(), options_.max_num_trials));
}

/// So many that one of them is of inliers alone with the wanted probability.
std::size_t Search::num_trials_needed() const {
  const auto n = static_cast<double>(matches_.size()), k = static_cast<double>(num_inliers());
  if (k < 3.0) return most_trials();
  const double chance = (k / n) * ((k - 1.0) / (n - 1.0)) * ((k - 2.0) / (n - 2.0));
  const double wanted = std::log1p(-options_.confidence) / std::log1p(-chance);
  const auto most = static_cast<double>(most_trials());
  return wanted < most ? static_cast<std::size_t>(std::ceil(wanted)) : most_trials();
}

void Search::run_round(std::size_t num_blocks) {
  const std::size_t end = std::min(most_trials(), num_trials_ + num_blocks * trials_of_block);
  std::vector<Candidate> found(num_blocks);
  std::atomic<std::size_t> next{0};
  std::atomic<bool> has_memory{true};
  const auto work = [&] {
    for (std::size_t block = next++; block < num_blocks; block = next++) {
      const std::size_t first = num_trials_ + block * trials_of_block;
      if (first >= end) return;
      try {
        found[block] = tried(first, std::min(first + trials_of_block, end));
      } catch (const std::exception&) {
        has_memory = false;
      }
    }
  };
  const std::size_t wanted = options_.num_threads == 0 ? num_processors() : options_.num_threads;
  work_on_threads(std::min(wanted, num_blocks / blocks_of_thread), work);
  if (!has_memory) throw std::bad_alloc();
  num_trials_ = end;
  for (Candidate& candidate : found) {
    if (candidate.gain > 0.0) found_.add(std::move(candidate));
  }
}

/// The best pose of some trials, improved, if it is worth a look.
Candidate Search::tried(std::size_t first_trial, std::size_t end) const {
  Candidate best{{}, found_.least_gain()};
  bool is_found = false;
  for (std::size_t trial = first_trial; trial < end; ++trial) {
    std::size_t triple[3];
    triples_.get(trial, triple);
    double points[3][3], directions[3][3];
    for (int i = 0; i < 3; ++i) {
      std::copy_n(matches_.point(triple[i]), 3, points[i]);
      std::copy_n(matches_.direction(triple[i]), 3, directions[i]);
    }
    Pose poses[max_poses_of_three_points];
    const int num_poses = poses_of_three_points(points, directions, poses);
    for (int i = 0; i < num_poses; ++i) {
      const double gain = agreement_.gain(poses[i], best.gain);
      if (!(gain > best.gain)) continue;
      best = {poses[i], gain};
      is_found = true;
    }
  }
  return is_found ? improved(best) : Candidate();
}

/// What is too far away to be refined stays as it is.
Candidate Search::refined(const Refine_problem& problem, const Refine_options& options, Candidate candidate) const {
  try {
    candidate.pose = matches_.world().from_users(refine(problem, options).pose);
    candidate.gain = agreement_.gain(candidate.pose, candidate.gain);
  } catch (const Bad_argument&) {
    candidate.gain = 0.0;
  }
  return candidate;
}

/// By short refinements of the points around, as long as more agree.
Candidate Search::improved(Candidate candidate) const {
  constexpr int most_rounds = 3;
  constexpr double reach = 4.0;  // squared: who is near may come in
  constexpr std::size_t enough = 512;
  Refine_options options;
  options.loss = Loss::tukey;
  options.loss_scale = matches_.max_error();
  options.max_iterations = 6;
  options.step_tolerance = 1e-4;
  for (int i = 0; i < most_rounds; ++i) {
    const std::vector<double> squares = agreement_.squares(candidate.pose);
    Chosen_matches chosen(problem_, matches_);
    for (std::size_t k = 0; k < squares.size() && chosen.size() < enough; ++k) {
      if (squares[k] < reach) chosen.add(k);
    }
    if (chosen.size() < 4) break;
    const Candidate better = refined(chosen.problem(matches_.world().to_users(candidate.pose)), options, candidate);
    if (!(better.gain > candidate.gain)) break;
    candidate = better;
  }
  return at(candidate.pose);
}

Candidate Search::at(const Pose& pose) const {
  Candidate candidate{pose, agreement_.gain(pose, 0.0)};
  for (const double square : agreement_.squares(pose)) candidate.is_inlier.push_back(square < 1.0);
  return candidate;
}

std::vector<double> Search::state() const {
  std::vector<double> row = {static_cast<double>(num_trials_), is_stopped_ ? 1.0 : 0.0};
  for (const Candidate& candidate : found_.all()) {
    row.insert(row.end(), &candidate.pose.rotation[0][0], &candidate.pose.rotation[0][0] + 9);
    row.insert(row.end(), candidate.pose.centre, candidate.pose.centre + 3);
  }
  return row;
}

void Search::resume(const double* state, std::size_t size) {
  const bool is_size =
      size >= 2 && (size - 2) % numbers_of_pose == 0 && (size - 2) / numbers_of_pose <= Candidates::most;
  const auto is_finite = [](double value) { return std::isfinite(value); };
  if (!is_size || !std::all_of(state, state + size, is_finite)) refuse_state_of_search();
  const bool is_number =
      state[0] >= 0.0 && state[0] <= static_cast<double>(most_trials()) && state[0] == std::floor(state[0]);
  if (!is_number || (state[1] != 0.0 && state[1] != 1.0)) refuse_state_of_search();
  num_trials_ = static_cast<std::size_t>(state[0]);
  is_stopped_ = is_stopped_ || state[1] == 1.0;
  for (const double* row = state + 2; row < state + size; row += numbers_of_pose) {
    Pose pose;
    std::copy_n(row, 9, &pose.rotation[0][0]);
    std::copy_n(row + 9, 3, pose.centre);
    if (!is_pose(pose)) refuse_state_of_search();
    found_.add(at(pose));
  }
}

}  // namespace kelvane
