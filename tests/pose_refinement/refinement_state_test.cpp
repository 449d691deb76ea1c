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
using kelvane::Refine_options;
using kelvane::Refine_problem;
using kelvane::Refinement;

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

TEST(RefinementState, SurvivesWhatIsNoState) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  support::Random random(7);
  auto problem = support::random_scene(random, 12, false, 1.0);
  for (std::size_t i = 2; i < problem.points.size(); i += 3) problem.points[i] = 0.0;
  problem.start.centre[2] = 3.5;
  const Refine_problem view = problem.view();
  Refine_options options;
  options.loss = Loss::tukey;
  const std::size_t num_steps = num_entries(view, options) - 2;
  for (const std::size_t step : {std::size_t{0}, num_steps}) {
    const std::vector<double> good = some_state(view, options, step);
    EXPECT_EQ(good[7] > 0.0, step == num_steps) << "not in the second descent";
    EXPECT_FALSE(is_refused(view, options, good));
    for (std::size_t i = 0; i < good.size(); ++i) {
      for (const double value : {nan, infinity, -infinity, -1.0, 0.0, 0.5, 3.0, 1e300, good[i] + 1e-3}) {
        SCOPED_TRACE(testing::Message() << "number " << i << " is " << value);
        std::vector<double> state = good;
        state[i] = value;
        const bool is_wrong_exit = i == 5 && step == num_steps && value != 3.0;
        const bool must_be = i == 0 || i == 1 || is_wrong_exit || i + 16 >= good.size();  // and the newest entry
        const bool matters = i + 3 < good.size() && value != good[i];  // its scale, turn and shift are but told
        EXPECT_TRUE(is_refused(view, options, state) || !must_be || !matters);
      }
    }
    for (std::size_t size = 0; size < good.size(); ++size) {
      if (size >= 24 && (size - 8) % 16 == 0) continue;  // an earlier state, perhaps
      EXPECT_TRUE(is_refused(view, options, std::vector<double>(good.begin(), good.begin() + static_cast<long>(size))));
    }
  }
  EXPECT_TRUE(is_refused(view, options, std::vector<double>(24, nan)));
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
