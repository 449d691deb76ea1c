// SPDX-License-Identifier: BSD-3-Clause
// From accepted arguments to the refined search vector.
#include "pose_refinement/refinement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "camera_pose/camera_position_opt_func.h"
#include "support/fake_input.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using pose_refinement::Problem;
using pose_refinement::Settings;
using support::Fake_call;
using support::fake_row;

constexpr int all_types[] = {0, 1, 2, 3, 10, 11, 12, -1, -2, -3};

Settings settings_of(int type, const std::vector<double>& criteria) {
  return Settings(Fake_call(type).with(4, fake_row(criteria)).check());
}

fw::Linear_taylor_solver configured(const Fake_call& call) {
  const auto arguments = call.check();
  fw::Linear_taylor_solver solver;
  pose_refinement::configure(solver, Problem(arguments), Settings(arguments));
  return solver;
}

std::vector<double> difference_steps(int type) {
  fw::Linear_taylor_solver solver;
  pose_refinement::add_objective(solver, Problem(Fake_call(type).check()));
  return solver.get_finite_difference_steps().at(0);
}

TEST(RefinementSettings, AreTenAnalyticIterationsWithoutCriteria) {
  const Fake_call call = Fake_call(0).keep(3);
  const fw::Linear_taylor_solver solver = configured(call);
  EXPECT_EQ(solver.get_max_iters(), 10);
  EXPECT_EQ(solver.get_min_x_step(), 0.0F);
  EXPECT_EQ(solver.get_min_y_step(), -10000.0F);
  EXPECT_EQ(solver.get_num_dimensions(), 6);
  EXPECT_EQ(solver.get_num_equations(), 8);
  EXPECT_TRUE(Settings(call.check()).is_analytic);
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
  const Problem three(Fake_call(0).check());
  EXPECT_EQ(three.x0, (std::vector<double>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(fw::text(three.intrinsics.matrix()), "3\t3\n7\t0\t8\t\n0\t7\t9\t\n0\t0\t1\t\n");
  const Problem four(Fake_call(2).check());
  EXPECT_EQ(four.x0, (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(fw::text(four.intrinsics.matrix()), "3\t3\n8\t0\t9\t\n0\t8\t10\t\n0\t0\t1\t\n");
}

TEST(RefinementProblem, TakesPointsFromColumns) {
  const Problem problem(Fake_call(0, 2).check());
  ASSERT_EQ(problem.points->size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_EQ(problem.points->coordinate(i, c), 1.0 + static_cast<double>(3 * i + c)) << "point " << i;
    }
  }
}

TEST(RefinementProblem, TakesPixelsPointByPoint) {
  EXPECT_EQ(Problem(Fake_call(0, 2).check()).target, (std::vector<double>{1, 2, 3, 4}));
}

TEST(RefinementProblem, LaysBearingsOutAsPairsThenZeros) {
  // The third component of each bearing is not used.
  EXPECT_EQ(Problem(Fake_call(10, 2).check()).target, (std::vector<double>{1, 2, 4, 5, 0, 0}));
  EXPECT_EQ(Problem(Fake_call(12, 4).check()).target.size(), 12U);
}

TEST(RefinementProblem, RepeatsPixelsForEachRepresentation) {
  const Problem problem(Fake_call(-2, 2).check());
  EXPECT_EQ(problem.target, (std::vector<double>{1, 2, 3, 4, 1, 2, 3, 4, 1, 2, 3, 4}));
  EXPECT_EQ(problem.x0.size(), 6U);
}

TEST(RefinementProblem, HasNoWeightsUnlessGiven) {
  EXPECT_TRUE(Problem(Fake_call(0).keep(5).check()).weights.empty());
  EXPECT_EQ(Problem(Fake_call(0).check()).weights, std::vector<double>(8, 1.0));
}

TEST(AnalyticRefinement, GivesTheSolverAWeightedJacobianWithItsObjective) {
  Problem problem(Fake_call(1, 2).check());
  problem.weights = {2, 3, 4, 5};
  fw::Linear_taylor_solver solver;
  pose_refinement::add_jacobian(solver, problem);
  EXPECT_TRUE(solver.get_funcs().empty());
  ASSERT_EQ(solver.get_grad_funcs().size(), 1U);
  const fw::Grad_func& jacobian = *solver.get_grad_funcs()[0];
  const auto* objective = dynamic_cast<const Camera_position_opt_func*>(jacobian.base_function());
  ASSERT_NE(objective, nullptr);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(jacobian.get_weight(i), i + 2.0);
    EXPECT_EQ(objective->get_weight(i), i + 2.0);
  }
}

TEST(DifferenceRefinement, GivesTheSolverTheWeightedObjectiveOnly) {
  Problem problem(Fake_call(10, 2).check());
  problem.weights = {2, 3, 4, 5, 6, 7};
  fw::Linear_taylor_solver solver;
  pose_refinement::add_objective(solver, problem);
  EXPECT_TRUE(solver.get_grad_funcs().empty());
  ASSERT_EQ(solver.get_funcs().size(), 1U);
  EXPECT_EQ(solver.get_funcs()[0]->get_weight(5), 7.0);
}

TEST(JacobianDispatch, RefusesAnUnknownType) {
  for (const int id : {4, 9, 13}) {
    Problem problem(Fake_call(0).check());
    const Rotation_type unknown{id, "unknown", Representation::quaternion, 2, 1};
    problem.type = &unknown;
    fw::Linear_taylor_solver solver;
    const support::Caught caught = support::caught_by([&] { pose_refinement::add_jacobian(solver, problem); });
    EXPECT_EQ(caught.text,
              support::block("kelvane_mex.cpp", 1971, "void mexFunction(int, mxArray**, int, const mxArray**)",
                             "Invalid rotation type!"));
    EXPECT_EQ(caught.level, 0);
  }
}

TEST(FailedRefinement, AddsTheSizesOfTheProblem) {
  // Two points give four equations for six unknowns.
  const Fake_call call = Fake_call(0, 2).keep(3);
  const auto arguments = call.check();
  const support::Caught caught =
      support::caught_by([&] { pose_refinement::refine(Problem(arguments), Settings(arguments)); });
  const std::string head =
      support::block("kelvane_mex.cpp", 2003, "void mexFunction(int, mxArray**, int, const mxArray**)",
                     "Num points=2 num_eqs=4 (vals of -1 mean not initialised)", 2);
  EXPECT_EQ(caught.text.substr(0, head.size()), head);
  EXPECT_EQ(caught.level, 2);
  EXPECT_NE(caught.text.find("The function can not solve under-determined linear systems"), std::string::npos);
}

}  // namespace
