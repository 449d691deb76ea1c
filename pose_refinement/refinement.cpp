// SPDX-License-Identifier: BSD-3-Clause
// One descent, and others from the mirrored pose or the other tilt of a flat target.
#include "pose_refinement/refinement.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/mirrored.h"
#include "pose_refinement/options.h"

namespace kelvane {
namespace {

template <typename Argument>
const Argument& passed(const Argument& argument) {
  check(argument);
  return argument;
}

/// Those at the other tilt of a target are not the user's: what is told of a pose must not depend on them.
std::size_t iterations_allowed(const Refine_options& options, bool is_at_other_tilt) {
  constexpr int for_other_tilt = 100;
  return static_cast<std::size_t>(is_at_other_tilt ? std::max(options.max_iterations, for_other_tilt)
                                                   : options.max_iterations);
}

/// Whether run() may have come to this end.
bool can_end(Refine_exit exit, std::size_t num_entries, const Refine_options& options, bool is_at_other_tilt) {
  const std::size_t most = iterations_allowed(options, is_at_other_tilt) + 1;
  if (exit == Refine_exit::max_iterations) return num_entries == most;
  if (exit == Refine_exit::decrease && !(options.function_tolerance > 0.0)) return false;
  return num_entries <= most && (num_entries > 1 || exit == Refine_exit::stopped);
}

/// Covariances and priors say how large noise is.
double known_noise_sigma(const Refine_problem& problem, const Refine_options& options) {
  const Pose_prior& prior = problem.prior;
  const bool has_unit = problem.covariances.size + prior.covariance.size + prior.information.size > 0;
  return options.noise_sigma > 0.0 || !has_unit ? options.noise_sigma : 1.0;
}

bool may_look_from_other_side(const std::optional<Refine_exit>& exit) { return exit && *exit != Refine_exit::no_cost; }

}  // namespace

Refine_input::Refine_input(const Refine_problem& its_problem, const Refine_options& its_options, const Words& its_words)
    : problem(its_problem),
      options(passed(its_options)),
      words(its_words),
      start(checked(its_problem.start)),
      noise_sigma(known_noise_sigma(its_problem, its_options)),
      data(its_problem, start),
      rows(passed(its_problem.camera)),
      prior(its_problem.prior, data.world(), noise_sigma),
      motion(its_problem.fixed, data.world().from_users(start), data.world()) {}

const Pose& Refine_input::fixed_start() const {
  constexpr double rounding = 1e-14;
  double largest = 0.0;
  for (int i = 0; i < 9; ++i) {
    largest = std::max(largest, std::abs((&problem.start.rotation[0][0])[i] - (&start.rotation[0][0])[i]));
  }
  return largest <= rounding ? problem.start : start;
}

Refinement::Refinement(const Refine_problem& problem, const Refine_options& options, const Words& words)
    : input_(problem, options, words), descent_(input_) {}

/// Costs that are those of the poses are finite: nothing that the iteration meets then is stranger than what it makes.
void Refinement::resume(const double* state, std::size_t size) {
  const Loss loss = input_.options.loss;
  Refinement_state resumed = state_of_row(state, size, loss);
  const auto check_cost = [&](const Descent_entry& entry, double scale) {
    const double cost = descent_.cost().cost(entry.pose, {loss, scale});
    if (!(std::isfinite(cost) && cost == entry.cost)) refuse_state();
  };
  if (resumed.first) check_cost(resumed.descent.history[resumed.first->num_entries - 1], resumed.first->scale);
  const Descent_state& descent = resumed.descent;
  check_cost(descent.history.back(), descent.loss.scale);
  const bool is_at_other_tilt = resumed.first && resumed.first->next == Other_side::tilted;
  const std::size_t num_entries = descent.history.size() - (is_at_other_tilt ? resumed.first->num_entries : 0);
  if (descent.exit && !can_end(*descent.exit, num_entries, input_.options, is_at_other_tilt)) refuse_state();
  state_ = std::move(resumed);
}

bool Refinement::run(Deadline deadline) {
  while (!state_.descent.exit) {
    advance();
    if (std::chrono::steady_clock::now() >= deadline) break;
  }
  return state_.descent.exit.has_value();
}

/// By one entry of the history. That there may be no more is found out when the next is due, so that somebody who looks
/// on can stop after the last one as after any other.
void Refinement::advance() {
  Descent_state& descent = state_.descent;
  if (num_entries_of_descent() > iterations_allowed(input_.options, is_at_other_tilt())) {
    descent.exit = Refine_exit::max_iterations;
    return;
  }
  if (descent.history.empty() || (state_.first && state_.first->num_entries == descent.history.size())) {
    begin_next();
  } else {
    descent_.iterate(descent);
  }
  look_from_other_side();
  look_at_other_tilt();
  if (input_.options.watch && input_.options.watch(last_step(), num_iterations())) stop();
}

/// Those of a target tilted the other way are counted by themselves: they cannot cost the pose that was found its last
/// ones.
std::size_t Refinement::num_entries_of_descent() const {
  return state_.descent.history.size() - (is_at_other_tilt() ? state_.first->num_entries : 0);
}

bool Refinement::is_at_other_tilt() const { return state_.first && state_.first->next == Other_side::tilted; }

/// The other tilt is measured as the first one, by the scale that the loss has come to: whatever differs then is
/// another minimum.
void Refinement::begin_next() {
  Descent_state& descent = state_.descent;
  if (!state_.first) return descent_.begin(input_.data.world().from_users(input_.start), descent);
  const Pose last = descent.history.back().pose;
  if (!is_at_other_tilt()) return descent_.begin(input_.motion.nearest(mirrored(last, input_.data)), descent);
  const std::vector<double> pulls = pulls_at(last, state_.first->scale);
  descent_.begin(input_.motion.nearest(tilted(last, input_.data, pulls)), descent);
  descent_.continue_with(state_.first->scale, descent);
}

/// Where most of the weight ends behind the camera, the mirrored pose is to be tried as well: a flat target has the
/// same pixels there.
void Refinement::look_from_other_side() {
  const Descent_state& descent = state_.descent;
  if (state_.first || !may_look_from_other_side(descent.exit) ||
      !descent_.cost().is_behind(descent.history.back().pose))
    return;
  state_.first = First_descent{*descent.exit, descent.loss.scale, descent.history.size(), Other_side::behind};
  state_.descent.exit.reset();
}

void Refinement::stop() {
  if (!state_.descent.exit) state_.descent.exit = Refine_exit::stopped;
}

Refine_step Refinement::last_step() const {
  const Descent_entry& last = state_.descent.history.back();
  const World& world = input_.data.world();
  const double rms = std::sqrt(last.cost / static_cast<double>(input_.data.num_used()));
  Refine_step step{world.to_users(last.pose), rms, last.turn, last.shift * world.unit};
  input_.motion.restore(input_.fixed_start(), step.pose);
  return step;
}

/// Of one that is over nothing is left but what it came to, and the other tilt.
std::vector<double> Refinement::state() const {
  if (!state_.descent.exit || is_at_other_tilt()) return row_of(state_);
  Descent_outcome found = outcome();
  if (found.exit == Refine_exit::no_cost) return {};
  return row_of({{found.loss, 0.0, true, true, std::move(found.history), found.exit}});
}

Refine_result Refinement::result() const { return report(input_, outcome()); }

/// All costs at the scale in the end.
Descent_outcome Refinement::outcome() const {
  const Descent_state& descent = state_.descent;
  Descent_outcome outcome{descent.exit.value_or(Refine_exit::stopped), descent.loss, descent.history};
  if (state_.first && (is_at_other_tilt() || !is_other_side_better())) {
    outcome.exit = state_.first->exit;
    outcome.loss.scale = state_.first->scale;
    outcome.history.resize(state_.first->num_entries);
  }
  if (is_at_other_tilt()) compare_tilts(outcome);
  Pose_cost cost(input_);
  for (Descent_entry& entry : outcome.history) {
    if (entry.scale == outcome.loss.scale) continue;
    entry.cost = cost.cost(entry.pose, outcome.loss);
    entry.scale = outcome.loss.scale;
  }
  return outcome;
}

/// The mirrored pose is taken if it has led to where the points are in front, and no worse than the start.
bool Refinement::is_other_side_better() const {
  const Descent_state& descent = state_.descent;
  if (descent.history.size() == state_.first->num_entries) return false;
  Pose_cost cost(input_);
  const Pose& found = descent.history.back().pose;
  return !cost.is_behind(found) &&
         cost.cost(found, descent.loss) <= cost.cost(descent.history.front().pose, descent.loss);
}

}  // namespace kelvane
