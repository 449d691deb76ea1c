// SPDX-License-Identifier: BSD-3-Clause
// Whole calls of mexFunction against the independent reference refinement, in every combination that a call allows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "support/reference_comparison.h"

namespace {

using reference::agrees;
using reference::Call;
using reference::criteria;
using reference::Departures;
using reference::is_well_conditioned;
using reference::module_result;
using reference::notices;
using reference::Stop;
using reference::Weights;
using support::Random;

constexpr std::size_t num_scenes = 24;
constexpr std::size_t enough_scenes = 20;
#if defined(KELVANE_SANITIZED)  // where every operation takes long, a part of the numbers goes every way of the code
constexpr std::size_t num_agreement_scenes = 8;
constexpr std::size_t enough_agreement_scenes = 5;
#else
constexpr std::size_t num_agreement_scenes = num_scenes;
constexpr std::size_t enough_agreement_scenes = enough_scenes;
#endif

class ReferenceRefinement : public testing::TestWithParam<int> {
 protected:
  int type() const { return GetParam(); }

  void expect_agreement(bool analytic, Weights weights) const {
    for (const std::size_t num_points : {std::size_t{4}, std::size_t{8}, std::size_t{30}}) {
      std::size_t compared = 0;
      for (std::size_t scene = 0; scene < num_agreement_scenes; ++scene) {
        Random random(7000 + scene);
        Call call = reference::random_call(type(), num_points, random);
        call.weights = reference::random_weights(weights, reference::num_equations(call), random);
        call.stopping = criteria(analytic, scene);
        if (!is_well_conditioned(call)) continue;
        ++compared;
        for (const Stop stop : {Stop::never, Stop::by_step, Stop::by_error, Stop::by_both}) {
          SCOPED_TRACE("scene " + std::to_string(scene) + " of seed 7000, points " + std::to_string(num_points) +
                       ", stop " + std::to_string(static_cast<int>(stop)));
          call.stopping = criteria(analytic, scene);
          reference::set_thresholds(call, stop, scene);
          EXPECT_TRUE(agrees(call));
        }
      }
      EXPECT_GE(compared, enough_agreement_scenes);
    }
  }
};

TEST_P(ReferenceRefinement, AgreesWithoutWeights) {
  expect_agreement(true, Weights::absent);
  expect_agreement(false, Weights::absent);
}

TEST_P(ReferenceRefinement, AgreesWithPositiveWeights) {
  expect_agreement(true, Weights::positive);
  expect_agreement(false, Weights::positive);
}

TEST_P(ReferenceRefinement, AgreesWithSomeWeightsZero) {
  expect_agreement(true, Weights::some_zero);
  expect_agreement(false, Weights::some_zero);
}

// Along a quaternion and along an axis nothing changes, so their J has rank 6 of 7: the step must be the shortest one.
TEST_P(ReferenceRefinement, TakesTheShortestStepWhereOneDirectionIsFree) {
  const bool has_free_direction = type() == 1 || type() == 2 || type() == 11 || type() == 12;
  const std::size_t rank = type() == 0 || type() == 10 || type() == -2 || has_free_direction ? 6 : 7;
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    Random random(7100 + scene);
    Call call = reference::random_call(type(), 8, random);
    call.stopping = criteria(true, scene);
    EXPECT_EQ(reference::refine(call).smallest_rank, rank);
    EXPECT_TRUE(agrees(call)) << "scene " << scene;
  }
}

// Each call starts where the one before it ended, with a call of another type and size between them: nothing is kept.
// qn runs away from most scenes, and a bearing type, whose target is no scene's, may: they are followed as far as they
// stay well-conditioned.
TEST_P(ReferenceRefinement, AgreesCallAfterCall) {
  std::size_t compared = 0;
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    Random random(7200 + scene);
    Call call = reference::random_call(type(), 8, random, {0.1, 0.5, 0.5});
    Call other = reference::random_call(type() == 2 ? 0 : 2, 30, random);
    call.stopping = other.stopping = criteria(true, scene);
    for (int k = 0; k < 5 && is_well_conditioned(call); ++k) {
      ASSERT_TRUE(agrees(call)) << "scene " << scene << ", call " << k;
      const std::vector<double> refined = module_result(call);
      std::copy(refined.begin(), refined.end(), call.parameters.begin());
      module_result(other);
      ++compared;
    }
  }
  EXPECT_GE(compared, 4 * num_scenes);
}

