// SPDX-License-Identifier: BSD-3-Clause
// The sentences of a refinement's end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pose_refinement/refinement.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Deadline;
using kelvane::Loss;
using kelvane::Refine_options;
using kelvane::Refinement;

TEST(ExitMessage, SpeaksInTheWordsOfItsDoor) {
  constexpr kelvane::Words words{1, "Step", "Fall", "Most", "Scale", "Watch"};
  support::Random random(9);
  auto problem = support::random_scene(random, 12, false, 1.0);
  Refine_options options;
  const auto told = [&](bool stops = false) {
    const auto view = problem.view();
    Refinement refinement(view, options, words);
    refinement.run(stops ? Deadline::min() : Deadline::max());
    if (stops) refinement.stop();
    return refinement.result().message;
  };
  EXPECT_EQ(told(), "Converged: the step is below Step = 1e-09.");
  options.function_tolerance = 0.5;
  EXPECT_EQ(told(), "Converged: the decrease is below Fall = 0.5.");
  options.max_iterations = 1;
  EXPECT_EQ(told(), "Not converged: stopped after Most = 1.");
  EXPECT_EQ(told(true), "Not converged: stopped by Watch.");
  options = {};
  options.loss = Loss::tukey;
  options.loss_scale = 1e-9;
  EXPECT_EQ(told(), "The points do not determine the pose: 0 have residuals below Scale = 1e-09, the others no pull.");
  options = {};
  problem.observations[4] = 1e200;
  EXPECT_EQ(told(),
            "Not refined: at the start the residual of point 3, 1e+200, is too large: the sum of squares is not "
            "finite.");
}

TEST(ExitMessage, TellsWhereThePriorIsTooFarAway) {
  support::Random random(10);
  const auto problem = support::random_scene(random, 12, false, 1.0);
  const std::vector<double> information(36, 1.0);
  kelvane::Refine_problem view = problem.view();
  view.prior.information = information;
  view.prior.pose.centre[0] = 1e200;
  const kelvane::Refine_result result = refine(view);
  EXPECT_EQ(result.exit, kelvane::Refine_exit::no_cost);
  EXPECT_EQ(result.message, "Not refined: at the start the prior is so far away that its cost is not finite.");
}

}  // namespace
