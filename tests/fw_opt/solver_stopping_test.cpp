// SPDX-License-Identifier: BSD-3-Clause
// Tests of the two stopping rules of the solver frame.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/scripted_solver.h"

namespace {

using support::Scripted_solver;
using Steps = std::vector<Scripted_solver::Step>;
using Vector = std::vector<double>;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

struct Run {
  Vector result;
  int num_iterations;
};

Run run(const Steps& steps, float min_x_step, float min_y_step, const Vector& x0 = {0.0}) {
  Scripted_solver solver(steps);
  solver.set_min_x_step(min_x_step);
  solver.set_min_y_step(min_y_step);
  const Vector result = solver.optimise(x0, {});
  return {result, static_cast<int>(solver.iters.size())};
}

constexpr float never_by_y = -infinity;
constexpr float never_by_x = 0.0F;

void expect_run(const Run& actual, const Vector& result, int num_iterations) {
  EXPECT_EQ(actual.result, result);
  EXPECT_EQ(actual.num_iterations, num_iterations);
}

TEST(SolverStepRule, EndsTheRunAtThePreviousBestPoint) {
  // The second step is shorter than 1e-6; its point is better, and not taken.
  expect_run(run({{{1.0}, 5.0}, {{1.0 + 0.5e-6}, 1.0}, {{9.0}, 0.5}, {{9.0}, 0.5}, {{9.0}, 0.5}}, 1e-6F, never_by_y),
             {1.0}, 2);
}

TEST(SolverStepRule, DoesNotStopAtAStepOfItsThreshold) {
  expect_run(run({{{1.0}, 5.0}, {{1.5}, 4.0}, {{9.0}, 3.0}}, 0.5F, never_by_y), {9.0}, 3);
  expect_run(run({{{1.0}, 5.0}, {{1.4375}, 4.0}, {{9.0}, 3.0}}, 0.5F, never_by_y), {1.0}, 2);
}

TEST(SolverStepRule, HoldsFromTheFirstIterationOn) {
  expect_run(run({{{0.25}, 0.0}, {{9.0}, 0.0}}, 0.5F, never_by_y), {0.0}, 1);
}

TEST(SolverStepRule, AddsTheStepsOfAllParameters) {
  expect_run(run({{{1.25, -1.25}, 5.0}, {{9.0, 9.0}, 4.0}}, 0.5F, never_by_y, {1.0, -1.0}), {9.0, 9.0}, 2);
  expect_run(run({{{1.25, -1.125}, 5.0}, {{9.0, 9.0}, 4.0}}, 0.5F, never_by_y, {1.0, -1.0}), {1.0, -1.0}, 1);
}

TEST(SolverStepRule, MeasuresFromTheBestPointNotFromTheLast) {
  // The last point, 20, was worse than 10. Back beside 10 the run is over; standing still at 20 it is not.
  expect_run(run({{{10.0}, 1.0}, {{20.0}, 5.0}, {{10.25}, 0.5}, {{99.0}, 0.25}}, 0.5F, never_by_y), {10.0}, 3);
  expect_run(run({{{10.0}, 1.0}, {{20.0}, 5.0}, {{20.0}, 5.0}, {{99.0}, 0.25}}, 0.5F, never_by_y), {99.0}, 4);
}

TEST(SolverStepRule, ComparesTheThresholdAsTheFloatItWasStoredAs) {
  // The float next to 0.1 is 0.100000001490116; the step lies between the two.
  expect_run(run({{{0.1000000007}, 5.0}, {{9.0}, 4.0}}, 0.1F, never_by_y), {0.0}, 1);
}

TEST(SolverStepRule, IsNotSatisfiedByANanStep) {
  // From a best point of NaN every later step is NaN as well.
  expect_run(run({{{nan}, 5.0}, {{8.0}, 4.5}, {{9.0}, 6.0}}, std::numeric_limits<float>::max(), never_by_y), {8.0}, 3);
}

TEST(SolverErrorRule, EndsTheRunWhenTheErrorRisesTooMuch) {
  expect_run(run({{{1.0}, 5.0}, {{2.0}, 8.5}, {{3.0}, 1.0}}, never_by_x, -3.0F), {1.0}, 2);
}

TEST(SolverErrorRule, DoesNotStopAtAChangeOfItsThreshold) {
  expect_run(run({{{1.0}, 5.0}, {{2.0}, 8.0}, {{3.0}, 1.0}}, never_by_x, -3.0F), {3.0}, 3);
  expect_run(run({{{1.0}, 5.0}, {{2.0}, 4.75}, {{3.0}, 1.0}}, never_by_x, 0.25F), {3.0}, 3);
  expect_run(run({{{1.0}, 5.0}, {{2.0}, 5.0}, {{3.0}, 1.0}}, never_by_x, 0.0F), {3.0}, 3);
}

TEST(SolverErrorRule, EndsTheRunAtASmallDecreaseWithoutTakingThePoint) {
  expect_run(run({{{1.0}, 5.0}, {{2.0}, 4.875}, {{3.0}, 1.0}}, never_by_x, 0.25F), {1.0}, 2);
}

TEST(SolverErrorRule, IsNotAppliedToTheFirstIteration) {
  expect_run(run({{{1.0}, 5.0}}, never_by_x, infinity), {1.0}, 1);
  expect_run(run({{{1.0}, 5.0}, {{2.0}, 4.0}, {{3.0}, 3.0}}, never_by_x, infinity), {1.0}, 2);
}

TEST(SolverErrorRule, MeasuresFromThePreviousErrorNotFromTheBest) {
  // Each rise is within 3.5 while both together are not.
  expect_run(run({{{1.0}, 1.0}, {{2.0}, 4.0}, {{3.0}, 5.0}, {{4.0}, 0.5}}, never_by_x, -3.5F), {4.0}, 4);
  // A decrease from the previous error that is none from the best goes on.
  expect_run(run({{{1.0}, 1.0}, {{2.0}, 2.0}, {{3.0}, 1.5}, {{4.0}, 0.25}}, never_by_x, -1.0F), {4.0}, 4);
}

TEST(SolverErrorRule, IsNotSatisfiedByANanError) {
  expect_run(run({{{1.0}, 5.0}, {{2.0}, nan}, {{3.0}, 4.0}, {{4.0}, 3.0}}, never_by_x, 0.5F), {4.0}, 4);
}

TEST(SolverErrorRule, HasADefaultThatOnlyAnEnormousRiseReaches) {
  expect_run(run({{{1.0}, 0.0}, {{2.0}, 100000.0}, {{3.0}, 0.0}}, never_by_x, -100000.0F), {3.0}, 3);
  expect_run(run({{{1.0}, 0.0}, {{2.0}, 100001.0}, {{3.0}, 0.0}}, never_by_x, -100000.0F), {1.0}, 2);
}

TEST(SolverRules, AreNotAppliedToASingleIteration) { expect_run(run({{{0.25}, 5.0}}, infinity, infinity), {0.25}, 1); }

}  // namespace
