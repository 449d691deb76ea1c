// SPDX-License-Identifier: BSD-3-Clause
// One descent, and another one from the mirrored pose where the first ends behind the target.
#include "pose_refinement/refinement.h"

#include <cmath>
#include <utility>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/mirrored.h"
#include "pose_refinement/options.h"

namespace kelvane {
namespace {

constexpr double half = 0.5;

template <typename Argument>
const Argument& passed(const Argument& argument) {
  check(argument);
  return argument;
}

/// Whether run() may have come to this end.
bool can_end(Refine_exit exit, std::size_t num_steps, const Refine_options& options) {
  const auto most = static_cast<std::size_t>(options.max_iterations);
  if (exit == Refine_exit::max_iterations) return num_steps == most;
  if (exit == Refine_exit::decrease && !(options.function_tolerance > 0.0)) return false;
  return num_steps <= most && (num_steps > 0 || exit == Refine_exit::stopped);
}

bool may_look_from_other_side(const std::optional<Refine_exit>& exit) { return exit && *exit != Refine_exit::no_cost; }

}  // namespace

Refine_input::Refine_input(const Refine_problem& its_problem, const Refine_options& its_options, const Words& its_words)
    : problem(its_problem),
      options(passed(its_options)),
      words(its_words),
      start(checked(its_problem.start)),
      data(its_problem, start),
      rows(passed(its_problem.camera)) {}

Refinement::Refinement(const Refine_problem& problem, const Refine_options& options, const Words& words)
    : input_(problem, options, words), descent_(input_.data, input_.rows, options) {}

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
  if (descent.exit && !can_end(*descent.exit, descent.history.size() - 1, input_.options)) refuse_state();
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
  if (descent.history.size() > static_cast<std::size_t>(input_.options.max_iterations)) {
    descent.exit = Refine_exit::max_iterations;
    return;
  }
  if (descent.history.empty()) {
    descent_.begin(input_.data.world().from_users(input_.start), descent);
  } else if (state_.first && state_.first->num_entries == descent.history.size()) {
    descent_.begin(mirrored(descent.history.back().pose, input_.data), descent);
  } else {
    descent_.iterate(descent);
  }
  look_from_other_side();
  if (input_.options.watch && input_.options.watch(last_step(), num_iterations())) stop();
}

/// Where most of the weight ends behind the camera, the mirrored pose is to be tried as well: a flat target has the
/// same pixels there.
void Refinement::look_from_other_side() {
  const Descent_state& descent = state_.descent;
  if (state_.first || input_.rows.camera().sees_directions || !may_look_from_other_side(descent.exit)) return;
  if (descent_.cost().part_behind(descent.history.back().pose) <= half) return;
  state_.first = First_descent{*descent.exit, descent.loss.scale, descent.history.size()};
  state_.descent.exit.reset();
}

void Refinement::stop() {
  if (!state_.descent.exit) state_.descent.exit = Refine_exit::stopped;
}

Refine_step Refinement::last_step() const {
  const Descent_entry& last = state_.descent.history.back();
  const World& world = input_.data.world();
  const double rms = std::sqrt(last.cost / static_cast<double>(input_.data.num_used()));
  return {world.to_users(last.pose), rms, last.turn, last.shift * world.unit};
}

/// Of one that is over nothing is left but what it came to.
std::vector<double> Refinement::state() const {
  if (!state_.descent.exit) return row_of(state_);
  Descent_outcome found = outcome();
  if (found.exit == Refine_exit::no_cost) return {};
  return row_of({{found.loss, 0.0, true, true, std::move(found.history), found.exit}});
}

Refine_result Refinement::result() const { return report(input_, outcome()); }

/// All costs at the scale in the end.
Descent_outcome Refinement::outcome() const {
  const Descent_state& descent = state_.descent;
  Descent_outcome outcome{descent.exit.value_or(Refine_exit::stopped), descent.loss, descent.history};
  if (state_.first && !is_other_side_better()) {
    outcome.exit = state_.first->exit;
    outcome.loss.scale = state_.first->scale;
    outcome.history.resize(state_.first->num_entries);
  }
  Pose_cost cost(input_.data, input_.rows);
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
  Pose_cost cost(input_.data, input_.rows);
  const Pose& found = descent.history.back().pose;
  return cost.part_behind(found) <= half &&
         cost.cost(found, descent.loss) <= cost.cost(descent.history.front().pose, descent.loss);
}

}  // namespace kelvane