// Three iterations for type 0 and one for all others, also in hybrids and with bearing vectors.
TEST_P(ReferenceRefinement, NoticesAnotherNumberOfIterations) {
  const int max_iters = type() == 0 ? 3 : 1;
  const double noise = type() >= 10 ? 0.5 : 150.0;  // far from a fit, so that the iterations are still long
  for (const int departure : {-1, 1}) {
    std::size_t noticed = 0;
    for (std::size_t scene = 0; scene < num_scenes; ++scene) {
      Random random(7300 + scene);
      Call call = reference::random_call(type(), 8, random, {0.2, 1.0, noise});
      call.stopping = criteria(true, scene);
      if (!is_well_conditioned(call)) continue;
      ASSERT_TRUE(agrees(call)) << "scene " << scene;
      Departures departures;
      departures.max_iters = max_iters + departure;
      if (notices(call, departures)) ++noticed;
    }
    EXPECT_GE(noticed, 2U) << "by " << departure;  // qn's second step seldom lowers the error
  }
}

TEST_P(ReferenceRefinement, NoticesAnotherTargetLayout) {
  Departures departures;
  departures.uses_other_target_layout = true;
  const bool has_other_layout = type() >= 10 || type() < 0;
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    Random random(7400 + scene);
    Call call = reference::random_call(type(), 8, random);
    call.stopping = criteria(true, scene);
    if (!is_well_conditioned(call)) continue;
    EXPECT_EQ(notices(call, departures), has_other_layout) << "scene " << scene;
  }
}

enum class Start { identity, tiny, half_turn };

// Zero vectors move to 1e-9; the free axis of no rotation stays; half a turn has its own signs; a hybrid that divides
// by zero returns the start.
TEST_P(ReferenceRefinement, AgreesFromDegenerateRotations) {
  for (const Start start : {Start::identity, Start::tiny, Start::half_turn}) {
    std::size_t compared = 0;
    for (std::size_t scene = 0; scene < num_scenes; ++scene) {
      Random random(7500 + scene);
      std::vector<double> angle_axis = random.direction(3);
      angle_axis.push_back(start == Start::identity ? 0.0 : start == Start::tiny ? 1e-30 : support::pi);
      const std::vector<double> rotation = rotation_entries(reference::rotation_kind(type()), angle_axis);
      Call call = reference::random_call(type(), rotation, 8, random, {0.0, 0.3, type() >= 10 ? 0.5 : 20.0});
      call.stopping = criteria(true, scene);
      if (!is_well_conditioned(call)) continue;
      ++compared;
      EXPECT_TRUE(agrees(call)) << "scene " << scene << ", start " << static_cast<int>(start);
    }
    EXPECT_GE(compared, enough_scenes);
  }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, ReferenceRefinement, testing::Values(0, 1, 2, 3, 10, 11, 12, -1, -2, -3),
                         [](const testing::TestParamInfo<int>& which) {
                           return (which.param < 0 ? "Minus" : "") + std::to_string(std::abs(which.param));
                         });

TEST(ReferenceRefinementOfTypeZero, AgreesWithThreeAndFourInputs) {
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    for (const double noise : {0.0, 0.5, 400.0}) {
      SCOPED_TRACE("scene " + std::to_string(scene) + ", noise " + std::to_string(noise));
      Random random(7600 + scene);
      Call call = reference::random_call(0, 8, random, {0.3, 1.5, noise});
      call.type.reset();
      EXPECT_TRUE(agrees(call));
      for (const bool analytic : {true, false}) {
        call.stopping = criteria(analytic, scene);
        EXPECT_TRUE(agrees(call));
      }
    }
  }
}

