// SPDX-License-Identifier: BSD-3-Clause
// A row of numbers with which a refinement goes on, or any other numbers.
#include "pose_refinement/refinement_state.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <vector>

#include "pose_refinement/bad_argument.h"
#include "pose_refinement/refinement.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Deadline;
using kelvane::Loss;
using kelvane::Refine_exit;
using kelvane::Refine_options;
using kelvane::Refine_problem;
using kelvane::Refinement;

constexpr std::size_t num_once = 10;
constexpr std::size_t num_per_entry = 16;

double num_entries_of(const std::vector<double>& state) {
  return static_cast<double>((state.size() - num_once) / num_per_entry);
}

std::size_t num_entries(const Refine_problem& problem, const Refine_options& options) {
  Refinement refinement(problem, options);
  EXPECT_TRUE(refinement.run(Deadline::max()));
  return refinement.num_iterations() + 1;
}

/// The state of a refinement in the middle of a descent, or of that of the mirrored pose.
std::vector<double> some_state(const Refine_problem& problem, const Refine_options& options, std::size_t num_steps) {
  Refinement refinement(problem, options);
  for (std::size_t k = 0; k <= num_steps; ++k) EXPECT_FALSE(refinement.run(Deadline::min()));
  return refinement.state();
}

/// A state in the descent that began last at the mirrored pose, 0, or at the other tilt, 1.
std::vector<double> state_beside(const Refine_problem& problem, const Refine_options& options, double next) {
  Refinement refinement(problem, options);
  std::vector<double> found;
  while (!refinement.run(Deadline::min())) {
    const std::vector<double> state = refinement.state();
    if (state[7] > 0.0 && state[8] == next && num_entries_of(state) > state[7]) found = state;
  }
  EXPECT_FALSE(found.empty()) << next;
  return found;
}

std::vector<double> last_state(const Refine_problem& problem, const Refine_options& options) {
  Refinement refinement(problem, options);
  EXPECT_TRUE(refinement.run(Deadline::max()));
  return refinement.state();
}

/// Whether it is refused; the rest must come to an end.
bool is_refused(const Refine_problem& problem, const Refine_options& options, const std::vector<double>& state) {
  Refinement refinement(problem, options);
  try {
    refinement.resume(state.data(), state.size());
  } catch (const kelvane::Bad_argument& error) {
    EXPECT_STREQ(error.identifier(), "state");
    EXPECT_STREQ(error.what(), "state is not that of a refinement of this problem with these options.");
    return true;
  }
  EXPECT_TRUE(refinement.run(Deadline::max()));
  EXPECT_FALSE(refinement.result().message.empty());
  return false;
}

/// A flat target with a wrong observation or two, seen from the front or, as start, from behind.
support::Refined_problem flat_problem(bool is_behind) {
  support::Random random(16);
  auto problem = support::random_scene(random, 12, false, 1.0);
  for (std::size_t i = 2; i < problem.points.size(); i += 3) problem.points[i] = 0.0;
  for (std::size_t i = 0; i < problem.points.size() / 3 && !is_behind; ++i) {
    const auto seen = support::seen(problem.camera, support::pose_of_scene, &problem.points[3 * i]);
    for (std::size_t k = 0; k < 2; ++k) problem.observations[2 * i + k] = seen[k] + support::normal(random);
  }
  if (is_behind) problem.start.centre[2] = 3.5;
  return problem;
}

/// Every number of a state replaced by others: refused where it must be, and harmless otherwise.
void spoil(const Refine_problem& view, const Refine_options& options, const std::vector<double>& good) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const bool is_beside = good[7] > 0.0;
  EXPECT_FALSE(is_refused(view, options, good));
  for (std::size_t i = 0; i < good.size(); ++i) {
    for (const double value : {nan, infinity, -infinity, -1.0, 0.0, 0.5, 3.0, 1e300, good[i] + 1e-3}) {
      SCOPED_TRACE(testing::Message() << "number " << i << " is " << value);
      std::vector<double> state = good;
      state[i] = value;
      const bool is_wrong_exit = i == 5 && is_beside && value != 3.0;
      const bool is_wrong_side = i == 8 && is_beside && value != 0.0;
      const bool is_wrong_end = i == 9 && value != -1.0;  // stopped, at any time
      const bool is_newest = i + num_per_entry >= good.size();
      const bool must_be = i == 0 || i == 1 || is_wrong_side || is_wrong_exit || is_wrong_end || is_newest;
      const bool matters = i + 3 < good.size() && value != good[i];  // its scale, turn and shift are but told
      EXPECT_TRUE(is_refused(view, options, state) || !must_be || !matters);
    }
  }
  for (std::size_t size = 0; size < good.size(); ++size) {
    if (size >= num_once + num_per_entry && (size - num_once) % num_per_entry == 0) continue;  // earlier, perhaps
    EXPECT_TRUE(is_refused(view, options, std::vector<double>(good.begin(), good.begin() + static_cast<long>(size))));
  }
  EXPECT_TRUE(is_refused(view, options, std::vector<double>(num_once + num_per_entry, nan)));
}

