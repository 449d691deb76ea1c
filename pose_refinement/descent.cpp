// SPDX-License-Identifier: BSD-3-Clause
// Step, verdict, scale, and once more.
#include "pose_refinement/descent.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pose_refinement/motion.h"

namespace kelvane {
namespace {

/// A step below this changes the cost by about its square, so rounding may decide whether it falls.
constexpr double hidden_by_rounding = 1e-6;

double norm(const double* x, std::size_t size) {
  double square = 0.0;
  for (std::size_t i = 0; i < size; ++i) square += x[i] * x[i];
  return std::sqrt(square);
}

/// Whether a part of the step lowers the cost by so little that it is about to leap over the minimum: large residuals
/// bend the cost more than the equations know. Half of it is better then.
bool falls_short(const Steps& steps, double part, double decrease) {
  constexpr double least = 0.25;
  return decrease < least * (2.0 - part) * part * steps.decrease;
}

}  // namespace

void Descent::begin(const Pose& start, Descent_state& state) {
  state.loss = {options_.loss, std::numeric_limits<double>::infinity()};
  const bool can_begin = start_scale(start, state);
  Descent_entry entry{start, cost_.cost(start, state.loss), state.loss.scale, 0.0, 0.0};
  if (!state.history.empty()) {
    entry.turn = angle_between(state.history.back().pose, start);
    entry.shift = length_between(state.history.back().pose, start);
  }
  state.history.push_back(entry);
  state.exit.reset();
  if (!can_begin || !std::isfinite(entry.cost)) state.exit = Refine_exit::no_cost;
}

/// The scale of a loss starts where the residuals are and comes down with them, so that a start far off is not taken
/// for a set of outliers. False where a residual is no number.
bool Descent::start_scale(const Pose& start, Descent_state& state) {
  state.is_final = state.is_settled = options_.loss == Loss::none;
  if (state.is_settled) return true;
  const std::vector<double>& lengths = cost_.lengths(start);
  if (std::any_of(lengths.begin(), lengths.end(), [](double s) { return std::isnan(s); })) return false;
  constexpr double rounding = 1e-8;  // of what most observations are: exact data leave nothing else
  lengths_ = cost_.lengths_of_observations();
  state.least_scale = options_.loss_scale > 0.0 ? options_.loss_scale : rounding * noise_of_lengths(lengths_);
  state.loss.scale = lowered_scale(start, state);
  return true;
}

void Descent::continue_with(double scale, Descent_state& state) {
  if (options_.loss == Loss::none || state.exit) return;
  Descent_entry& entry = state.history.back();
  state.is_final = true;
  state.is_settled = options_.loss_scale > 0.0;
  state.loss.scale = entry.scale = scale;
  entry.cost = cost_.cost(entry.pose, state.loss);
}

void Descent::iterate(Descent_state& state) {
  const Descent_entry before = state.history.back();
  Descent_entry next = before;
  next.turn = next.shift = 0.0;
  system_.linearise(before.pose, state.loss);
  const Trial trial = try_steps(system_.steps(), state.loss, next);
  state.exit = verdict(before, next, trial);
  lower_scale(next, state);
  state.history.push_back(next);
}

/// Takes the best of the steps, or of ever smaller parts of them, if it is better than the pose; the first that is,
/// where they are so short that it is Newton's.
Descent::Trial Descent::try_steps(const Steps& steps, const Robust_loss& loss, Descent_entry& next) {
  constexpr double smallest_part = 1e-6;
  constexpr double far = 0.01;
  if (steps.count == 0) return {std::numeric_limits<double>::quiet_NaN(), false};
  const Pose start = next.pose;
  const double length = norm(steps.twists[0], 6);
  const double start_cost = next.cost;
  // What rounding may add to the cost does not hold back a step that is too short to change it by more.
  double limit = next.cost * (length <= hidden_by_rounding ? 1.0 + 1e-13 : 1.0);
  bool is_found = limit == 0.0;
  bool is_over = is_found;
  bool is_cut_short = false;
  for (double part = 1.0; part > smallest_part && !is_over; part /= 2.0) {
    bool is_better = false;
    bool has_cost = true;
    for (std::size_t i = 0; i < steps.count && (length > far || !is_better); ++i) {
      double twist[6];
      std::transform(steps.twists[i], steps.twists[i] + 6, twist, [part](double entry) { return part * entry; });
      const Pose moved = motion_.moved_by(start, twist);
      const double cost = cost_.cost(moved, loss);
      has_cost = has_cost && std::isfinite(cost);
      if (!(cost < limit)) continue;
      limit = cost;
      next = {moved, cost, loss.scale, norm(twist + 3, 3), norm(twist, 3)};
      is_better = true;
    }
    is_over = is_better ? length <= hidden_by_rounding || !falls_short(steps, part, start_cost - limit) : is_found;
    is_found = is_found || is_better;
    is_cut_short = is_cut_short || !(is_better || has_cost);
  }
  return {length, is_cut_short};
}

/// A step that was cut short says nothing of how much further the cost falls.
Descent::Verdict Descent::verdict(const Descent_entry& before, const Descent_entry& after, const Trial& trial) const {
  const double length = trial.length;
  if (length <= options_.step_tolerance) return Refine_exit::step;
  if (length <= hidden_by_rounding && after.cost >= before.cost) return Refine_exit::rounding;
  if (after.turn == 0.0 && after.shift == 0.0) return Refine_exit::uphill;
  const double least = options_.function_tolerance * before.cost;
  if (options_.function_tolerance > 0.0 && !trial.is_cut_short && before.cost - after.cost < least)
    return Refine_exit::decrease;
  return {};
}

/// The scale is final where it no longer comes down, or at the one that the user wants.
void Descent::lower_scale(Descent_entry& entry, Descent_state& state) {
  const bool is_converged = state.exit && static_cast<int>(*state.exit) > 0;
  if (state.is_settled || (state.is_final && !is_converged)) return;
  constexpr double plainly = 0.95;
  const double before = state.loss.scale;
  const double value = lowered_scale(entry.pose, state);
  state.is_final = !(value < plainly * before);
  if (!state.is_final) {
    state.loss.scale = value;
  } else if (options_.loss_scale > 0.0) {
    state.is_settled = true;
    state.loss.scale = options_.loss_scale;
  }
  if (state.loss.scale == before) return;
  state.exit.reset();  // whatever the verdict was, it was on another cost
  entry.cost = cost_.cost(entry.pose, state.loss);
  entry.scale = state.loss.scale;
}

double Descent::lowered_scale(const Pose& pose, const Descent_state& state) {
  lengths_ = cost_.lengths(pose);
  return std::max(state.least_scale, std::min(state.loss.scale, state.loss.tuning() * noise_of_lengths(lengths_)));
}

}  // namespace kelvane