// Far from a fit the steps are still long after ten iterations.
TEST(ReferenceRefinementOfTypeZero, NoticesNineAndElevenIterationsOfThreeInputs) {
  for (const int max_iters : {9, 11}) {
    std::size_t noticed = 0;
    for (std::size_t scene = 0; scene < num_scenes; ++scene) {
      Random random(7600 + scene);
      Call call = reference::random_call(0, 8, random, {0.3, 1.5, 400.0});
      call.type.reset();
      Departures departures;
      departures.max_iters = max_iters;
      if (notices(call, departures)) ++noticed;
    }
    EXPECT_GE(noticed, 3U) << max_iters;
  }
}

TEST(ReferenceRefinementOfTypeZero, NoticesWeightsInEveryIterationAndTheLastPointInsteadOfTheBest) {
  std::size_t noticed_weights = 0;
  std::size_t noticed_last = 0;
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    Random random(7700 + scene);
    Call call = reference::random_call(0, 8, random, {0.1, 0.5, 5.0});
    call.stopping = criteria(true, scene);
    for (std::size_t i = 0; i < reference::num_equations(call); ++i) call.weights.push_back(random.uniform(0.9, 1.1));
    EXPECT_TRUE(agrees(call)) << "scene " << scene;
    Departures departures;
    departures.weighs_every_iteration = true;
    if (notices(call, departures)) ++noticed_weights;
    departures = {};
    departures.takes_the_last_point = true;
    if (notices(call, departures)) ++noticed_last;
  }
  EXPECT_GE(noticed_weights, enough_scenes);
  EXPECT_GE(noticed_last, num_scenes / 2);
}

/// `measured` moved by a few parts in a billion, away from the nearest float.
double beyond_rounding(reference::Real measured) {
  const bool is_rounded_down = static_cast<float>(measured) < measured;
  return static_cast<double>(measured * (is_rounded_down ? 1.0L + 3e-9L : 1.0L - 3e-9L));
}

// The two thresholds lie on one side of what the second iteration measures, but their floats on the other.
TEST(ReferenceRefinementOfTypeZero, ComparesThresholdsAsFloats) {
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    Random random(7800 + scene);
    Call call = reference::random_call(0, 8, random, {0.1, 0.5, 5.0});
    const std::vector<double> without_thresholds = criteria(true, scene);
    call.stopping = without_thresholds;
    const reference::Refined run = reference::refine(call);
    call.stopping[1] = beyond_rounding(run.steps[1]);
    EXPECT_TRUE(agrees(call)) << "by step, scene " << scene;
    call.stopping = without_thresholds;
    call.stopping[2] = beyond_rounding(run.decreases[0]);
    EXPECT_TRUE(agrees(call)) << "by error, scene " << scene;
  }
}

// No threshold of the error is looked at after the first iteration, which has nothing to decrease from: even an
// infinite one lets its point be taken. What is not a number stops nothing.
TEST(ReferenceRefinementOfTypeZero, AgreesWithThresholdsThatAreNotFinite) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
  for (std::size_t scene = 0; scene < num_scenes; ++scene) {
    Random random(7900 + scene);
    Call call = reference::random_call(0, 8, random, {0.1, 0.5, 5.0});
    const std::vector<double> start(call.parameters.begin(), call.parameters.begin() + 6);
    call.stopping = {50.0, reference::never_x, infinity, 0.0};
    EXPECT_TRUE(agrees(call)) << "scene " << scene;
    EXPECT_NE(module_result(call), start) << "scene " << scene;
    call.stopping = {50.0, infinity, reference::never_y, 0.0};
    EXPECT_EQ(module_result(call), start) << "scene " << scene;
    call.stopping = {50.0, not_a_number, not_a_number, 0.0};
    EXPECT_TRUE(agrees(call)) << "scene " << scene;
  }
}

}  // namespace
