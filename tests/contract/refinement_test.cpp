// SPDX-License-Identifier: BSD-3-Clause
// From accepted arguments to the refined search vector.
#include "contract/refinement.h"
#include "contract/problem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/fake_input.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using kelvane::contract::Problem;
using kelvane::contract::Settings;
using support::Fake_call;
using support::fake_row;

constexpr int all_types[] = {0, 1, 2, 3, 10, 11, 12, -1, -2, -3};

Settings settings_of(int type, const std::vector<double>& criteria) {
  return Settings(Fake_call(type).with(4, fake_row(criteria)).check());
}

std::vector<double> difference_steps(int type) {
  const Fake_call call(type);
  const Problem problem(call.check());
  return {problem.difference_steps, problem.difference_steps + problem.x0.size()};
}

/// The observations of the first piece, and what fills it up.
std::vector<double> target(const Fake_call& call) {
  const Problem problem(call.check());
  const kelvane::Pose_problem equations = problem.equations(true);
  const kelvane::Piece piece = equations.data->piece(0);
  return {piece.observations, piece.observations + piece.num_groups() * 8 * equations.data->observation_size()};
}

std::vector<double> with_filling(std::vector<double> values, std::size_t size) {
  values.resize(size, 0.0);
  return values;
}

TEST(RefinementSettings, AreTenAnalyticIterationsWithoutCriteria) {
  const Fake_call call = Fake_call(0).keep(3);
  const Settings settings(call.check());
  EXPECT_EQ(settings.max_iters, 10);
  EXPECT_EQ(settings.min_x_step, 0.0F);
  EXPECT_EQ(settings.min_y_step, -10000.0F);
  EXPECT_TRUE(settings.is_analytic);
}

TEST(RefinementSettings, IgnoreTheFirstCriterion) {
  for (const int type : all_types) {
    EXPECT_EQ(settings_of(type, {50, 1e-6, 1e-6, 0}).max_iters, type == 0 ? 3 : 1) << type;
  }
}

TEST(RefinementSettings, CountFourInputsAsTypeZero) { EXPECT_EQ(Settings(Fake_call(0).keep(4).check()).max_iters, 3); }

TEST(RefinementSettings, FollowTheTruncatedType) {
  EXPECT_EQ(Settings(Fake_call(0).with(5, fake_row({-0.5})).check()).max_iters, 3);
}

TEST(RefinementSettings, NarrowTheThresholdsToFloat) {
  const Settings settings = settings_of(2, {50, 1e-6, 0.1, 0});
  EXPECT_EQ(settings.min_x_step, 1e-6F);
  EXPECT_EQ(settings.min_y_step, 0.1F);
  EXPECT_NE(static_cast<double>(settings.min_y_step), 0.1);
}

TEST(RefinementSettings, SelectDifferencesUnlessTheFourthCriterionIsZero) {
  EXPECT_TRUE(settings_of(0, {0, 0, 0, 0}).is_analytic);
  EXPECT_TRUE(settings_of(0, {0, 0, 0, -0.0}).is_analytic);
  EXPECT_FALSE(settings_of(0, {0, 0, 0, 1}).is_analytic);
  EXPECT_FALSE(settings_of(0, {0, 0, 0, 1e-300}).is_analytic);
  EXPECT_FALSE(settings_of(0, {0, 0, 0, std::nan("")}).is_analytic);
}

TEST(DifferenceSteps, AreLargerForQuaternions) {
  EXPECT_EQ(difference_steps(0), (std::vector<double>{0.0314, 0.0314, 0.0314, 0.01, 0.01, 0.01}));
  EXPECT_EQ(difference_steps(1), (std::vector<double>{0.0314, 0.0314, 0.0314, 0.0314, 0.01, 0.01, 0.01}));
  for (const int type : {2, 3, 12, -1}) {
    EXPECT_EQ(difference_steps(type), (std::vector<double>{0.314, 0.314, 0.314, 0.314, 0.01, 0.01, 0.01})) << type;
  }
  EXPECT_EQ(difference_steps(-2), difference_steps(0));
  EXPECT_EQ(difference_steps(10), difference_steps(0));
  EXPECT_EQ(difference_steps(-3), difference_steps(1));
  EXPECT_EQ(difference_steps(11), difference_steps(1));
}

TEST(RefinementProblem, SplitsTheCameraParameters) {
  const auto expect_intrinsics = [](const Fake_call& call, double f, double cx, double cy) {
    const kelvane::Intrinsics K = Problem(call.check()).equations(true).intrinsics;
    EXPECT_EQ(K.f, f);
    EXPECT_EQ(K.cx, cx);
    EXPECT_EQ(K.cy, cy);
  };
  const Fake_call three(0);
  EXPECT_EQ(Problem(three.check()).x0, (std::vector<double>{1, 2, 3, 4, 5, 6}));
  expect_intrinsics(three, 7, 8, 9);
  const Fake_call four(2);
  EXPECT_EQ(Problem(four.check()).x0, (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
  expect_intrinsics(four, 8, 9, 10);
}

TEST(RefinementProblem, TakesPixelsPointByPoint) {
  EXPECT_EQ(target(Fake_call(0, 2)), with_filling({1, 2, 3, 4}, 16));
  EXPECT_EQ(target(Fake_call(-2, 2)), with_filling({1, 2, 3, 4}, 16));
}

TEST(RefinementProblem, LaysBearingsOutAsPairsThenZeros) {
  // The third component of each bearing is not used.
  EXPECT_EQ(target(Fake_call(10, 2)), with_filling({1, 2, 4, 5, 0, 0}, 24));
  EXPECT_EQ(target(Fake_call(12, 4)), with_filling({1, 2, 4, 5, 7, 8, 10, 11, 0, 0, 0, 0}, 24));
}

TEST(RefinementProblem, DifferentiatesAsAsked) {
  const Fake_call call(0);
  const Problem problem(call.check());
  EXPECT_EQ(problem.equations(true).difference_steps, nullptr);
  EXPECT_EQ(problem.equations(false).difference_steps, problem.difference_steps);
}

TEST(JacobianDispatch, RefusesATypeWithoutOne) {
  for (const int id : {4, 9, 13}) {
    const Fake_call call = Fake_call(0).keep(3);
    auto arguments = call.check();
    const kelvane::Rotation_type unknown{id, "unknown", kelvane::Representation::rotation_vector, 2, 1, nullptr};
    arguments.type = &unknown;
    const support::Caught caught =
        support::caught_by([&] { kelvane::contract::refine(arguments, Settings(arguments)); });
    EXPECT_NE(caught.text.find(support::block("kelvane_mex.cpp", 1971,
                                              "void mexFunction(int, mxArray**, int, const mxArray**)",
                                              "Invalid rotation type!")),
              std::string::npos);
    EXPECT_EQ(caught.level, 1);
  }
}

TEST(FailedRefinement, AddsTheSizesOfTheProblem) {
  // Two points give four equations for six unknowns.
  const Fake_call call = Fake_call(0, 2).keep(3);
  const auto arguments = call.check();
  const support::Caught caught = support::caught_by([&] { kelvane::contract::refine(arguments, Settings(arguments)); });
  const std::string head =
      support::block("kelvane_mex.cpp", 2003, "void mexFunction(int, mxArray**, int, const mxArray**)",
                     "Num points=2 num_eqs=4 (vals of -1 mean not initialised)", 2);
  EXPECT_EQ(caught.text.substr(0, head.size()), head);
  EXPECT_EQ(caught.level, 2);
  EXPECT_NE(caught.text.find("The function can not solve under-determined linear systems"), std::string::npos);
}

}  // namespace