TEST(RefinementState, SurvivesWhatIsNoState) {
  Refine_options options;
  options.loss = Loss::tukey;
  const auto behind = flat_problem(true);
  const auto front = flat_problem(false);
  spoil(behind.view(), options, some_state(behind.view(), options, 0));
  spoil(behind.view(), options, state_beside(behind.view(), options, 0.0));
  spoil(front.view(), options, state_beside(front.view(), options, 1.0));
  support::Random random(7);
  const auto solid = support::random_scene(random, 12, false, 1.0);
  spoil(solid.view(), options, last_state(solid.view(), options));
}

TEST(RefinementState, RefusesAnEndThatCannotBe) {
  support::Random random(9);
  const auto problem = support::random_scene(random, 12, false, 1.0);
  const Refine_problem view = problem.view();
  Refine_options options;
  const auto is_refused_with = [&](std::vector<double> state, Refine_exit exit) {
    state[9] = static_cast<double>(exit);
    return is_refused(view, options, state);
  };
  const std::vector<double> good = last_state(view, options);
  const std::vector<double> start = some_state(view, options, 0);
  const int num_iterations = static_cast<int>(num_entries(view, options)) - 1;
  EXPECT_FALSE(is_refused_with(good, Refine_exit::uphill));
  EXPECT_FALSE(is_refused_with(start, Refine_exit::stopped));
  for (const Refine_exit exit : {Refine_exit::step, Refine_exit::rounding, Refine_exit::uphill}) {
    EXPECT_TRUE(is_refused_with(start, exit)) << "without an iteration";
  }
  std::vector<double> coming_down = good;
  coming_down[3] = 0.0;
  EXPECT_TRUE(is_refused_with(coming_down, Refine_exit::step)) << "at a scale that is not the last";
  for (const Refine_exit exit :
       {Refine_exit::no_cost, Refine_exit::undetermined, Refine_exit::behind, Refine_exit::failed}) {
    EXPECT_TRUE(is_refused_with(good, exit)) << "which no iteration has";
  }
  EXPECT_TRUE(is_refused_with(good, Refine_exit::decrease));
  options.function_tolerance = 1e-3;
  EXPECT_FALSE(is_refused_with(good, Refine_exit::decrease));
  EXPECT_TRUE(is_refused_with(good, Refine_exit::max_iterations)) << "too early";
  options.max_iterations = num_iterations;
  EXPECT_FALSE(is_refused_with(good, Refine_exit::max_iterations));
  options.max_iterations = num_iterations - 1;
  for (const Refine_exit exit : {Refine_exit::max_iterations, Refine_exit::step, Refine_exit::stopped}) {
    EXPECT_TRUE(is_refused_with(good, exit)) << "too late";
  }
}

TEST(RefinementState, RefusesTheStateOfAnother) {
  support::Random random(8);
  const auto problem = support::random_scene(random, 12, false, 1.0);
  const auto other = support::random_scene(random, 12, false, 1.0);
  const Refine_problem view = problem.view();
  const Refine_problem other_view = other.view();
  const Refine_options options;
  Refine_options with_loss;
  with_loss.loss = Loss::cauchy;
  const std::vector<double> state = some_state(view, options, 2);
  EXPECT_FALSE(is_refused(view, options, state));
  EXPECT_TRUE(is_refused(other_view, options, state));
  EXPECT_TRUE(is_refused(view, with_loss, some_state(view, options, 2)));
}

}  // namespace
