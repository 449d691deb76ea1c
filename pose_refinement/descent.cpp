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

}  // namespace

Descent_outcome Descent::run(const Pose& start, const std::vector<Descent_entry>& earlier) {
  history_ = earlier;
  loss_ = {options_.loss, std::numeric_limits<double>::infinity()};
  const bool can_begin = start_scale(start);
  Descent_entry entry{start, cost_.cost(start, loss_), loss_.scale, 0.0, 0.0};
  if (!history_.empty()) {
    entry.turn = angle_between(history_.back().pose, start);
    entry.shift = length_between(history_.back().pose, start);
  }
  const bool is_stopped = append(entry);
  Refine_exit exit = Refine_exit::no_cost;
  if (can_begin && std::isfinite(entry.cost)) exit = is_stopped ? Refine_exit::stopped : iterate();
  return {exit, loss_, history_};
}

/// The scale of a loss starts where the residuals are and comes down with them, so that a start far off is not taken
/// for a set of outliers. False where a residual is no number.
bool Descent::start_scale(const Pose& start) {
  is_final_ = is_settled_ = options_.loss == Loss::none;
  if (is_settled_) return true;
  const std::vector<double>& lengths = cost_.lengths(start);
  if (std::any_of(lengths.begin(), lengths.end(), [](double s) { return std::isnan(s); })) return false;
  constexpr double rounding = 1e-8;  // of what most observations are: exact data leave nothing else
  lengths_ = cost_.lengths_of_observations();
  least_scale_ = options_.loss_scale > 0.0 ? options_.loss_scale : rounding * noise_of_lengths(lengths_);
  loss_.scale = lowered_scale(start);
  return true;
}

Refine_exit Descent::iterate() {
  while (history_.size() <= static_cast<std::size_t>(options_.max_iterations)) {
    const Descent_entry before = history_.back();
    Descent_entry next = before;
    next.turn = next.shift = 0.0;
    system_.linearise(before.pose, loss_);
    const double length = try_steps(system_.steps(), next);
    Verdict exit = verdict(before, next, length);
    lower_scale(next, exit);
    const bool is_stopped = append(next);
    if (exit) return *exit;
    if (is_stopped) return Refine_exit::stopped;
  }
  return Refine_exit::max_iterations;
}

/// Takes the best of the steps, or of ever smaller parts of them, if it is better than the pose; the first that is,
/// where they are so short that it is Newton's. Returns the length of the first whole step.
double Descent::try_steps(const Steps& steps, Descent_entry& next) {
  constexpr double smallest_part = 1e-6;
  constexpr double far = 0.01;
  if (steps.count == 0) return std::numeric_limits<double>::quiet_NaN();
  const Pose start = next.pose;
  const double length = norm(steps.twists[0], 6);
  // What rounding may add to the cost does not hold back a step that is too short to change it by more.
  double limit = next.cost * (length <= hidden_by_rounding ? 1.0 + 1e-13 : 1.0);
  bool is_over = limit == 0.0;
  for (double part = 1.0; part > smallest_part && !is_over; part /= 2.0) {
    for (std::size_t i = 0; i < steps.count && (length > far || !is_over); ++i) {
      double twist[6];
      std::transform(steps.twists[i], steps.twists[i] + 6, twist, [part](double entry) { return part * entry; });
      const Pose moved = moved_by(start, twist);
      const double cost = cost_.cost(moved, loss_);
      if (!(cost < limit)) continue;
      limit = cost;
      next = {moved, cost, loss_.scale, norm(twist + 3, 3), norm(twist, 3)};
      is_over = true;
    }
  }
  return length;
}

Descent::Verdict Descent::verdict(const Descent_entry& before, const Descent_entry& after, double length) const {
  if (length <= options_.step_tolerance) return Refine_exit::step;
  if (length <= hidden_by_rounding && after.cost >= before.cost) return Refine_exit::rounding;
  if (after.turn == 0.0 && after.shift == 0.0) return Refine_exit::uphill;
  const double least = options_.function_tolerance * before.cost;
  if (options_.function_tolerance > 0.0 && before.cost - after.cost < least) return Refine_exit::decrease;
  return {};
}

/// The scale is final where it no longer comes down, or at the one that the user wants.
void Descent::lower_scale(Descent_entry& entry, Verdict& exit) {
  const bool is_converged = exit && static_cast<int>(*exit) > 0;
  if (is_settled_ || (is_final_ && !is_converged)) return;
  constexpr double plainly = 0.95;
  const double before = loss_.scale;
  const double value = lowered_scale(entry.pose);
  is_final_ = !(value < plainly * before);
  if (!is_final_) {
    loss_.scale = value;
  } else if (options_.loss_scale > 0.0) {
    is_settled_ = true;
    loss_.scale = options_.loss_scale;
  }
  if (loss_.scale == before) return;
  exit.reset();  // whatever the verdict was, it was on another cost
  entry.cost = cost_.cost(entry.pose, loss_);
  entry.scale = loss_.scale;
}

double Descent::lowered_scale(const Pose& pose) {
  lengths_ = cost_.lengths(pose);
  return std::max(least_scale_, std::min(loss_.scale, loss_.tuning() * noise_of_lengths(lengths_)));
}

/// Whether it shall be the last one.
bool Descent::append(const Descent_entry& entry) {
  history_.push_back(entry);
  if (!options_.watch) return false;
  const double rms = std::sqrt(entry.cost / static_cast<double>(data_.num_used()));
  return options_.watch({data_.world().to_users(entry.pose), rms, entry.turn, entry.shift * data_.world().unit},
                        history_.size() - 1);
}

}  // namespace kelvane
