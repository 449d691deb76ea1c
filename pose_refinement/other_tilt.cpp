// SPDX-License-Identifier: BSD-3-Clause
// A flat target tilted the other way: when a refinement looks at it, and which of the two poses it takes.
#include <algorithm>
#include <utility>
#include <vector>

#include "pose_refinement/mirrored.h"
#include "pose_refinement/motion.h"
#include "pose_refinement/refinement.h"

namespace kelvane {

/// From afar a flat target has nearly the same pixels when it is tilted the other way, so that the cost has two minima
/// of which a descent finds the one that is nearer. What has been found until then is kept.
void Refinement::look_at_other_tilt() {
  Descent_state& descent = state_.descent;
  if (!descent.exit || is_at_other_tilt()) return;
  Descent_outcome found = outcome();
  if (static_cast<int>(found.exit) <= 0) return;
  descent.history = std::move(found.history);
  descent.loss = found.loss;
  descent.exit = found.exit;
  state_.first.reset();
  if (!is_flat()) return;
  state_.first = First_descent{found.exit, found.loss.scale, descent.history.size(), Other_side::tilted};
  descent.exit.reset();
}

/// Whether noise hides what stands out of a plane.
bool Refinement::is_flat() {
  constexpr double num_sigma = 5.0;
  const Descent_entry& last = state_.descent.history.back();
  if (input_.data.num_used() < 3) return false;
  const std::vector<double> pulls = pulls_at(last.pose, state_.descent.loss.scale);
  if (!pulls.empty() && !(*std::max_element(pulls.begin(), pulls.end()) > 0.0)) return false;
  std::vector<double> lengths;
  const bool is_in_scale = input_.options.loss != Loss::none && input_.options.loss_scale == 0.0;
  if (input_.options.loss != Loss::none && !is_in_scale) lengths = descent_.cost().lengths(last.pose);
  const Robust_loss& loss = state_.descent.loss;
  const double noise = is_in_scale && !(input_.noise_sigma > 0.0)
                           ? loss.scale / loss.tuning()  // as it was chosen
                           : noise_sigma_of(input_, input_.options.loss, last.cost, lengths);
  return is_seen_flat(last.pose, input_, pulls, num_sigma * noise) && !descent_.cost().is_behind(last.pose);
}

/// What the loss leaves of the weights of the points; none without a loss.
std::vector<double> Refinement::pulls_at(const Pose& pose, double scale) {
  const Robust_loss loss{input_.options.loss, scale};
  if (loss.kind == Loss::none) return {};
  std::vector<double> pulls = descent_.cost().lengths(pose);
  for (double& pull : pulls) pull = loss.weight(pull);
  return pulls;
}

/// Where the other tilt is a minimum of its own, the better one of both is the outcome. Who stops on the way there gets
/// the better pose.
void Refinement::compare_tilts(Descent_outcome& outcome) const {
  const Descent_state& descent = state_.descent;
  const Descent_entry found = outcome.history.back();
  const Descent_entry& other = descent.history.back();
  const bool is_stopped = descent.exit.value_or(Refine_exit::stopped) == Refine_exit::stopped;
  if (is_stopped) outcome.exit = Refine_exit::stopped;
  if (descent.history.size() == outcome.history.size()) return;  // not begun
  const Pose& start = descent.history[outcome.history.size()].pose;
  const double least_turn = least_turn_to(angle_between(found.pose, start));
  const bool is_minimum = descent.exit && static_cast<int>(*descent.exit) > 0;
  Pose_cost cost(input_);
  if (!(is_minimum || is_stopped) || angle_between(found.pose, other.pose) <= least_turn || cost.is_behind(other.pose))
    return;
  const bool is_better = other.cost < cost.cost(found.pose, descent.loss) - cost.rounding();
  if (is_better) {
    if (is_minimum) outcome.exit = *descent.exit;
    outcome.loss = descent.loss;
    outcome.history = descent.history;
  }
  if (!is_minimum) return;
  outcome.alternative = is_better ? found : other;
  outcome.alternative->cost = cost.cost(outcome.alternative->pose, outcome.loss);
}

/// How far apart two minima are at least: beyond what a step may leave, and where a descent may end before a minimum,
/// by a part of the way that the other one began with.
double Refinement::least_turn_to(double turn_of_start) const {
  constexpr double hundred_steps = 100.0;
  constexpr double part = 0.1;
  const double least = std::max(1e-5, hundred_steps * input_.options.step_tolerance);
  return input_.options.function_tolerance > 0.0 ? std::max(least, part * turn_of_start) : least;
}

}  // namespace kelvane
